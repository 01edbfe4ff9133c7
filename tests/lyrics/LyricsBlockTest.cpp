#include "lyrics/LyricsLoader.h"
#include "core/TextCodec.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString Crlf(QStringList lines)
{
    return lines.join(QStringLiteral("\r\n"));
}

struct Syllable {
    double time;
    QString text;
    bool lineEnd;
    QString lineText;
    bool operator==(const Syllable&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Syllable& s)
{
    return os << s.time << " '" << s.text.toStdString() << "' " << s.lineEnd << " '" << s.lineText.toStdString()
              << "'";
}

std::vector<Syllable> Syllables(const std::vector<LyricItem>& lyrics)
{
    std::vector<Syllable> out;
    for (size_t i = 1; i < lyrics.size(); ++i)
        out.push_back({lyrics[i].Time, lyrics[i].Text, lyrics[i].LineEnd, lyrics[i].LineText});
    return out;
}

const QFont kFont;

} // namespace

TEST(LyricsBlock, SyllableLinesGivePiecesLineTextsAndLineEnds)
{
    LyricsState lyrics;
    const QString text = Crlf({"#Songweaver", "[1,5]Hel[2.5]lo [3]world", "", "[4]One", "#comment",
                               "[5]Last [6]line", "#End Songweaver"});
    ASSERT_TRUE(ParseLyricsText(lyrics, text, "/songs", kFont));
    const std::vector<Syllable> expected{
        {1.5, "Hel", false, "Hello world"}, {2.5, "lo ", false, "Hello world"}, {3, "world", true, "Hello world"},
        {4, "One", true, "One"},           {5, "Last ", false, "Last line"},    {6, "line", false, "Last line"},
    };
    EXPECT_EQ(Syllables(lyrics.PlayLyrics), expected);
    EXPECT_EQ(lyrics.LongestLine, "Hello world");

    ASSERT_TRUE(ParseLyricsText(lyrics, "[x]no time[7,25]", "/songs", kFont));
    EXPECT_EQ(Syllables(lyrics.PlayLyrics), (std::vector<Syllable>{{0, "no time", false, "no time"}, {7.25, "", false, "no time"}}));
}

TEST(LyricsBlock, TextBeforeTheFirstBracketFailsAndLoadsNoSyllable)
{
    LyricsState lyrics;
    ASSERT_TRUE(ParseLyricsText(lyrics, "[1]old", "/songs", kFont));
    bool refitted = false;
    EXPECT_FALSE(ParseLyricsText(lyrics, Crlf({"#Songweaver", "[1]fine", "stray[2]text"}), "/songs", kFont,
                                 [&] { refitted = true; }));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);
    EXPECT_FALSE(refitted);
    EXPECT_FALSE(ParseLyricsText(lyrics, "[1]a[2b", "/songs", kFont));
}

