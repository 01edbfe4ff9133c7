// The timing editor's waveform: the peaks of a song's sound and its voice band, their cache file
// (read back, refused when damaged or foreign), and a dragged stamp held between its neighbours.

#include "editor/Waveform.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(Waveform, PeaksFollowTheSoundMillisecondByMillisecond)
{
    QTemporaryDir dir;
    // A second of silence, then a second of a full-scale tone, then a quieter one.
    const QString song = dir.filePath("song.wav");
    ASSERT_TRUE(RunProgram("sox", {"-n", "-r", "44100", "-c", "2", song, "synth", "1", "sine", "0", "vol", "0", ":",
                                   "synth", "1", "sine", "440", ":", "synth", "1", "sine", "440", "vol", "0.5"}));
    const auto peaks = ComputePeaks(song);
    ASSERT_TRUE(peaks);
    EXPECT_NEAR(peaks->Seconds(), 3.0, 0.002);
    const auto [quietLow, quietHigh] = peaks->Range(0.1, 0.9);
    EXPECT_NEAR(quietLow, 0, 0.02);
    EXPECT_NEAR(quietHigh, 0, 0.02);
    const auto [loudLow, loudHigh] = peaks->Range(1.1, 1.9);
    EXPECT_NEAR(loudHigh, 1.0, 0.08);
    EXPECT_NEAR(loudLow, -1.0, 0.08);
    EXPECT_LT(peaks->Range(2.1, 2.9).second, loudHigh - 0.2) << "the quieter tone is lower";
    EXPECT_GT(peaks->Range(2.1, 2.9).second, 0.3);
    EXPECT_EQ(peaks->Range(5, 6), (std::pair<float, float>{0, 0})) << "past the song";
    EXPECT_EQ(peaks->Range(2, 1), (std::pair<float, float>{0, 0}));

    // The voice band: nothing in the silence, the 440 Hz tone loud in it.
    EXPECT_LT(peaks->VoiceLevel(0.1, 0.9), 0.02);
    EXPECT_GT(peaks->VoiceLevel(1.1, 1.9), 0.8);
    EXPECT_GT(peaks->VoiceLevel(1.1, 1.9), peaks->VoiceLevel(2.1, 2.9));

    const QString bass = dir.filePath("bass.wav");
    ASSERT_TRUE(RunProgram("sox", {"-n", "-r", "44100", "-c", "1", bass, "synth", "1", "sine", "60"}));
    const auto low = ComputePeaks(bass);
    ASSERT_TRUE(low);
    EXPECT_GT(low->Range(0.1, 0.9).second, 0.6);
    EXPECT_LT(low->VoiceLevel(0.1, 0.9), 0.15) << "a bass note is no voice";

    EXPECT_FALSE(ComputePeaks(MediaFixture("not-audio.txt")));
    EXPECT_FALSE(ComputePeaks(dir.filePath("missing.wav")));
}

TEST(Waveform, TheCacheGivesTheSamePeaksBackAndRefusesDamagedFiles)
{
    QTemporaryDir dir;
    WaveformPeaks peaks;
    for (int i = 0; i < 5000; ++i) {
        peaks.low.push_back(int8_t(-(i % 128)));
        peaks.high.push_back(int8_t(i % 128));
        peaks.voice.push_back(uint8_t(i % 256));
    }
    const QString key = QStringLiteral("12345/abcdef");
    ASSERT_TRUE(KeepPeaks(dir.filePath("cache"), key, peaks));
    const auto back = CachedPeaks(dir.filePath("cache"), key);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->low, peaks.low);
    EXPECT_EQ(back->high, peaks.high);
    EXPECT_EQ(back->voice, peaks.voice);
    EXPECT_FALSE(CachedPeaks(dir.filePath("cache"), QStringLiteral("other")));

    const auto fromCache = PeaksOfSong(dir.filePath("cache"), dir.filePath("moved/elsewhere.mp3"), key);
    ASSERT_TRUE(fromCache) << "the song known by its key, wherever it is now";
    EXPECT_EQ(fromCache->high, peaks.high);

    const QString file = dir.filePath("cache/12345_abcdef.peaks");
    const QByteArray whole = ReadFileBytes(file);
    ASSERT_FALSE(whole.isEmpty());
    for (const QByteArray& damaged : {whole.left(whole.size() - 1), QByteArray("SWPEAKS1") + whole.mid(8), whole.left(8),
                                      QByteArray()}) {
        WriteFileBytes(file, damaged);
        EXPECT_FALSE(CachedPeaks(dir.filePath("cache"), key));
    }
}

TEST(Waveform, ADraggedStampStaysBetweenItsNeighbours)
{
    const std::vector<double> stamps{1.0, 0, 2.0, 3.0, 0};
    EXPECT_DOUBLE_EQ(DraggedStamp(stamps, 2, 2.5), 2.5);
    EXPECT_DOUBLE_EQ(DraggedStamp(stamps, 2, 0.5), 1.0) << "not before the row above (past one untimed)";
    EXPECT_DOUBLE_EQ(DraggedStamp(stamps, 2, 3.5), 3.0) << "not after the row below";
    EXPECT_DOUBLE_EQ(DraggedStamp(stamps, 0, -1.0), 0.0);
    EXPECT_DOUBLE_EQ(DraggedStamp(stamps, 3, 99.0), 99.0) << "the last timed row goes as far as it likes";
}
