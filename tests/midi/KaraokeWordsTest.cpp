// The words of karaoke MIDI files: the byte reader's rules of lines, lead-in and times, the
// finishing pass, the event parser for the files the byte reader cannot read, and the lyrics a
// MIDI song gets in the player.

#include "MidiBuilder.h"
#include "lyrics/LyricsBlock.h"
#include "midi/KaraokeWords.h"
#include "support/TestSupport.h"

#include <QStringEncoder>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// 250 ticks a quarter note at 60 BPM: 4 ms a tick, 250 ticks a second.
constexpr int kDivision = 250;
constexpr double kMsPerTick = 4.0;

TrackBuilder Conductor(uint32_t endTick = 250 * 60)
{
    return TrackBuilder().Tempo(0, 1000000).Event(0, {0x90, 60, 100}).Event(endTick, {0x80, 60, 0}).End();
}

std::vector<LyricItem> Words(const TrackBuilder& track)
{
    std::vector<LyricItem> words(1);
    GetWords(track.Body(), kMsPerTick, false, words);
    return words;
}

QStringList Texts(const std::vector<LyricItem>& words)
{
    QStringList texts;
    for (size_t i = 1; i < words.size(); ++i)
        texts << words[i].Text;
    return texts;
}

} // namespace

TEST(KaraokeWords, LineMarksMakeTheLeadInAndCloseLines)
{
    // "pre" comes before the first mark and is lost; a bare "/" gives no empty line.
    const auto words = Words(TrackBuilder()
                                 .Meta(0, 3, "Words")
                                 .Text(0, "@KMIDI KARAOKE FILE")
                                 .Text(100, "pre")
                                 .Text(275, "\\ One")
                                 .Text(250, "two ")
                                 .Text(250, "/")
                                 .Text(0, "/Three")
                                 .Text(250, "four")
                                 .End());
    ASSERT_EQ(Texts(words), (QStringList{"", "One", "two ", "Three", "four"}));
    EXPECT_DOUBLE_EQ(words[2].Time, 1.5) << "the 100 ticks before pre and the 275 behind it";
    EXPECT_DOUBLE_EQ(words[1].Time, 0.0) << "a lead-in 2 s early, never before 0";
    EXPECT_TRUE(words[1].LineEnd);
    EXPECT_FALSE(words[2].LineEnd);
    EXPECT_TRUE(words[3].LineEnd) << "closed by the mark with text, not by the bare one";
    EXPECT_DOUBLE_EQ(words[3].Time, 2.5);
    EXPECT_DOUBLE_EQ(words[4].Time, 3.5) << "a bare mark counts in time";
    EXPECT_FALSE(words[5].LineEnd);

    std::vector<LyricItem> finished = words;
    FinishWords(finished);
    EXPECT_DOUBLE_EQ(finished[1].Time, 0.0) << "the engine's MIDI clock is the heard time: no offset";
    EXPECT_DOUBLE_EQ(finished[2].Time, 1.5);
    EXPECT_EQ(finished[1].LineText, "");
    EXPECT_EQ(finished[2].LineText, "Onetwo ");
    EXPECT_EQ(finished[3].LineText, "Onetwo ");
    EXPECT_EQ(finished[4].LineText, "") << "after the last line end";

    const auto late = Words(TrackBuilder().Text(0, "x").Text(2500, "/Late").End());
    ASSERT_EQ(late.size(), 3u);
    EXPECT_DOUBLE_EQ(late[1].Time, 8.0);
    EXPECT_DOUBLE_EQ(late[2].Time, 10.0);
}

TEST(KaraokeWords, WithoutMarksEverySyllableIsOneUnfinishedLine)
{
    auto words = Words(TrackBuilder().Text(0, "la ").Text(250, "la ").Text(250, "land").End());
    FinishWords(words);
    ASSERT_EQ(Texts(words), (QStringList{"la ", "la ", "land"}));
    for (size_t i = 1; i < words.size(); ++i) {
        EXPECT_FALSE(words[i].LineEnd);
        EXPECT_EQ(words[i].LineText, "");
    }
    EXPECT_DOUBLE_EQ(words[3].Time, 2.0);
}

