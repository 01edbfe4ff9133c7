// A song's key, tempo and vocal reduction come back when it is opened again, also after it was
// renamed or moved; another song of the same size does not take them; the file holding them
// survives damage and stays bounded.

#include "playback/SongMemory.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString Key(const QString& song)
{
    return SongMemory::SongKey(song);
}

struct SongSettings : testing::Test {
    QString Song(const QString& name, char fill, qsizetype size = 3 << 20)
    {
        QByteArray bytes(size, fill);
        bytes[size - 1] = 'x';  // past the first megabyte: not part of what is hashed
        WriteFileBytes(dir.filePath(name), bytes);
        return dir.filePath(name);
    }
    QTemporaryDir dir;
    QString file = dir.filePath("data/song settings.txt");
};

} // namespace

TEST_F(SongSettings, AChoiceComesBackForTheSameSongMovedAndRenamed)
{
    const QString song = Song("song.mp3", 'a');
    const SongChoice choice{2, 0.8, true};
    ASSERT_TRUE(SongMemory(file).Remember(Key(song), choice));

    QDir().mkpath(dir.filePath("elsewhere"));
    const QString moved = dir.filePath("elsewhere/renamed.mp3");
    ASSERT_TRUE(QFile::rename(song, moved));
    SongMemory later(file);
    EXPECT_EQ(later.Recall(Key(moved)), choice) << "a new run, the file moved to another folder";

    const QString other = Song("other.mp3", 'b');
    EXPECT_TRUE(later.Recall(Key(other)).IsNeutral()) << "another song of the same size";
    EXPECT_TRUE(later.Recall(Key(dir.filePath("gone.mp3"))).IsNeutral());
    EXPECT_FALSE(later.Remember(Key(dir.filePath("gone.mp3")), choice)) << "a song that cannot be read";

    ASSERT_TRUE(later.Remember(Key(moved), SongChoice{}));
    EXPECT_TRUE(SongMemory(file).Recall(Key(moved)).IsNeutral()) << "back to the song as it is: forgotten";
}

TEST_F(SongSettings, ValuesAreKeptInRangeAndADamagedFileGivesWhatItCan)
{
    const QString song = Song("song.ogg", 'c', 1000);
    SongMemory memory(file);
    ASSERT_TRUE(memory.Remember(Key(song), SongChoice{40, 9.0, false}));
    EXPECT_EQ(SongMemory(file).Recall(Key(song)), (SongChoice{12, 2.0, false}));
    ASSERT_TRUE(memory.Remember(Key(song), SongChoice{-3, std::nan(""), false}));
    EXPECT_EQ(SongMemory(file).Recall(Key(song)), (SongChoice{-3, 1.0, false}));

    const QByteArray kept = ReadFileBytes(file);
    const QString key = SongMemory::SongKey(song);
    WriteFileBytes(file, kept + "garbage\nno\ttabs\there\n" + key.toLatin1() + "\tx\t1\t0\n\n\t\t\t\n" +
                             QByteArray(100000, '\t') + "\n");
    EXPECT_EQ(SongMemory(file).Recall(Key(song)), (SongChoice{-3, 1.0, false})) << "the good line stands";

    WriteFileBytes(file, "not the header\n" + key.toLatin1() + "\t5\t1\t0\n");
    EXPECT_TRUE(SongMemory(file).Recall(Key(song)).IsNeutral()) << "a file of something else is not read";
}

TEST_F(SongSettings, AHugeFileIsReadOnlyAsFarAsTheSongsItMayHold)
{
    QByteArray text = "#Songweaver song settings 1\n";
    for (int i = 0; i < SongMemory::kKept + 2000; ++i)
        text += QByteArray::number(i) + "-00\t1\t1\t0\n";
    text += QByteArray(20 << 20, 'z');
    WriteFileBytes(file, text);

    const QString song = Song("new.wav", 'd', 500);
    SongMemory memory(file);
    ASSERT_TRUE(memory.Remember(Key(song), SongChoice{1, 1, false}));
    const QList<QByteArray> lines = ReadFileBytes(file).trimmed().split('\n');
    EXPECT_EQ(lines.size(), SongMemory::kKept + 1) << "the header and the songs kept";
    EXPECT_TRUE(lines.last().startsWith(SongMemory::SongKey(song).toLatin1())) << "the latest last";
    EXPECT_FALSE(lines.contains("0-00\t1\t1\t0")) << "the one chosen longest ago went";
}
