// The timed lyrics of other programs as people's files have them: LRC with its repeated tags,
// offsets and long songs, enhanced LRC's word tags, UltraStar's beats, blanks, relative files and
// duets, ASS karaoke tags and SRT cues, in every line end and encoding; nothing a damaged file
// holds breaks a reader.

#include "core/TextCodec.h"
#include "formats/TimedLyrics.h"

#include <QRandomGenerator>
#include <QStringEncoder>
#include <gtest/gtest.h>

namespace {

// "time|text" of each syllable, a "/" after a line's last, joined by "; ".
std::string Syllables(const std::optional<TimedLyrics>& lyrics)
{
    QStringList out;
    if (!lyrics)
        return "nothing";
    for (size_t i = 1; i < lyrics->items.size(); ++i) {
        const LyricItem& s = lyrics->items[i];
        out << QString::number(s.Time, 'f', 3) + u'|' + s.Text + (s.LineEnd ? QStringLiteral("/") : QString());
    }
    return out.join(QStringLiteral("; ")).toStdString();
}

std::string Joined(const QStringList& list)
{
    return list.join(QStringLiteral("; ")).toStdString();
}

} // namespace

TEST(ReadLrc, RepeatedTagsOffsetsLongSongsAndHeaderTags)
{
    const QString text = QStringLiteral("[ar:Queen]\n[ti:Song]\n[al:Album]\n[by:me]\n[length:03:20]\n[xx:unknown]\n"
                                        "[00:10.50][01:10.50]Chorus line\n"
                                        "[00:05.123]First line\n"
                                        "an untimed line\n"
                                        "[75:01:50]Very late\n"
                                        "[00:20]Whole seconds\n");
    const auto lyrics = ReadLrc(text);
    ASSERT_TRUE(lyrics);
    EXPECT_EQ(lyrics->items[0].Artist, "Queen");
    EXPECT_EQ(lyrics->items[0].Title, "Song");
    EXPECT_EQ(lyrics->items[0].FormatName, "LRC");
    EXPECT_TRUE(lyrics->items[0].LineTimed);
    EXPECT_EQ(Syllables(lyrics), Joined(QStringList{"5.123|First line/", "10.500|Chorus line/", "20.000|Whole seconds/",
                                              "70.500|Chorus line/", "4501.500|Very late"}));
    EXPECT_EQ(lyrics->items[2].LineText, "Chorus line");

    const auto early = ReadLrc(QStringLiteral("[offset:+500]\r\n[00:10.00]Sooner\r\n[00:00.20]Never before zero"));
    EXPECT_EQ(Syllables(early), Joined(QStringList{"0.000|Never before zero/", "9.500|Sooner"}))
        << "a positive offset shows the words sooner";
    EXPECT_FALSE(ReadLrc(QStringLiteral("[ar:Nobody]\nno times at all\n")));
}

TEST(ReadLrc, EveryLineEndReadsAlike)
{
    const QString lf = QStringLiteral("[00:01.00]One\n[00:02.00]Two\n");
    QString crlf = lf, cr = lf;
    crlf.replace(u'\n', QStringLiteral("\r\n"));
    cr.replace(u'\n', u'\r');
    EXPECT_EQ(Syllables(ReadLrc(crlf)), Syllables(ReadLrc(lf)));
    EXPECT_EQ(Syllables(ReadLrc(cr)), Syllables(ReadLrc(lf)));
}

TEST(ReadLrc, EnhancedWordTagsWithPlainLinesAndAnOpenLastWord)
{
    const auto lyrics = ReadLrc(QStringLiteral("[00:01.00]<00:01.00>Hel<00:01.40>lo <00:02.00>world<00:02.80>\n"
                                               "[00:03.00]A plain line\n"
                                               "[00:05.00]Lead <00:05.50>in<00:06.00> end\n"));
    EXPECT_EQ(lyrics->items[0].FormatName, "LRC (enhanced)");
    EXPECT_FALSE(lyrics->items[0].LineTimed);
    EXPECT_EQ(Syllables(lyrics), Joined(QStringList{"1.000|Hel", "1.400|lo ", "2.000|world/", "3.000|A plain line/",
                                              "5.000|Lead ", "5.500|in", "6.000| end"}));
    EXPECT_EQ(lyrics->items[1].LineText, "Hello world");
}