TEST(KaraokeWords, DeltaLengthIsToldByTheNext255)
{
    // After "a": 81 80 80 and a 255 where a fourth delta byte would be: three bytes are read,
    // 16384 ticks, and the 255 starts the next event.
    const auto words = Words(TrackBuilder()
                                 .Text(0, "\\a")
                                 .Raw(QByteArray("\x81\x80\x80\xFF\x01\x01" "b", 7))
                                 .Raw(QByteArray("\x00", 1))
                                 .Text(0, "c")
                                 .End());
    ASSERT_EQ(Texts(words), (QStringList{"", "a", "b", "c"}));
    EXPECT_DOUBLE_EQ(words[3].Time, 16384 * kMsPerTick / 1000);
    // A text whose stated length runs into the next event is taken at its length, and the 255
    // inside it starts an event of its own.
    const auto overlong = Words(TrackBuilder().Raw(QByteArray("\x00\xFF\x01\x06" "ab\x00\xFF\x01\x01" "c", 11)).End());
    ASSERT_EQ(overlong.size(), 3u);
    EXPECT_EQ(overlong[1].Text.size(), 6);
    EXPECT_TRUE(overlong[1].Text.startsWith(QStringLiteral("ab")));
    EXPECT_EQ(overlong[2].Text, "c");
}

TEST(KaraokeWords, TheEventParserReadsWhatTheByteReaderCannot)
{
    // A "Words" track that also holds controller events: the byte reader reads the controller
    // bytes as deltas and puts syllables far beyond the song's end.
    TrackBuilder mixed = TrackBuilder().Meta(0, 3, "Words");
    for (int i = 0; i < 12; ++i)
        mixed.Text(i == 0 ? 250 : 125, i == 0 ? "\\la" : "la").Event(0, {0xB0, 7, 100});
    mixed.End();
    const QByteArray mixedFile = MidiFileOf({Conductor(), mixed}, kDivision);

    MidiFigures figures;
    const double end = MeasureSong(mixedFile, figures);
    EXPECT_DOUBLE_EQ(end, 60.0);
    std::vector<LyricItem> bytesOnly(1);
    ReadFile(mixedFile, figures, bytesOnly, false);
    ASSERT_GT(bytesOnly.size(), 2u);
    EXPECT_GT(bytesOnly.back().Time, end) << "the byte reader's reading of this file";

    std::vector<LyricItem> words(1);
    EXPECT_EQ(ReadMidiWords(mixedFile, figures, end, words, false), WordsOrigin::TextEvents);
    ASSERT_EQ(words.size(), 14u);
    EXPECT_DOUBLE_EQ(words[2].Time, 1.0);
    EXPECT_DOUBLE_EQ(words[13].Time, 1.0 + 11 * 0.5);

    // Lyric events of a notation program: line breaks before syllables, "-" joining words.
    TrackBuilder sung = TrackBuilder().Event(0, {0xC0, 10});
    const char* syllables[] = {"Twin-", "kle", "twin-", "kle", "lit-", "tle", "star", "\rHow", "I", "won-", "der"};
    for (const char* s : syllables)
        sung.Lyric(250, s).Event(0, {0x90, 60, 90}).Event(200, {0x80, 60, 0});
    sung.End();
    const QByteArray notation = MidiFileOf({Conductor(), sung}, kDivision);
    MeasureSong(notation, figures);
    std::vector<LyricItem> lyric(1);
    EXPECT_EQ(ReadMidiWords(notation, figures, figures.MidiDuration, lyric, false), WordsOrigin::LyricEvents);
    FinishWords(lyric);
    ASSERT_EQ(Texts(lyric), (QStringList{"", "Twin", "kle ", "twin", "kle ", "lit", "tle ", "star ", "How ", "I ",
                                         "won", "der "}));
    EXPECT_EQ(lyric[2].LineText, "Twinkle twinkle little star ");
    EXPECT_TRUE(lyric[8].LineEnd);
    EXPECT_DOUBLE_EQ(lyric[2].Time, 1.0);
    EXPECT_DOUBLE_EQ(lyric[9].Time, 1.0 + 7 * 1.8);

    // A good words track stays with the byte reader, whatever a parser would say.
    TrackBuilder plain = TrackBuilder().Meta(0, 3, "Words");
    for (int i = 0; i < 12; ++i)
        plain.Text(250, i == 0 ? "\\do" : "re");
    plain.End();
    std::vector<LyricItem> kept(1);
    const QByteArray plainFile = MidiFileOf({Conductor(), plain}, kDivision);
    EXPECT_EQ(ReadMidiWords(plainFile, figures, MeasureSong(plainFile, figures), kept, false), WordsOrigin::TextBytes);
}

