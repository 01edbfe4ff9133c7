// Tapping a song's timing and correcting it: the stamps, the walk down the rows, the held key,
// and the karaoke display following each change; and the editor's file rules.

#include "editor/EditorFiles.h"
#include "editor/EditorTiming.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <optional>
#include <gtest/gtest.h>

namespace {

class FakeSong final : public SongClock {
public:
    bool HasSong() const override { return position.has_value(); }
    double Position() const override { return position.value_or(0); }
    std::optional<double> position;
    bool current = true;
};

struct Timing : testing::Test {
    Timing() { document.Split("one two\r\nthree"); }
    LyricsState lyrics;
    EditorDocument document{lyrics};
    FakeSong song;
    EditorTiming timing{document, lyrics, song, [this] { return song.current; }};
};

} // namespace

TEST_F(Timing, TapsStampTheRowLessTheReactionAndWalkDownToTheLastRow)
{
    EXPECT_EQ(timing.CaptureLine(1), 0) << "nothing plays";
    EXPECT_EQ(document.Entry(1).Time, 0);

    lyrics.PlayLyrics = lyrics.EditLyrics;
    song.position = 0.1;
    EXPECT_EQ(timing.CaptureLine(0), 2) << "no selection: the first row";
    EXPECT_DOUBLE_EQ(document.Entry(1).Time, -0.15);
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[1].Time, -0.15) << "the karaoke window follows at once";
    song.position = 2.0;
    EXPECT_EQ(timing.CaptureLine(2), 3);
    song.position = 3.0;
    EXPECT_EQ(timing.CaptureLine(3), 3) << "the last row keeps the selection";
    EXPECT_DOUBLE_EQ(timing.Correct(), 2.75);
    song.position = 3.5;
    EXPECT_EQ(timing.CaptureLine(3), 3);
    EXPECT_DOUBLE_EQ(document.Entry(3).Time, 3.25) << "a second tap overwrites the last row";
    EXPECT_DOUBLE_EQ(document.Entry(2).Time, 1.75);

    song.current = false;
    song.position = 9.0;
    timing.CaptureLine(1);
    EXPECT_DOUBLE_EQ(document.Entry(1).Time, 8.75);
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[1].Time, -0.15) << "another song's display is left alone";
}

TEST_F(Timing, AHeldKeyMovesTheStampByGrowingStepsAndNeverDownFromZero)
{
    song.position = 10.0;
    EXPECT_FALSE(timing.StartCorrection(2, false)) << "down from 0";
    ASSERT_TRUE(timing.StartCorrection(2, true)) << "up from 0 works";
    for (int tick = 0; tick < 25; ++tick)
        timing.CorrectionTick();
    EXPECT_EQ(timing.StopCorrection(), 2);
    EXPECT_NEAR(document.Entry(2).Time, 9 * 0.001 + 0.1 + 9 * 0.01 + 6 * 0.1, 1e-9);
    EXPECT_NEAR(lyrics.PlayLyrics[2].Time, document.Entry(2).Time, 1e-12) << "the display moves with the key";

    ASSERT_TRUE(timing.StartCorrection(2, false));
    for (int tick = 0; tick < 9; ++tick)
        timing.CorrectionTick();
    timing.StopCorrection();
    EXPECT_NEAR(document.Entry(2).Time, 0.799 - 0.009, 1e-9);
    timing.CorrectionTick();
    EXPECT_NEAR(document.Entry(2).Time, 0.790, 1e-9) << "no ticks once the key is up";
    EXPECT_FALSE(timing.StartCorrection(0, true));
    EXPECT_FALSE(timing.StartCorrection(4, true));
}

TEST(EditorFiles, LimitsNamesTextAndTheVersionPage)
{
    QTemporaryDir dir;
    auto sized = [&dir](const char* name, qint64 size) {
        WriteFileBytes(dir.filePath(name), QByteArray(size, 'a'));
        return dir.filePath(name);
    };
    EXPECT_FALSE(FileTooLarge(sized("a.lrs", 300000), kLyricsFileLimit));
    EXPECT_TRUE(FileTooLarge(sized("b.lrs", 300001), kLyricsFileLimit));
    EXPECT_FALSE(FileTooLarge(sized("c.txt", 500000), kTextFileLimit));
    EXPECT_TRUE(FileTooLarge(sized("d.txt", 500001), kTextFileLimit));
    EXPECT_FALSE(FileTooLarge(dir.filePath("b.lrs"), kTextFileLimit)) << "a 300 kB text opens";

    EXPECT_EQ(NameWithExtension("/x/song", "txt"), "/x/song.txt");
    EXPECT_EQ(NameWithExtension("/x/song.text", "txt"), "/x/song.text");
    EXPECT_EQ(DefaultTextName("/x/My Song.mp3"), "/x/My Song.txt");

    const QString text = dir.filePath("words.txt");
    ASSERT_TRUE(WriteTextFile(text, QStringLiteral("Zażółć gęślą\r\njaźń")));
    EXPECT_EQ(ReadFileBytes(text), QStringLiteral("Zażółć gęślą\r\njaźń\r\n").toUtf8());
    EXPECT_EQ(ReadTextFile(text, true), QStringLiteral("Zażółć gęślą\r\njaźń\r\n"));

    EXPECT_EQ(VersionCheckPage("https://example.org/version.php", "1.4.2"),
              "<form name=go method=post action=https://example.org/version.php>\r\n"
              "<input type=hidden name=board value=1.4.2>\r\n</form>\r\n<SCRIPT LANGUAGE=JAVASCRIPT>\r\n"
              "document.go.submit();\r\n</SCRIPT>\r\n");
}

TEST_F(Timing, AtHalfSpeedTheReactionIsTheSingersQuarterSecondNotTheSongs)
{
    lyrics.PlayLyrics = lyrics.EditLyrics;
    double tempo = 1.0;
    timing.SetTempo([&tempo] { return tempo; });
    // A syllable sung at song second 10 is tapped a quarter of the singer's second later.
    for (const double speed : {1.0, 0.75, 0.5}) {
        tempo = speed;
        song.position = 10.0 + 0.25 * speed;
        timing.CaptureLine(1);
        EXPECT_DOUBLE_EQ(document.Entry(1).Time, 10.0) << "at " << speed;
    }
}

TEST_F(Timing, AHeldTapStampsTheStartAndKeepsTheLengthToTheRelease)
{
    lyrics.PlayLyrics = lyrics.EditLyrics;
    song.position = 2.25;
    EXPECT_EQ(timing.CaptureLine(1), 2);
    song.position = 2.85;
    timing.HoldEnd(1);
    EXPECT_DOUBLE_EQ(document.Entry(1).Time, 2.0);
    EXPECT_NEAR(document.Entry(1).Length, 0.6, 1e-9);
    EXPECT_NEAR(lyrics.PlayLyrics[1].Length, 0.6, 1e-9) << "on the karaoke display too";

    timing.HoldEnd(2);
    EXPECT_EQ(document.Entry(2).Length, 0) << "a row not stamped keeps no length";
    song.position = 1.0;
    timing.HoldEnd(1);
    EXPECT_EQ(document.Entry(1).Length, 0) << "never below nothing";
}
