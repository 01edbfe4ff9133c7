// The printed page's HTML, byte for byte, its colours, its file and the print settings kept
// between runs.

#include "print/LyricsDocument.h"

#include "lyrics/LyricsData.h"
#include "print/PrintSettings.h"
#include "support/TestSupport.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

// A song as the editor holds it: each line's syllables carry the whole line's text, and the
// last syllable of the song ends no line.
std::vector<LyricItem> Song(const QString& title, const QString& artist, const QStringList& lines)
{
    std::vector<LyricItem> lyrics(1);
    lyrics[0].Title = title;
    lyrics[0].Artist = artist;
    for (const QString& line : lines) {
        for (const QString& word : line.split(u' ')) {
            LyricItem item;
            item.Text = word + u' ';
            item.LineText = line;
            lyrics.push_back(item);
        }
        lyrics.back().LineEnd = true;
    }
    lyrics.back().LineEnd = false;
    return lyrics;
}

const char* const kHead = "<html>\r\n<head>\r\n<title>Songweaver</title>\r\n"
                          "<META content=\"text/html; charset=windows-1250\" http-equiv=Content-Type></HEAD>\r\n"
                          "<BODY bgColor=#FFFFFF text=#00>\r\n";

} // namespace

TEST(LyricsDocument, HexColorSwapsTheWholeLengthsAndKeepsTheOddOnes)
{
    EXPECT_EQ(HexColor(0), "#000000");
    EXPECT_EQ(HexColor(0xF), "#F00000") << "one digit lands in the high nibble of red";
    EXPECT_EQ(HexColor(0xAB), "#AB0000");
    EXPECT_EQ(HexColor(0xABC), "ABC") << "three digits pass as they stand";
    EXPECT_EQ(HexColor(0x1234), "#341200");
    EXPECT_EQ(HexColor(0x12345), "12345");
    EXPECT_EQ(HexColor(0x123456), "#563412") << "blue, green, red become red, green, blue";
    EXPECT_EQ(HexColor(0xFF0000), "#0000FF") << "Win32 blue";
    EXPECT_EQ(HexColor(0x1234567), "1234567");
    EXPECT_EQ(HexColor(0x12345678), "12345678");
    EXPECT_EQ(HexColor(-1), "FFFFFFFF");
}

TEST(LyricsDocument, TheDefaultPageHasATitleBlockAndTheLinesUnescaped)
{
    const auto lyrics = Song("Star", "Jane", {"Twinkle <twinkle>", "you & me"});
    const QString expected =
        QLatin1String(kHead) +
        "<P align=center>\r\n"
        "<span style=\"font-family:Arial,Arial,Tahoma,Geneva; font-size: 16pt;\"><FONT color=#000000><b>\r\n"
        "Star<BR>\r\n"
        "Jane<BR>\r\n"
        "</b></span></P><BR>\r\n"
        "<P align=center>\r\n"
        "<span style=\"font-family:Arial,Arial,Tahoma,Geneva; font-size: 12pt;\"><FONT color=#000000>\r\n"
        "Twinkle <twinkle><br>\r\n"
        "you & me<br>\r\n"
        "</span></P><BR></BODY></HTML>";
    EXPECT_EQ(BuildDocument(lyrics, PrintSettings{}), expected);
}

TEST(LyricsDocument, TheTitleBlockNeedsATitleOrAnArtistAndPrintTitle)
{
    PrintSettings settings;
    settings.Alignment = QStringLiteral("Right");
    settings.LyricsFontName = QStringLiteral("Liberation Serif");
    settings.LyricsFontSize = 14;
    settings.LyricsFontBold = true;
    settings.LyricsFontItalic = true;
    settings.LyricsFontUnderline = true;
    settings.LyricColor = 0x0000FF;
    const QString lyricsBlock =
        "<P align=right>\r\n"
        "<span style=\"font-family:Liberation Serif,Arial,Tahoma,Geneva; font-size: 14pt;\"><FONT color=#FF0000>"
        "<b><i><u>\r\n"
        "one two<br>\r\n"
        "</b></i></u></span></P><BR></BODY></HTML>";

    EXPECT_EQ(BuildDocument(Song({}, {}, {"one two"}), settings), QLatin1String(kHead) + lyricsBlock)
        << "neither title nor artist";

    settings.PrintTitle = false;
    EXPECT_EQ(BuildDocument(Song("Star", "Jane", {"one two"}), settings), QLatin1String(kHead) + lyricsBlock);

    settings.PrintTitle = true;
    settings.TitleFontBold = false;
    settings.TitleFontItalic = true;
    settings.TitleColor = 0x1234;
    settings.Alignment = QStringLiteral("Left");
    const QString page = BuildDocument(Song({}, "Jane", {"one two"}), settings);
    EXPECT_TRUE(page.startsWith(QLatin1String(kHead) +
                                "<P align=left>\r\n"
                                "<span style=\"font-family:Arial,Arial,Tahoma,Geneva; font-size: 16pt;\">"
                                "<FONT color=#341200><i>\r\n"
                                "Jane<BR>\r\n"
                                "</i></span></P><BR>\r\n"
                                "<P align=left>\r\n"))
        << page.toStdString();
}

