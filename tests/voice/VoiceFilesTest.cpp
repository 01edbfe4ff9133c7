// Voice files: where they live, the temporary take's name, and placing a take into a new file
// or over an old one.

#include "audio/WavFile.h"
#include "voice/VoiceFiles.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// A 16-bit WAV of `frames` frames whose every byte is `fill`.
QByteArray Wave(int rate, int channels, qint64 frames, char fill)
{
    const QByteArray data(frames * channels * 2, fill);
    return WavHeader(rate, channels, 16, quint32(data.size())) + data;
}

quint32 Le32At(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

} // namespace

TEST(VoiceFiles, TheFileLivesBesideTheSongOrInTheVoiceFolder)
{
    const QString song = QStringLiteral("/music/Queen - Bohemian.Rhapsody.mp3");
    EXPECT_EQ(VoiceFolder(song, 1, QStringLiteral("/voices")), QStringLiteral("/music"));
    EXPECT_EQ(VoiceFolder(song, 0, QStringLiteral("/voices")), QStringLiteral("/voices"));
    EXPECT_EQ(VoiceFileIn(QStringLiteral("/voices"), song), QStringLiteral("/voices/Queen - Bohemian.Rhapsody.wav"));
    EXPECT_EQ(VoiceFileIn(QStringLiteral("/voices/"), song), QStringLiteral("/voices/Queen - Bohemian.Rhapsody.wav"));
    EXPECT_EQ(VoiceFolder(QStringLiteral("/music/Take Five.WAV"), 1, QStringLiteral("/voices")),
              QStringLiteral("/voices"))
        << "never the song itself";
}

TEST(VoiceFiles, TheTemporaryNameIsMonthDayYearHourMinuteSecondAndHalfDay)
{
    EXPECT_EQ(TempWaveName(QDateTime(QDate(2026, 3, 7), QTime(14, 5, 9))), QStringLiteral("03072026140509PM.WAV"));
    EXPECT_EQ(TempWaveName(QDateTime(QDate(2026, 11, 22), QTime(0, 30, 0))), QStringLiteral("11222026003000AM.WAV"));
}

TEST(VoiceFiles, TakesLeftByARunThatEndedGoAtTheNextStartAndNothingElseDoes)
{
    QTemporaryDir dir;
    const QDateTime start = QDateTime::currentDateTime();
    auto make = [&](const QString& name, qint64 secondsAgo) {
        const QString path = dir.filePath(name);
        WriteAll(path, "RIFF");
        QFile file(path);
        file.open(QIODevice::ReadWrite);
        file.setFileTime(start.addSecs(-secondsAgo), QFileDevice::FileModificationTime);
    };
    make(TempWaveName(start.addDays(-2)), 2 * 86400);  // killed in mid-take two days ago
    make(QStringLiteral("11232026093015AM.WAV"), 600);
    make(TempWaveName(start), 0);                       // a take being written now
    make(QStringLiteral("holiday.WAV"), 600);           // the user's own files
    make(QStringLiteral("11232026093015AM.wav.bak"), 600);
    EXPECT_EQ(RemoveLeftTakes(dir.path(), start.addSecs(-60)), 2);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 3);
    EXPECT_TRUE(QFile::exists(dir.filePath(TempWaveName(start))));
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("holiday.WAV"))));
}

TEST(VoiceFiles, AFirstTakeGetsTheHeaderAndSilenceUpToItsSecond)
{
    QTemporaryDir dir;
    const QString take = dir.filePath(QStringLiteral("take.WAV"));
    WriteAll(take, Wave(22050, 2, 22050, '\x11'));
    const QString voice = dir.filePath(QStringLiteral("Voice/song.wav"));
    ASSERT_EQ(WriteNewVoiceFile(voice, take, 60.0), PlaceResult::Done) << "the folder is made when missing";

    const QByteArray bytes = ReadAll(voice);
    const qint64 silence = 60LL * 22050 * 4;
    ASSERT_EQ(bytes.size(), 44 + silence + 22050 * 4);
    EXPECT_EQ(bytes.left(4), "RIFF");
    EXPECT_EQ(Le32At(bytes, 4), quint32(bytes.size() - 8));
    EXPECT_EQ(bytes.mid(8, 8), "WAVEfmt ");
    EXPECT_EQ(Le32At(bytes, 16), 16u);
    EXPECT_EQ(qFromLittleEndian<quint16>(bytes.constData() + 20), 1);
    EXPECT_EQ(qFromLittleEndian<quint16>(bytes.constData() + 22), 2);
    EXPECT_EQ(Le32At(bytes, 24), 22050u);
    EXPECT_EQ(Le32At(bytes, 28), 22050u * 4);
    EXPECT_EQ(qFromLittleEndian<quint16>(bytes.constData() + 32), 4);
    EXPECT_EQ(qFromLittleEndian<quint16>(bytes.constData() + 34), 16);
    EXPECT_EQ(bytes.mid(36, 4), "data");
    EXPECT_EQ(Le32At(bytes, 40), quint32(bytes.size() - 44));
    EXPECT_EQ(bytes.mid(44, silence), QByteArray(silence, '\0'));
    EXPECT_EQ(bytes.mid(44 + silence), QByteArray(22050 * 4, '\x11'));

    WaveFormat format;
    ASSERT_TRUE(ReadWaveFormat(voice, format));
    EXPECT_TRUE(format.IsPcm16());
    EXPECT_EQ(format.dataOffset, 44);
    EXPECT_EQ(format.dataBytes, silence + 22050 * 4);
}

