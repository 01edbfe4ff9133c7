#pragma once
// The words of a karaoke MIDI file as timed syllables: text events of one track, one syllable
// each, "/" or "\" starting a line, "@" lines giving none. The byte reader's rules decide; an
// event parser reads the files it cannot (words among controller events, lyric events of
// notation programs).

#include "lyrics/LyricsLoader.h"
#include "midi/MidiBytes.h"

// SongLyrics back to its header alone, with no pictures and no title text.
void ResetLyrics(LyricsState& lyrics, std::vector<LyricItem>& songLyrics);

// Appends the syllables of the text events found in `track` (a track body or the whole file),
// timed by the byte reader's delta rule at msPerTick.
void GetWords(const QByteArray& track, double msPerTick, bool polish, std::vector<LyricItem>& songLyrics);

// The finishing pass: each line's text on its syllables. The times stay: the engine's MIDI
// clock is the heard time, so the words need no allowance for a synthesiser's latency.
void FinishWords(std::vector<LyricItem>& songLyrics);

// Under this upper bound the words of a file are too few to be the song's.
constexpr size_t kFewestWordsElements = 10;

enum class WordsOrigin { TextBytes, TextEvents, LyricEvents };

// ReadFile, and where its words are unusable (fewer than nine syllables, or one after the
// song's end, `songEnd` seconds) but an event parser finds usable ones, those: the text events
// of the chosen track (or of the track with the most of them), else the lyric events of the
// first track that has them. Times stay
// tick x MidiMsPerTick.
WordsOrigin ReadMidiWords(const QByteArray& file, MidiFigures& figures, double songEnd,
                          std::vector<LyricItem>& songLyrics, bool polish);

// The length of the song into MidiSegmentLength and MidiDuration, as the synthesiser would
// announce it: the last event at the tempo of the first tempo event. Returns the seconds.
double MeasureSong(const QByteArray& file, MidiFigures& figures);
// The same from a song already parsed and measured.
struct MidiSongMeasure;
double StoreSongLength(const MidiSongMeasure& measure, MidiFigures& figures);

// The lyrics the player shows for a MIDI song: the block inside it when its sibling ".lrs"
// exists, else its words, finished, with the artist and title of its tags. False without any.
// The song's verses go into figures (each track whose own text or lyric events make usable
// words, a track repeating the words of one before it left out; none for fewer than two);
// `verse` names the track of the verse to show, -1 the words as the file gives them first.
bool LoadMidiLyrics(LyricsState& lyrics, MidiFigures& figures, const QString& songPath,
                    const LyricsEnvironment& env, int verse = -1);