TEST(LyricsBlock, HeaderKeysAreFoundOnAnyOfTheFirstTwentyLines)
{
    QStringList lines{"#Songweaver",         "#IMG CUSTOM X=100",         "#BACK COLOR=text",
                      "#TITLE=Song",         "#LAYOUT=2",                 "#ARTIST=",
                      "#PICTURE=bg.jpg",     "#IMAGE=a.png%12",           "#IMAGE=/p/b.png%30%Fade%5%Left",
                      "#IMAGE=c.png%7%Roll", "#OUTLINE COLOR 4=16777215", "#ALIGNMENT=1"};
    while (lines.size() < 21)
        lines << "#IMG OFFSET Y=3";
    lines << "#ARTIST=Too late" << "[1]a";

    LyricsState lyrics;
    ASSERT_TRUE(ParseLyricsText(lyrics, Crlf(lines), "/songs", kFont));
    const LyricItem& h = lyrics.PlayLyrics[0];
    EXPECT_EQ(h.Title, "Song");
    EXPECT_EQ(h.Artist, "");
    EXPECT_EQ(h.Picture, "/songs/bg.jpg");
    EXPECT_EQ(h.Layout, 0);
    EXPECT_EQ(h.BackColor, 0);
    EXPECT_EQ(h.ForeColor, -1);
    EXPECT_EQ(h.OutlineColor4, 16777215);
    EXPECT_EQ(h.Alignment, 1);
    EXPECT_EQ(h.ImageCustomX, 100);
    EXPECT_EQ(h.ImageCustomY, 240);
    EXPECT_EQ(h.ImageOffsetY, 3);
    ASSERT_EQ(lyrics.PlayPictures.size(), 4u);
    EXPECT_EQ(lyrics.PlayPictures[1].File, "/songs/a.png");
    EXPECT_EQ(lyrics.PlayPictures[1].Time, 12);
    EXPECT_EQ(lyrics.PlayPictures[1].Effect, "");
    EXPECT_EQ(lyrics.PlayPictures[2].File, "/p/b.png");
    EXPECT_EQ(lyrics.PlayPictures[2].Effect, "Fade");
    EXPECT_EQ(lyrics.PlayPictures[2].Speed, 5);
    EXPECT_EQ(lyrics.PlayPictures[2].Detail, "Left");
    EXPECT_EQ(lyrics.PlayPictures[3].Effect, "Roll");
    EXPECT_EQ(lyrics.PlayPictures[3].Detail, "");
    EXPECT_EQ(lyrics.PictureTimes[1].Index, 3);
    EXPECT_EQ(Syllables(lyrics.PlayLyrics).size(), 1u);
}

TEST(LyricsBlock, EditorReaderRefusesLayoutAndKeepsPathsAsWritten)
{
    LyricsState lyrics;
    QStringList messages;
    const auto critical = [&](const QString& m) { messages << m; };
    lyrics.EditLyrics.resize(3);

    EXPECT_FALSE(ParseEditorLyrics(lyrics, Crlf({"#Songweaver", "#TITLE=x", "#LAYOUT=1", "[1]a"}), critical));
    EXPECT_EQ(messages, QStringList{"Lyrics format doesn't seem to be valid.\r\nLine 3: #LAYOUT=1"});
    EXPECT_EQ(lyrics.EditLyrics.size(), 3u);
    EXPECT_EQ(lyrics.EditLyrics[0].Title, "");

    EXPECT_FALSE(ParseEditorLyrics(lyrics, Crlf({"#Songweaver", "[1]a[2]b", "", "[3]c[4d", "[5]e"}), critical));
    ASSERT_EQ(messages.size(), 2);
    EXPECT_EQ(messages[1], "Lyrics format doesn't seem to be valid.\r\nLine 4: [3]c[4d") << "the line to mend is named";

    ASSERT_TRUE(ParseEditorLyrics(
        lyrics, Crlf({"#Songweaver", "#PICTURE=bg.jpg", "#IMAGE=a.png%4", "[1]a[2]b", "[3]c", "#End Songweaver"}),
        critical));
    EXPECT_EQ(lyrics.EditLyrics[0].Picture, "bg.jpg");
    EXPECT_TRUE(lyrics.EditLyrics[0].LineEnd);
    EXPECT_EQ(lyrics.EditPictures.size(), 2u);
    EXPECT_EQ(lyrics.EditPictures[1].File, "a.png");
    EXPECT_EQ(Syllables(lyrics.EditLyrics),
              (std::vector<Syllable>{{1, "a", false, "ab"}, {2, "b", true, "ab"}, {3, "c", false, "c"}}));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);
}