TEST(ReadUltraStar, BeatsGapBlanksKindsAndTheSideTable)
{
    const QString text = QStringLiteral("#TITLE:Song\n#ARTIST:Band\n#MP3:Band - Song.mp3\n#BPM:300\n#GAP:1000,75\n"
                                        "#VIDEO:v.mp4\n#COVER:c.jpg\n#VERSION:1.1.0\n#MEDLEYSTARTBEAT:10\n"
                                        ": 0 4 60 Hel\n* 4 4 62 lo \nF 8 2 0 world\n- 12\n"
                                        "R 16 4 55  rap\nG 20 4 57 ~\n: 24 4 59 end \nE\n: 99 1 1 after the end\n");
    const auto lyrics = ReadUltraStar(text);
    ASSERT_TRUE(lyrics);
    EXPECT_EQ(lyrics->items[0].Title, "Song");
    EXPECT_EQ(lyrics->items[0].Artist, "Band");
    EXPECT_EQ(lyrics->items[0].FormatName, "UltraStar");
    EXPECT_EQ(lyrics->ultraStar.audio, "Band - Song.mp3");
    EXPECT_DOUBLE_EQ(lyrics->ultraStar.gapMs, 1000.75);
    // A beat is a quarter of a BPM beat: 300 BPM makes 50 ms beats.
    EXPECT_EQ(Syllables(lyrics), Joined(QStringList{"1.001|Hel", "1.201|lo ", "1.401|world/", "1.801|rap", "2.201|end "}));
    ASSERT_EQ(lyrics->ultraStar.notes.size(), 6u);
    const UltraStarNote& golden = lyrics->ultraStar.notes[1];
    EXPECT_EQ(golden.kind, '*');
    EXPECT_EQ(golden.pitch, 62);
    EXPECT_EQ(golden.length, 4);
    EXPECT_EQ(golden.syllable, 2);
    EXPECT_EQ(lyrics->ultraStar.notes[4].syllable, -1) << "a held note has no syllable of its own";
}

TEST(ReadUltraStar, RelativeFilesAndDuets)
{
    const auto relative = ReadUltraStar(QStringLiteral("#BPM:150\n#GAP:0\n#RELATIVE:yes\n: 0 2 0 One \n- 4 8\n: 0 2 0 Two\n"));
    EXPECT_EQ(Syllables(relative), Joined(QStringList{"0.000|One /", "0.800|Two"})) << "the second line counts from beat 8";

    const QString duet = QStringLiteral("#BPM:150\n#GAP:0\n#P1:Anna\n#P2:Ben\nP1\n: 0 2 0 Her \n- 4\n: 4 2 0 part\n"
                                        "P2\n: 2 2 0 His \n- 6\n: 6 2 0 part\nP3\n: 10 2 0 Both\nE\n");
    const auto first = ReadUltraStar(duet);
    EXPECT_EQ(Syllables(first), Joined(QStringList{"0.000|Her /", "0.400|part/", "1.000|Both"}));
    EXPECT_EQ(first->ultraStar.partNames, (QStringList{"Anna", "Ben"}));
    EXPECT_EQ(first->ultraStar.notes.size(), 5u) << "both parts' notes are kept";
    const auto second = ReadUltraStar(duet, 2);
    EXPECT_EQ(Syllables(second), Joined(QStringList{"0.200|His /", "0.600|part/", "1.000|Both"}));
    EXPECT_FALSE(ReadUltraStar(QStringLiteral("#TITLE:No tempo\n: 0 1 0 x\n"))) << "notes without a #BPM";
}

TEST(ReadAss, KaraokeTagsOtherTagsWholeLinesAndCommas)
{
    const QString text = QStringLiteral(
        "[Script Info]\nTitle: x\n\n[V4+ Styles]\nStyle: Default,Arial,20\n\n[Events]\n"
        "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
        "Dialogue: 0,0:00:02.00,0:00:05.00,Default,,0,0,0,,{\\k50}{\\kf20}Hel{\\K30\\b1}lo, {\\ko40}world\n"
        "Comment: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,not shown\n"
        "Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\i1}A whole line,\\Nwith a comma\n");
    const auto lyrics = ReadAss(text);
    ASSERT_TRUE(lyrics);
    EXPECT_EQ(lyrics->items[0].FormatName, "ASS");
    EXPECT_FALSE(lyrics->items[0].LineTimed);
    EXPECT_EQ(Syllables(lyrics), Joined(QStringList{"1.000|A whole line, with a comma/", "2.500|Hel", "2.700|lo, ", "3.000|world"}));

    const QString ssa = QStringLiteral("[Events]\nFormat: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
                                       "Dialogue: Marked=0,0:01:00.50,0:01:02.00,*Default,,0,0,0,,Only words\n");
    const auto old = ReadAss(ssa);
    EXPECT_EQ(Syllables(old), Joined(QStringList{"60.500|Only words"}));
    EXPECT_TRUE(old->items[0].LineTimed);
}