namespace {

// The finished words of a file whose lyric events are the syllables, a quarter note apart.
std::vector<LyricItem> LyricEventWords(std::initializer_list<const char*> syllables)
{
    TrackBuilder track;
    for (const char* s : syllables)
        track.Lyric(250, s);
    track.End();
    const QByteArray file = MidiFileOf({Conductor(), track}, kDivision);
    MidiFigures figures;
    std::vector<LyricItem> words(1);
    EXPECT_EQ(ReadMidiWords(file, figures, MeasureSong(file, figures), words, false), WordsOrigin::LyricEvents);
    FinishWords(words);
    return words;
}

} // namespace

TEST(KaraokeWords, LyricEventsKeepTheBlanksTheyCarry)
{
    // As karaoke files of other programs have them: blanks at either end of an event.
    const auto words = LyricEventWords(
        {"Ay, ", "ay, ", "ay, ", "ay, ", "\rCan", "ta ", "y ", "no ", "llo", "res", " Ma", "ri", "a!"});
    ASSERT_EQ(words.size(), 15u);
    EXPECT_EQ(words[2].LineText, "Ay, ay, ay, ay, ");
    EXPECT_EQ(words[6].Text, "Can") << "a line starts at its first letter";
    EXPECT_EQ(words[12].Text, " Ma");

    // Where "-" joins the syllables of a word, a blank already there is not doubled.
    const auto prayer = LyricEventWords(
        {"A-", "ve ", "Ma-", "ri-", "a, ", "gra-", "ti-", "a ", "ple-", "na", "\rDo-", "mi-", "nus"});
    ASSERT_GT(prayer.size(), 2u);
    EXPECT_EQ(prayer[2].LineText, "Ave Maria, gratia plena ");
}

TEST(KaraokeWords, WordsInAnotherEncodingAreReadByWhatTheyLookLikeTogether)
{
    // A Russian karaoke file of the 1990s: KOI8-R, each word far too short to tell alone.
    const QStringList russian = {QStringLiteral("Ой, "), QStringLiteral("то "), QStringLiteral("не "), QStringLiteral("ве"),
                                 QStringLiteral("чер, "), QStringLiteral("то "), QStringLiteral("не "), QStringLiteral("ве"),
                                 QStringLiteral("чер, "), QStringLiteral("мне "), QStringLiteral("ма"), QStringLiteral("ло "),
                                 QStringLiteral("спа"), QStringLiteral("лось, "), QStringLiteral("ма"), QStringLiteral("ло "),
                                 QStringLiteral("спа"), QStringLiteral("лось, "), QStringLiteral("ма"), QStringLiteral("ло "),
                                 QStringLiteral("во "), QStringLiteral("сне "), QStringLiteral("ви"), QStringLiteral("де"),
                                 QStringLiteral("лось")};
    QStringEncoder koi8("KOI8-R");
    TrackBuilder track;
    for (const QString& word : russian)
        track.Text(250, koi8.encode(word));
    EXPECT_EQ(Texts(Words(track.End())), russian);
}

TEST(KaraokeWords, AMarkAtTheEndOfAWordEndsItsLine)
{
    auto words = Words(TrackBuilder().Text(0, "\\Day").Text(250, "is ").Text(250, "done./").Text(250, "Night ").Text(250, "falls").End());
    FinishWords(words);
    ASSERT_EQ(Texts(words), (QStringList{"", "Day", "is ", "done.", "Night ", "falls"}));
    EXPECT_TRUE(words[4].LineEnd);
    EXPECT_EQ(words[2].LineText, "Dayis done.");
}