TEST(VoiceFiles, AnOverdubLeavesBothSidesByteForByte)
{
    QTemporaryDir dir;
    const QString voice = dir.filePath(QStringLiteral("song.wav"));
    QByteArray original = Wave(11025, 1, 11025 * 60, '\0');
    for (qint64 i = 44; i < original.size(); ++i)
        original[i] = char(i * 7 % 251);
    WriteAll(voice, original);
    const QString take = dir.filePath(QStringLiteral("take.WAV"));
    WriteAll(take, Wave(11025, 1, 11025 * 10, '\x55'));

    ASSERT_EQ(OverdubVoiceFile(voice, take, 30.0), PlaceResult::Done);
    const QByteArray bytes = ReadAll(voice);
    ASSERT_EQ(bytes.size(), original.size());
    const qint64 from = 44 + 30LL * 11025 * 2;
    const qint64 to = 44 + 40LL * 11025 * 2;
    EXPECT_TRUE(bytes.left(from) == original.left(from));
    EXPECT_EQ(bytes.mid(from, to - from), QByteArray(to - from, '\x55'));
    EXPECT_TRUE(bytes.mid(to) == original.mid(to));

    // A take in another shape is refused and leaves the file as it was.
    WriteAll(take, Wave(22050, 2, 100, '\x66'));
    EXPECT_EQ(OverdubVoiceFile(voice, take, 1.0), PlaceResult::FormatMismatch);
    EXPECT_TRUE(ReadAll(voice) == bytes);
}

TEST(VoiceFiles, AnOverdubPastTheEndGrowsTheFileAndKeepsTheChunksAfterTheSamples)
{
    QTemporaryDir dir;
    const QString voice = dir.filePath(QStringLiteral("song.wav"));
    // Samples, then a LIST chunk a tag editor may have added.
    const QByteArray list = QByteArray("LIST") + QByteArray("\x04\0\0\0", 4) + "INFO";
    QByteArray original = Wave(8000, 1, 8000, '\x01') + list;
    qToLittleEndian(quint32(original.size() - 8), original.data() + 4);
    WriteAll(voice, original);
    const QString take = dir.filePath(QStringLiteral("take.WAV"));
    WriteAll(take, Wave(8000, 1, 4000, '\x02'));

    ASSERT_EQ(OverdubVoiceFile(voice, take, 1.5), PlaceResult::Done);
    const QByteArray bytes = ReadAll(voice);
    const qint64 samples = 8000 * 2 + 4000 * 2 + 4000 * 2;  // old, gap of silence, take
    EXPECT_EQ(Le32At(bytes, 40), quint32(samples));
    EXPECT_EQ(Le32At(bytes, 4), quint32(bytes.size() - 8));
    EXPECT_EQ(bytes.mid(44, 16000), QByteArray(16000, '\x01'));
    EXPECT_EQ(bytes.mid(44 + 16000, 8000), QByteArray(8000, '\0'));
    EXPECT_EQ(bytes.mid(44 + 24000, 8000), QByteArray(8000, '\x02'));
    EXPECT_EQ(bytes.mid(44 + samples), list);
    WaveFormat format;
    ASSERT_TRUE(ReadWaveFormat(voice, format));
    EXPECT_EQ(format.dataBytes, samples);
}

TEST(VoiceFiles, BrokenTakesAndFilesAreToldApart)
{
    QTemporaryDir dir;
    const QString voice = dir.filePath(QStringLiteral("song.wav"));
    const QString take = dir.filePath(QStringLiteral("take.WAV"));
    WriteAll(take, "not a wave at all");
    EXPECT_EQ(WriteNewVoiceFile(voice, take, 0), PlaceResult::TakeUnreadable);
    EXPECT_FALSE(QFile::exists(voice));
    EXPECT_EQ(WriteNewVoiceFile(voice, dir.filePath(QStringLiteral("missing.WAV")), 0), PlaceResult::TakeUnreadable);

    WriteAll(take, Wave(8000, 1, 10, '\x03'));
    const QString blocked = dir.filePath(QStringLiteral("file"));
    WriteAll(blocked, "a file where the folder should be");
    EXPECT_EQ(WriteNewVoiceFile(blocked + QStringLiteral("/song.wav"), take, 0), PlaceResult::WriteFailed);

    WaveFormat format;
    EXPECT_FALSE(ReadWaveFormat(take + QStringLiteral(".none"), format));
    EXPECT_EQ(FramesBefore(-0.5, 8000), 0);
    EXPECT_EQ(FramesBefore(1.00006, 8000), 8000);
    EXPECT_EQ(FramesBefore(1.00007, 8000), 8001);
}
