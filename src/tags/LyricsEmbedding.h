#pragma once
// The lyrics block stored at the end of a song file, behind its audio and before its end tags.

#include "lyrics/LyricsData.h"
#include "tags/MP3Class.h"

#include <QByteArray>
#include <functional>

// What the save needs from the rest of the program.
struct SaveMP3Host {
    bool MediaOpen = false;   // a media session exists
    bool MidiActive = false;  // the MIDI player holds the song
    bool Polish = false;
    std::function<QString(const char* key)> Text;  // the language table
    std::function<void(const QString&)> Critical;
    std::function<void(const QString&)> Information;
    std::function<void(bool busy)> WaitCursor;
    PlayingFileRelease Release;
};

enum class SaveMP3Result { NoTarget, NoAudioDevice, NothingToSave, NotAudio, WriteFailed, Saved };

extern const char* const kNoAudioDeviceMessage;  // "There is no audio device open."

// Stores the lyrics in the target song file as the editor's Save command does. An audio file's
// end tags are taken off for the append and put back behind the block as the very bytes they
// were, and its earlier block is cut away; a MIDI file keeps everything and grows by the block.
SaveMP3Result SaveMP3(const QString& target, const std::vector<LyricItem>& lyrics,
                      const std::vector<PictureItem>& pictures, const SaveMP3Host& host);