TEST(KaraokeWords, AMidiSongShowsTheBlockInsideItOnlyBesideALyricsFile)
{
    QTemporaryDir dir;
    TrackBuilder words = TrackBuilder().Meta(0, 3, "Words").Text(0, "@TSong").Text(0, "@TSinger");
    for (int i = 0; i < 12; ++i)
        words.Text(250, i % 4 == 0 ? "/Line" : "word ");
    words.End();
    const QByteArray song = MidiFileOf({Conductor(), words}, kDivision);
    const QString path = dir.filePath(QStringLiteral("song.kar"));
    const QByteArray block("#Songweaver\r\n#TITLE=Block\r\n[1.5]Inside\r\n#End Songweaver\r\n");
    WriteFileBytes(path, song + block);

    LyricsState lyrics;
    MidiFigures figures;
    MeasureSong(song, figures);
    LyricsEnvironment env;
    ASSERT_TRUE(LoadMidiLyrics(lyrics, figures, path, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "MIDI text events");
    EXPECT_EQ(lyrics.PlayLyrics.size(), 14u);
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[2].Time, 1.0);
    EXPECT_EQ(lyrics.PlayLyrics[2].LineText, "Lineword word word ");
    EXPECT_FALSE(lyrics.LongestLine.isEmpty());

    WriteFileBytes(dir.filePath(QStringLiteral("song.lrs")), "#Songweaver\r\n[1]Beside\r\n#End Songweaver\r\n");
    ASSERT_TRUE(LoadMidiLyrics(lyrics, figures, path, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Songweaver (internal)") << "the song's own block, not the file beside";
    EXPECT_EQ(lyrics.PlayLyrics[1].Text, "Inside");
}

TEST(KaraokeWords, EachVerseOfAFileWithAWordsTrackPerVerseCanBeShown)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("verses.kar"));
    WriteFileBytes(path, VersesMidiFile({{"Verse one", "sun"}, {nullptr, "moon"}, {"Verse one again", "sun"}, {"Verse 3", "star"}}));
    LyricsState lyrics;
    MidiFigures figures;
    MeasureSong(ReadFileBytes(path), figures);
    const LyricsEnvironment env;

    ASSERT_TRUE(LoadMidiLyrics(lyrics, figures, path, env));
    ASSERT_EQ(figures.Verses.size(), 3u) << "a track repeating an earlier verse is not one of its own";
    EXPECT_EQ(figures.Verses[0].Track, 1);
    EXPECT_EQ(figures.Verses[0].Name, "Verse one");
    EXPECT_EQ(figures.Verses[1].Track, 2);
    EXPECT_TRUE(figures.Verses[1].Name.isEmpty());
    EXPECT_EQ(figures.Verses[2].Track, 4);
    EXPECT_EQ(figures.Verse, 1) << "the words read first are the first verse's";
    EXPECT_EQ(lyrics.PlayLyrics[2].Text, "sun0 ");

    ASSERT_TRUE(LoadMidiLyrics(lyrics, figures, path, env, 4));
    EXPECT_EQ(figures.Verse, 4);
    EXPECT_EQ(lyrics.PlayLyrics[2].Text, "star0 ");
    EXPECT_EQ(lyrics.PlayLyrics[2].LineText, "star0 star1 star2 star3 ");
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "MIDI lyric events");
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[2].Time, 1.0) << "the same times as the first verse";
    EXPECT_EQ(figures.Verses.size(), 3u);

    ASSERT_TRUE(LoadMidiLyrics(lyrics, figures, path, env, 3)) << "a track that is no verse of its own";
    EXPECT_EQ(figures.Verse, 1);
    EXPECT_EQ(lyrics.PlayLyrics[2].Text, "sun0 ");

    const QString single = dir.filePath(QStringLiteral("single.kar"));
    WriteFileBytes(single, VersesMidiFile({{"Words", "one"}}));
    ASSERT_TRUE(LoadMidiLyrics(lyrics, figures, single, env, 1));
    EXPECT_TRUE(figures.Verses.empty()) << "one verse offers no choice";
    EXPECT_EQ(figures.Verse, -1);
}

TEST(KaraokeWords, ACutOrDamagedVersesFileGivesWhatItCanWithoutHarm)
{
    QTemporaryDir dir;
    const QByteArray whole = VersesMidiFile({{"A", "sun"}, {"B", "moon"}, {"C", "star"}});
    const QString path = dir.filePath(QStringLiteral("cut.kar"));
    for (qsizetype length = 0; length <= whole.size(); length += 7) {
        QByteArray bytes = whole.left(length);
        if (length % 2)
            bytes[length / 2] = char(0xFF);
        WriteFileBytes(path, bytes);
        LyricsState lyrics;
        MidiFigures figures;
        MeasureSong(bytes, figures);
        LoadMidiLyrics(lyrics, figures, path, LyricsEnvironment{}, 2);
        EXPECT_TRUE(figures.Verses.empty() || figures.Verses.size() >= 2);
        EXPECT_GE(lyrics.PlayLyrics.size(), 1u);
    }
}
