#pragma once
// The editor's import: the lyrics of any audio or MIDI file into EditLyrics and EditPictures,
// from a lyrics block in the file first, then a lyrics tag, then the file's MIDI words; or the
// timed lyrics of an LRC, UltraStar, ASS or SRT file.

#include "lyrics/LyricsData.h"
#include "midi/MidiBytes.h"

class MP3Class;

// False, with the editor's lists reset, when none of the three gives lyrics. `current` is the
// song in the player, whose tag the tag import takes; the MIDI import overwrites `figures`.
bool ImportLyrics(LyricsState& lyrics, MidiFigures& figures, MP3Class* current, const QString& fileName,
                  bool polish);

// An LRC, UltraStar, ASS or SRT file into EditLyrics; false when it holds no timed lyrics.
bool ImportTimedLyrics(LyricsState& lyrics, const QString& fileName, bool polish);

// The current song's lyrics tag, one whole-line syllable per timed line, into EditLyrics.
bool ImportSongTagLyrics(LyricsState& lyrics, MP3Class* current);

// The MIDI words of the file, finished, into EditLyrics with the file's "@T" title and artist;
// false for fewer than nine syllables.
bool ImportMidiLyrics(LyricsState& lyrics, MidiFigures& figures, const QString& fileName, bool polish);
