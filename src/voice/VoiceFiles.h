#pragma once
// The singer's voice files: one 16-bit PCM WAV per song that lines up with the song's start.
// Where a song's voice file lives, the temporary file a take is captured to, and how a take
// becomes part of the voice file: a new file with silence up to the take, or the take written
// over the file from its second on, everything else kept byte for byte. Every write replaces
// the voice file whole or leaves it as it was.

#include <QDateTime>
#include <QString>

struct WaveFormat {
    int formatTag = 0;
    int channels = 0;
    int rate = 0;
    int bits = 0;
    qint64 dataOffset = 0;  // where the samples start
    qint64 dataBytes = 0;
    int BlockAlign() const { return channels * bits / 8; }
    bool IsPcm16() const { return formatTag == 1 && bits == 16 && channels > 0 && rate > 0; }
};

// The "fmt " and "data" chunks of a WAV file; false when the file is not one.
bool ReadWaveFormat(const QString& path, WaveFormat& format);

// The folder of a song's voice file: the song's own with `recordFolder` 1 ("Save in the same
// folder as karaoke files"), else `voiceDirectory`. A WAV song's voice always goes to
// `voiceDirectory`, since beside the song it would take the song's own name.
QString VoiceFolder(const QString& songPath, int recordFolder, const QString& voiceDirectory);
// The folder, a "/" unless it ends in one, the song's base name and ".wav".
QString VoiceFileIn(const QString& folder, const QString& songPath);

class ThemeClass;

// Where a song's takes go and the shape they are recorded in: the settings' rate and channels,
// unless a voice file exists, whose own format then wins so that a new take fits the old one.
struct VoiceTarget {
    QString file;
    int rate = 22050;
    int channels = 2;
    // A file stands there that is not 16-bit PCM: no take can be placed into it.
    bool unusable = false;
};
VoiceTarget VoiceTargetOf(const QString& songPath, const ThemeClass& theme);
// Only the path of VoiceTargetOf, without reading the file.
QString VoiceFileOf(const QString& songPath, const ThemeClass& theme);

// The temporary take's name: month, day, year, 24-hour hour, minutes, seconds, AM or PM.
QString TempWaveName(const QDateTime& now);
// Removes the temporary takes in the folder that nobody has written since `idleSince`: what a
// run that ended in mid-take left behind. The number removed.
int RemoveLeftTakes(const QString& folder, const QDateTime& idleSince);

// Whole sample frames before `seconds` at `rate`, never negative.
qint64 FramesBefore(double seconds, int rate);

// Outcome of placing a take.
enum class PlaceResult { Done, TakeUnreadable, FormatMismatch, WriteFailed };

// A voice file made of silence up to `recordStart` and then the take of `tempWave`.
PlaceResult WriteNewVoiceFile(const QString& voiceFile, const QString& tempWave, double recordStart);
// The take of `tempWave` written over `voiceFile` from `recordStart` on; the file grows when the
// take runs past its end, with silence between its old end and a take that starts beyond it.
PlaceResult OverdubVoiceFile(const QString& voiceFile, const QString& tempWave, double recordStart);
// What the end of a recording does: an overdub when the voice file exists, else a new file.
PlaceResult PlaceTake(const QString& voiceFile, const QString& tempWave, double recordStart);
// A take sung while the song ran at `songPace` song seconds per second, rewritten in song time,
// its key kept, so it lines up with the song at any tempo. False when it cannot be read or
// written; the take is then as it was.
bool StretchTakeToSongTime(const QString& tempWave, double songPace);