TEST(LyricsBlock, WriterOrderConditionsAndLineEnds)
{
    std::vector<LyricItem> doc(1);
    doc[0].Title = "T";
    doc[0].HighlightColor = 65280;
    doc[0].Layout = 2;
    doc[0].ImageOffsetX = -4;
    for (auto [time, text, end] : {std::tuple{1.5, "Hel", false}, {2.25, "lo", true}, {3.0, "last", true}}) {
        LyricItem s;
        s.Time = time;
        s.Text = text;
        s.LineEnd = end;
        doc.push_back(s);
    }
    std::vector<PictureItem> pictures(1);
    EXPECT_EQ(BuildLyricsBlock(doc, pictures, ","),
              Crlf({"#Songweaver", "#TITLE=T", "#HIGHLIGHT COLOR=65280", "#LAYOUT=2", "[1,5]Hel[2,25]lo",
                    "[3]last", "#End Songweaver", ""}));

    pictures.push_back({"a.png", 12, "", "", 0});
    pictures.push_back({"b.png", 30, "Fade", "Left", 5});
    EXPECT_EQ(BuildLyricsBlock(doc, pictures, "."),
              Crlf({"#Songweaver", "#TITLE=T", "#HIGHLIGHT COLOR=65280", "#LAYOUT=2", "#IMAGE=a.png%12",
                    "#IMAGE=b.png%30%Fade%5%Left", "#IMG LAYOUT=1", "#IMG POSITION=0", "#IMG CUSTOM X=320",
                    "#IMG CUSTOM Y=240", "#IMG OFFSET X=-4", "#IMG OFFSET Y=0", "[1.5]Hel[2.25]lo", "[3]last",
                    "#End Songweaver", ""}));
}

TEST(LyricsBlock, SavedFileReadsBackTheSameExceptLayout)
{
    LyricsState source;
    ASSERT_TRUE(ParseEditorLyrics(source,
                                  Crlf({"#Songweaver", "#ARTIST=Zażółć", "#TITLE=Café", "#PICTURE=bg.jpg",
                                        "#FORE COLOR=255", "#HIGHLIGHT COLOR=1", "#OUTLINE COLOR 1=2",
                                        "#OUTLINE COLOR 2=3", "#OUTLINE COLOR 3=4", "#OUTLINE COLOR 4=5",
                                        "#ALIGNMENT=0", "#BACK COLOR=6", "#IMAGE=a.png%12",
                                        "#IMAGE=b.png%30%Fade%5%Left", "#IMG LAYOUT=3", "#IMG OFFSET Y=7",
                                        "[0.5]Za[1.234]żółć [2,5]gęś", "[10.001]jaźń", "#End Songweaver"}),
                                  {}));
    source.EditLyrics[0].Layout = 2;

    QTemporaryDir dir;
    const QString path = dir.filePath("song.lrs");
    ASSERT_TRUE(SaveLrsFile(path, source.EditLyrics, source.EditPictures));
    const QByteArray bytes = ReadFileBytes(path);
    EXPECT_TRUE(bytes.startsWith("#Songweaver\r\n#ARTIST=Za\xc5\xbc"));
    EXPECT_TRUE(bytes.endsWith("[10.001]ja\xc5\xba\xc5\x84\r\n#End Songweaver\r\n"));
    EXPECT_EQ(bytes.count("\n"), bytes.count("\r\n"));

    LyricsState back;
    ASSERT_TRUE(ParseEditorLyrics(back, DecodeText(bytes, false).replace("#LAYOUT=2\r\n", ""), {}));
    EXPECT_EQ(Syllables(back.EditLyrics), Syllables(source.EditLyrics));
    const LyricItem& a = source.EditLyrics[0];
    const LyricItem& b = back.EditLyrics[0];
    EXPECT_EQ(std::tie(a.Artist, a.Title, a.Picture, a.ForeColor, a.HighlightColor, a.OutlineColor1, a.OutlineColor2,
                       a.OutlineColor3, a.OutlineColor4, a.BackColor, a.Alignment, a.ImageLayout, a.ImageOffsetY),
              std::tie(b.Artist, b.Title, b.Picture, b.ForeColor, b.HighlightColor, b.OutlineColor1, b.OutlineColor2,
                       b.OutlineColor3, b.OutlineColor4, b.BackColor, b.Alignment, b.ImageLayout, b.ImageOffsetY));
    ASSERT_EQ(back.EditPictures.size(), 3u);
    EXPECT_EQ(back.EditPictures[2].Detail, "Left");

    LyricsState played;
    ASSERT_TRUE(ParseLyricsText(played, DecodeText(bytes, false), dir.path(), kFont));
    EXPECT_EQ(played.PlayLyrics[0].Layout, 0);
    EXPECT_EQ(Syllables(played.PlayLyrics), Syllables(source.EditLyrics));
}