TEST(LyricsDocument, EveryLinePrintsOnceAndAnEmptySongPrintsNone)
{
    const QString page = BuildDocument(Song({}, {}, {"a b c", "d", "e f"}), PrintSettings{});
    EXPECT_TRUE(page.contains("\r\na b c<br>\r\nd<br>\r\ne f<br>\r\n</span>")) << page.toStdString();
    EXPECT_EQ(page.count("<br>"), 3);

    const QString empty = BuildDocument({}, PrintSettings{});
    EXPECT_EQ(empty.count("<br>"), 0);
    EXPECT_TRUE(empty.endsWith("</span></P><BR></BODY></HTML>"));
}

TEST(LyricsDocument, TheFileIsWindows1250AndReplacesAnEarlierOne)
{
    const QString html = BuildDocument(Song("Gwiazdka", {}, {"Zażółć gęślą jaźń", "snow ☃"}), PrintSettings{});
    const QByteArray bytes = DocumentBytes(html);
    EXPECT_TRUE(bytes.contains("Za\xbf\xf3\xb3\xe6 g\xea\x9cl\xb9 ja\x9f\xf1<br>"));
    EXPECT_TRUE(bytes.contains("snow ?<br>")) << "a character the code page lacks";

    WriteDocument(QStringLiteral("SWVTestPage"), QStringLiteral("earlier and longer text"));
    const auto path = WriteDocument(QStringLiteral("SWVTestPage"), html);
    ASSERT_TRUE(path);
    EXPECT_TRUE(path->endsWith("/SWVTestPage.htm"));
    EXPECT_EQ(ReadFileBytes(*path), bytes);
    EXPECT_EQ(ReadDocument(*path), QString(html).replace(QStringLiteral("☃"), QStringLiteral("?")));
    QFile::remove(*path);
}

TEST(LyricsDocument, PrintSettingsSurviveARestartUnderPRT)
{
    MemoryStore store;
    EXPECT_EQ(PrintSettings::Load(store).Alignment, "Center") << "a fresh install";
    EXPECT_EQ(PrintSettings::Load(store).LyricsFontSize, 12);

    PrintSettings chosen;
    chosen.Alignment = QStringLiteral("Right");
    chosen.LyricColor = 0x00FF00;
    chosen.TitleColor = 0x1234567;
    chosen.PrintTitle = false;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(20);
    font.setItalic(true);
    chosen.SetLyricsFont(font);
    chosen.Save(store);
    EXPECT_EQ(store.values.value("PRT/Alignment"), "Right");
    EXPECT_EQ(store.values.value("PRT/PrintTitle"), "0");
    EXPECT_EQ(store.values.value("PRT/LyricsFontName"), "DejaVu Sans");

    const PrintSettings read = PrintSettings::Load(store);
    EXPECT_EQ(read.Alignment, "Right");
    EXPECT_EQ(read.LyricColor, 0x00FF00);
    EXPECT_EQ(read.TitleColor, 0x1234567);
    EXPECT_FALSE(read.PrintTitle);
    EXPECT_EQ(read.LyricsFont().family(), "DejaVu Sans");
    EXPECT_EQ(read.LyricsFont().pointSize(), 20);
    EXPECT_TRUE(read.LyricsFont().italic());
    EXPECT_TRUE(read.TitleFont().bold()) << "the title font kept its default";
}
