#pragma once
// MP3+G songs: an audio file and the `.cdg` graphics of the same base name, side by side in a
// folder or together in one zip file.

#include "cdg/CdgScreen.h"

#include <QString>
#include <QTemporaryDir>
#include <memory>

// The `.cdg` file beside a song with its base name, in any letter case; empty when none is there.
QString CdgFileOf(const QString& songPath);
// The audio file beside a `.cdg` file with its base name (MP3, Ogg, WAV, Musepack, Monkey's
// Audio), in any letter case; empty when none is there.
QString AudioOfCdgFile(const QString& cdgPath);
// The graphics of a `.cdg` file; null when it cannot be read, is too large or holds no whole
// packet.
std::shared_ptr<CdgDecoder> ReadCdgFile(const QString& cdgPath);

bool IsCdgName(const QString& path);
bool IsZipName(const QString& path);

class ZipSong;
// The audio a karaoke file plays: the audio beside a `.cdg` file, or the one a zip holds, taken
// out into `zip` (which tells why, when a zip holds none); any other path plays itself. Empty
// when there is nothing to play.
QString AudioOfKaraokeFile(const QString& path, std::unique_ptr<ZipSong>& zip);

// The pair of a zip file taken out into a temporary folder of its own, which goes when this
// object goes; nothing is ever written beside the zip.
class ZipSong {
public:
    enum class Problem { None, Unreadable, NoPair, BrokenMember };

    // Reads the zip: exactly one audio file and one `.cdg` file of the same base name.
    static std::unique_ptr<ZipSong> Open(const QString& zipPath);

    Problem Fault() const { return m_fault; }
    // The zip file the pair came from.
    QString Source() const { return m_source; }
    // The audio and the graphics taken out; empty unless Fault() is None.
    QString Audio() const { return m_audio; }
    QString Graphics() const { return m_graphics; }
    // The name of the member that could not be read, with BrokenMember.
    QString BrokenName() const { return m_broken; }

    // The largest audio member taken out: a larger one is no song of a disc.
    static constexpr qint64 kLargestAudio = qint64(1) << 30;

private:
    Problem m_fault = Problem::None;
    QTemporaryDir m_folder;
    QString m_source, m_audio, m_graphics, m_broken;
};