TEST(ReadSrt, CuesOfOneOrMoreLinesWithoutMarkup)
{
    const QString text = QStringLiteral("\xFEFF" "1\r\n00:00:01,000 --> 00:00:03,500\r\n<i>First</i> line\r\n\r\n"
                                        "2\r\n00:00:04.250 --> 00:00:06,000\r\nTwo\r\nrows\r\n\r\n3\r\nno times here\r\n");
    const auto lyrics = ReadSrt(text);
    EXPECT_EQ(Syllables(lyrics), Joined(QStringList{"1.000|First line/", "4.250|Two rows"}));
    EXPECT_EQ(lyrics->items[0].FormatName, "SRT");
    EXPECT_TRUE(lyrics->items[0].LineTimed);
}

TEST(TimedLyricsText, EncodingsAreFoundWhateverTheFileCameIn)
{
    const QString russian = QStringLiteral("[00:01.00]Ночь, улица, фонарь, аптека,\n[00:05.00]Бессмысленный и тусклый свет.\n"
                                           "[00:09.00]Живи еще хоть четверть века -\n[00:13.00]Все будет так. Исхода нет.\n");
    QStringEncoder koi8("KOI8-R");
    const QByteArray koiBytes = koi8.encode(russian);
    EXPECT_EQ(DecodeAnyText(koiBytes, false).toStdString(), russian.toStdString()) << "KOI8-R";
    QStringEncoder cp1251("windows-1251");
    EXPECT_EQ(DecodeAnyText(cp1251.encode(russian), true), russian) << "Windows-1251, whatever the interface";

    const QString french = QStringLiteral("[00:01.00]Déjà vu, à côté de la fenêtre\n[00:03.00]Où était-elle, l'été dernier ?\n"
                                          "[00:05.00]Ça m'étonne que tu ne le saches pas.\n");
    QStringEncoder cp1252("windows-1252");
    EXPECT_EQ(DecodeAnyText(cp1252.encode(french), false), french) << "Windows-1252";
    EXPECT_EQ(DecodeAnyText("\xEF\xBB\xBF" + french.toUtf8(), true), french) << "UTF-8 with its mark";
    QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    EXPECT_EQ(DecodeAnyText(utf16.encode(french), false), french) << "UTF-16 with its mark";
    EXPECT_EQ(DecodeAnyText("plain words", true), "plain words");
}

TEST(TimedLyricsText, DamagedAndHugeTextBreaksNoReader)
{
    QRandomGenerator random(33);
    const QStringList seeds = {QStringLiteral("[00:01.00]<00:0"), QStringLiteral("#BPM:0\n: 1 2 3 x\n- -5 -9\nP9\n"),
                               QStringLiteral("[Events]\nDialogue: 0,9:99:99.99,,{\\k999999999}{"),
                               QStringLiteral("1\n99:99:99,999 --> \n"), QStringLiteral("#BPM:nan\n#GAP:inf\n: 0 1 0 a\n")};
    for (int round = 0; round < 300; ++round) {
        QString text = seeds[round % seeds.size()];
        for (int i = 0; i < 40; ++i)
            text.insert(int(random.bounded(text.size() + 1)), QChar(char16_t(random.bounded(0x20, 0x7f))));
        ReadLrc(text);
        ReadUltraStar(text);
        ReadAss(text);
        ReadSrt(text);
    }
    const auto far = ReadUltraStar(QStringLiteral("#BPM:300\n#GAP:0\n#RELATIVE:yes\n: 0 1 0 a\n- 999999999 999999999\n"
                                                 "- 999999999 999999999\n: 999999999 1 0 b\nE\n"));
    ASSERT_TRUE(far);
    EXPECT_EQ(far->ultraStar.notes.back().beat, 1'000'000'000) << "beats past any song are held";
    EXPECT_FALSE(ReadUltraStar(QStringLiteral("#BPM:1e-300\n#GAP:0\n: 0 1 0 a\n"))) << "no tempo a song has";
    const QString huge = QStringLiteral("[00:01.00]") + QString(2'000'000, u'a') + QStringLiteral("\n[00:02.00]b\n");
    const auto lyrics = ReadLrc(huge);
    ASSERT_TRUE(lyrics);
    EXPECT_EQ(lyrics->items.size(), 3u);
    const QString manyTags = QString(200000, u'[') + QStringLiteral("00:01.00]x");
    EXPECT_FALSE(ReadLrc(manyTags).has_value() && ReadLrc(manyTags)->items.size() > 2);
}
