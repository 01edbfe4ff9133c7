// Every export read back by its own reader gives the same lines, words and times within 10 ms;
// the files are what other programs expect of each format.

#include "formats/LyricsFiles.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// Two lines, syllables and words, times on the millisecond: what the editor holds.
std::vector<LyricItem> EditorLyrics()
{
    std::vector<LyricItem> lyrics(1);
    lyrics[0].Artist = QStringLiteral("Zażółć Band");
    lyrics[0].Title = QStringLiteral("Gęślą jaźń");
    const auto add = [&](double time, const char* text, bool lineEnd, const char* line) {
        LyricItem item;
        item.Time = time;
        item.Text = QString::fromUtf8(text);
        item.LineEnd = lineEnd;
        item.LineText = QString::fromUtf8(line);
        lyrics.push_back(item);
    };
    add(12.345, "Row, ", false, "Row, row, row your boat ");
    add(12.801, "row, ", false, "Row, row, row your boat ");
    add(13.25, "row ", false, "Row, row, row your boat ");
    add(13.7, "your ", false, "Row, row, row your boat ");
    add(14.123, "boat ", true, "Row, row, row your boat ");
    add(16.0, "gen", false, "gently down the stream ");
    add(16.333, "tly ", false, "gently down the stream ");
    add(17.01, "down ", false, "gently down the stream ");
    add(17.5, "the ", false, "gently down the stream ");
    add(18.999, "stream ", false, "gently down the stream ");
    return lyrics;
}

struct Line {
    QString text;
    double time;
};

std::vector<Line> LinesOf(const std::vector<LyricItem>& lyrics)
{
    std::vector<Line> lines;
    for (size_t i = 1; i < lyrics.size(); ++i)
        if (i == 1 || lyrics[i - 1].LineEnd)
            lines.push_back({lyrics[i].LineText.trimmed(), lyrics[i].Time});
    return lines;
}

void ExpectSameSyllables(const std::vector<LyricItem>& read, const std::vector<LyricItem>& written, const char* format)
{
    ASSERT_EQ(read.size(), written.size()) << format;
    for (size_t i = 1; i < read.size(); ++i) {
        EXPECT_EQ(read[i].Text.trimmed(), written[i].Text.trimmed()) << format << " syllable " << i;
        EXPECT_NEAR(read[i].Time, written[i].Time, 0.010) << format << " syllable " << i;
        EXPECT_EQ(read[i].LineEnd, written[i].LineEnd) << format << " syllable " << i;
    }
}

void ExpectSameLines(const std::vector<LyricItem>& read, const std::vector<LyricItem>& written, const char* format)
{
    const std::vector<Line> a = LinesOf(read), b = LinesOf(written);
    ASSERT_EQ(a.size(), b.size()) << format;
    for (size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].text, b[i].text) << format;
        EXPECT_NEAR(a[i].time, b[i].time, 0.010) << format;
    }
}

} // namespace

TEST(WriteFormats, EveryExportReadsBackWithItsTextsAndTimes)
{
    const std::vector<LyricItem> lyrics = EditorLyrics();
    const auto lrc = ReadLrc(WriteLrc(lyrics, false));
    ASSERT_TRUE(lrc);
    ExpectSameLines(lrc->items, lyrics, "LRC");
    EXPECT_EQ(lrc->items[0].Artist, lyrics[0].Artist);
    EXPECT_EQ(lrc->items[0].Title, lyrics[0].Title);

    const auto enhanced = ReadLrc(WriteLrc(lyrics, true));
    ASSERT_TRUE(enhanced);
    ExpectSameSyllables(enhanced->items, lyrics, "enhanced LRC");

    const QString ultraStarText = WriteUltraStar(lyrics, QStringLiteral("Gęślą jaźń.mp3"));
    const auto ultraStar = ReadUltraStar(ultraStarText);
    ASSERT_TRUE(ultraStar);
    ExpectSameSyllables(ultraStar->items, lyrics, "UltraStar");
    EXPECT_EQ(ultraStar->ultraStar.audio, "Gęślą jaźń.mp3");
    EXPECT_TRUE(ultraStarText.contains("#BPM:6000\r\n")) << "the longest beat, 2.5 ms, that keeps every syllable within 1 ms";
    EXPECT_TRUE(ultraStarText.contains("#GAP:12345.000\r\n"));

    const auto ass = ReadAss(WriteAss(lyrics, QStringLiteral("DejaVu Sans"), 40));
    ASSERT_TRUE(ass);
    ExpectSameSyllables(ass->items, lyrics, "ASS");

    const auto srt = ReadSrt(WriteSrt(lyrics));
    ASSERT_TRUE(srt);
    ExpectSameLines(srt->items, lyrics, "SRT");
}

