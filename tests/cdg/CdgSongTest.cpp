// MP3+G songs as collections hold them: the audio and the graphics side by side in any letter
// case, or together in a zip that is read into a folder of its own and never beside the user's
// files.

#include "cdg/CdgSong.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QByteArray SongBytes()
{
    return QByteArray("RIFF") + QByteArray(4000, 'a');
}

QByteArray GraphicsBytes(int packets)
{
    QByteArray bytes(packets * CdgDecoder::kPacketBytes, '\0');
    for (int i = 0; i < packets; ++i) {
        bytes[i * CdgDecoder::kPacketBytes] = 9;
        bytes[i * CdgDecoder::kPacketBytes + 1] = 1;  // memory preset
        bytes[i * CdgDecoder::kPacketBytes + 4] = char(i % 16);
    }
    return bytes;
}

} // namespace

TEST(CdgSong, ThePairBesideEachOtherIsFoundInAnyLetterCase)
{
    QTemporaryDir dir;
    WriteFileBytes(dir.filePath("Singer - Song.MP3"), SongBytes());
    WriteFileBytes(dir.filePath("singer - song.Cdg"), GraphicsBytes(3));
    WriteFileBytes(dir.filePath("Other.mp3"), SongBytes());

    EXPECT_EQ(CdgFileOf(dir.filePath("Singer - Song.MP3")), dir.filePath("singer - song.Cdg"));
    EXPECT_EQ(AudioOfCdgFile(dir.filePath("singer - song.Cdg")), dir.filePath("Singer - Song.MP3"));
    EXPECT_TRUE(CdgFileOf(dir.filePath("Other.mp3")).isEmpty()) << "a song without graphics";

    std::unique_ptr<ZipSong> zip;
    EXPECT_EQ(AudioOfKaraokeFile(dir.filePath("singer - song.Cdg"), zip), dir.filePath("Singer - Song.MP3"));
    EXPECT_EQ(AudioOfKaraokeFile(dir.filePath("Other.mp3"), zip), dir.filePath("Other.mp3"));
    EXPECT_FALSE(zip);
}

TEST(CdgSong, AGraphicsFileThatHoldsNoPacketOrIsTooLargeShowsNothing)
{
    QTemporaryDir dir;
    WriteFileBytes(dir.filePath("short.cdg"), QByteArray(23, '\x09'));
    EXPECT_FALSE(ReadCdgFile(dir.filePath("short.cdg")));
    EXPECT_FALSE(ReadCdgFile(dir.filePath("missing.cdg")));
    EXPECT_FALSE(ReadCdgFile(QString()));

    WriteFileBytes(dir.filePath("cut.cdg"), GraphicsBytes(5) + QByteArray(10, '\x09'));
    const auto cut = ReadCdgFile(dir.filePath("cut.cdg"));
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->PacketCount(), 5) << "the last packet cut short is left out";

    QFile huge(dir.filePath("huge.cdg"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(kLargestCdgFile + 24));
    huge.close();
    EXPECT_FALSE(ReadCdgFile(huge.fileName())) << "read in bounded memory: a larger file is no CD+G file";
}

TEST(CdgSong, AZipPairIsTakenOutIntoAFolderThatGoesWithTheSong)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("Disc 1 Track 4.zip");
    WriteZip(path, {{"inside/Track 4.mp3", SongBytes()}, {"inside/TRACK 4.CDG", GraphicsBytes(4)}, {"inside/", {}},
                    {"readme.txt", "ripped"}});
    const QStringList before = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);

    std::unique_ptr<ZipSong> zip;
    const QString audio = AudioOfKaraokeFile(path, zip);
    ASSERT_TRUE(zip);
    ASSERT_EQ(zip->Fault(), ZipSong::Problem::None);
    EXPECT_EQ(audio, zip->Audio());
    EXPECT_EQ(ReadFileBytes(audio), SongBytes());
    EXPECT_EQ(CdgFileOf(audio), zip->Graphics()) << "the player finds the graphics beside the audio taken out";
    EXPECT_EQ(ReadCdgFile(zip->Graphics())->PacketCount(), 4);
    EXPECT_FALSE(audio.startsWith(dir.path())) << "nothing is taken out beside the zip";
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);

    const QString folder = QFileInfo(audio).absolutePath();
    zip.reset();
    EXPECT_FALSE(QFileInfo::exists(folder)) << "the folder goes when the song closes";
}

TEST(CdgSong, AZipWithoutOnePairOrWithADamagedMemberIsRefused)
{
    QTemporaryDir dir;
    const auto faultOf = [&](const QString& name) {
        std::unique_ptr<ZipSong> zip;
        EXPECT_TRUE(AudioOfKaraokeFile(dir.filePath(name), zip).isEmpty()) << name.toStdString();
        return zip ? zip->Fault() : ZipSong::Problem::None;
    };
    WriteZip(dir.filePath("audio-only.zip"), {{"a.mp3", SongBytes()}});
    WriteZip(dir.filePath("other-names.zip"), {{"a.mp3", SongBytes()}, {"b.cdg", GraphicsBytes(2)}});
    WriteZip(dir.filePath("two-songs.zip"), {{"a.mp3", SongBytes()}, {"a.ogg", SongBytes()}, {"a.cdg", GraphicsBytes(2)}});
    WriteZip(dir.filePath("empty.zip"), {});
    WriteFileBytes(dir.filePath("not-a.zip"), "PK\x03\x04 this is no zip");
    EXPECT_EQ(faultOf("audio-only.zip"), ZipSong::Problem::NoPair);
    EXPECT_EQ(faultOf("other-names.zip"), ZipSong::Problem::NoPair);
    EXPECT_EQ(faultOf("two-songs.zip"), ZipSong::Problem::NoPair);
    EXPECT_EQ(faultOf("empty.zip"), ZipSong::Problem::Unreadable) << "libzip keeps no empty archive";
    EXPECT_EQ(faultOf("not-a.zip"), ZipSong::Problem::Unreadable);
    EXPECT_EQ(faultOf("missing.zip"), ZipSong::Problem::Unreadable);

    const QString damaged = dir.filePath("damaged.zip");
    WriteZip(damaged, {{"song.mp3", SongBytes()}, {"song.cdg", GraphicsBytes(2)}});
    QByteArray bytes = ReadFileBytes(damaged);
    const qsizetype audioAt = bytes.indexOf("RIFF");
    ASSERT_GT(audioAt, 0);
    bytes[audioAt + 100] = 'b';
    WriteFileBytes(damaged, bytes);
    std::unique_ptr<ZipSong> zip;
    EXPECT_TRUE(AudioOfKaraokeFile(damaged, zip).isEmpty());
    ASSERT_TRUE(zip);
    EXPECT_EQ(zip->Fault(), ZipSong::Problem::BrokenMember) << "its checksum tells";
    EXPECT_EQ(zip->BrokenName(), "song.mp3");

    for (qsizetype cut = 0; cut < ReadFileBytes(damaged).size(); cut += 37) {
        WriteFileBytes(dir.filePath("cut.zip"), ReadFileBytes(dir.filePath("other-names.zip")).left(cut));
        std::unique_ptr<ZipSong> piece;
        EXPECT_TRUE(AudioOfKaraokeFile(dir.filePath("cut.zip"), piece).isEmpty());
    }
}