TEST(WriteFormats, TheFilesAreWhatOtherProgramsExpect)
{
    std::vector<LyricItem> lyrics = EditorLyrics();
    EXPECT_EQ(WriteLrc(lyrics, false), QStringLiteral("[ar:Zażółć Band]\r\n[ti:Gęślą jaźń]\r\n[00:12.35]Row, row, row your boat\r\n"
                                                      "[00:16.00]gently down the stream\r\n"));
    EXPECT_TRUE(WriteLrc(lyrics, true).contains("[00:16.00]<00:16.00>gen<00:16.33>tly <00:17.01>down "));
    const QString srt = WriteSrt(lyrics);
    EXPECT_TRUE(srt.startsWith("1\r\n00:00:12,345 --> 00:00:16,000\r\nRow, row, row your boat\r\n\r\n2\r\n00:00:16,000 --> "
                               "00:00:20,000\r\n"))
        << srt.toStdString();
    lyrics[0].HighlightColor = 0x0000FF;  // red, as Win32 numbers it
    const QString ass = WriteAss(lyrics, QStringLiteral("DejaVu Sans"), 40);
    EXPECT_TRUE(ass.contains("Style: Karaoke,DejaVu Sans,40,&H000000FF,&H00FFFFFF,")) << ass.toStdString();
    EXPECT_TRUE(ass.contains("Dialogue: 0,0:00:11.85,0:00:15.62,Karaoke,,0,0,0,,{\\k50}{\\k46}Row, {\\k45}row, "))
        << ass.toStdString();

    // Times off the 10 ms grid take finer beats; on it, 10 ms beats do.
    for (LyricItem& item : lyrics)
        item.Time = std::round(item.Time * 100) / 100;
    EXPECT_TRUE(WriteUltraStar(lyrics, "a.mp3").contains("#BPM:1500\r\n"));
}

TEST(WriteFormats, AWriteReplacesTheFileWholeOrFails)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("song.lrc");
    WriteFileBytes(path, "old words");
    ASSERT_TRUE(WriteTimedLyricsFile(path, LyricsFormat::Srt, EditorLyrics(), dir.filePath("song.mp3")));
    EXPECT_TRUE(ReadFileBytes(path).startsWith("1\r\n00:00:12,345"));
    EXPECT_FALSE(ReadFileBytes(path).startsWith("\xEF\xBB\xBF")) << "UTF-8 without a mark";

    const QString nowhere = dir.filePath("gone/song.lrc");
    EXPECT_FALSE(WriteTimedLyricsFile(nowhere, LyricsFormat::Lrc, EditorLyrics(), {}));
    EXPECT_FALSE(QFile::exists(nowhere));
}

TEST(WriteFormats, HeldTapLengthsEndTheNotesAndTheLinesTheyMeasured)
{
    std::vector<LyricItem> lyrics = EditorLyrics();
    lyrics[2].Length = 0.2;    // "row, " sung 200 ms, then a rest before "row "
    lyrics[5].Length = 0.5;    // "boat ", the line's last
    const QString ultraStar = WriteUltraStar(lyrics, QStringLiteral("a.mp3"));
    // Beats of 2.5 ms from the gap at 12.345 s: "row, " starts at beat 182 and lasts 80.
    EXPECT_TRUE(ultraStar.contains(": 182 80 0 row, \r\n")) << ultraStar.toStdString();
    EXPECT_TRUE(ultraStar.contains(": 711 200 0 boat \r\n")) << ultraStar.toStdString();
    const auto back = ReadUltraStar(ultraStar);
    ASSERT_TRUE(back);
    ExpectSameSyllables(back->items, lyrics, "UltraStar with lengths");

    const QString enhanced = WriteLrc(lyrics, true);
    EXPECT_TRUE(enhanced.contains("<00:14.12>boat <00:14.62>\r\n")) << enhanced.toStdString();
    const auto lrc = ReadLrc(enhanced);
    ASSERT_TRUE(lrc);
    ExpectSameSyllables(lrc->items, lyrics, "enhanced LRC with a line's end");
}
