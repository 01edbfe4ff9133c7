// The end-of-file tag run, the kinds that RemoveBaseTag reports, and the MIDI length and title.

#include "midi/MidiRead.h"
#include "support/TestSupport.h"
#include "tags/EndTags.h"
#include "tags/Lyrics3.h"

#include <gtest/gtest.h>

namespace {

QByteArray Id3v1()
{
    return QByteArray("TAG") + QByteArray(125, '\0');
}

QByteArray ApeTag()
{
    QByteArray footer("APETAGEX");
    const char fields[] = {char(0xD0), 7, 0, 0, 32, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    return footer + QByteArray(fields, 16) + QByteArray(8, '\0');
}

QByteArray MidiEvent(const QByteArray& text)
{
    return QByteArray("\0\xFF\x01", 3) + char(text.size()) + text;
}

QByteArray Smf(const QByteArray& events, int division = 96)
{
    const QByteArray track = events + QByteArray("\0\xFF\x2F\0", 4);
    QByteArray smf("MThd\0\0\0\x06\0\0\0\x01", 12);
    smf += char(division >> 8);
    smf += char(division & 0xFF);
    smf += "MTrk";
    for (int shift : {24, 16, 8, 0})
        smf += char((track.size() >> shift) & 0xFF);
    return smf + track;
}

} // namespace

TEST(EndTags, RemoveBaseTagCutsTheWholeRunAndNamesApeFirst)
{
    const QByteArray audio(600, 'a');
    Lyrics3Tag lyrics;
    lyrics.Lyrics = QStringLiteral("[00:01]x");
    const QByteArray lyricsTag = BuildLyrics3(lyrics);

    struct Case {
        QByteArray tail;
        const char* kind;
    };
    const Case cases[] = {
        {{}, ""},
        {Id3v1(), "ID3v1"},
        {ApeTag(), "APE"},
        {ApeTag() + Id3v1(), "APE"},
        {ApeTag() + lyricsTag + Id3v1(), "APE"},
        {lyricsTag + Id3v1(), "ID3v1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.kind);
        QByteArray image = audio + c.tail;
        const BaseTag removed = RemoveBaseTag(image);
        EXPECT_EQ(removed.Kind, c.kind);
        EXPECT_EQ(image, audio);
        EXPECT_EQ(removed.Bytes, c.tail);
        SaveBaseTag(image, removed);
        EXPECT_EQ(image, audio + c.tail);
    }

    QByteArray lying = audio + "LYRICSBEGIN" + "999999LYRICS200";
    EXPECT_EQ(EndTagSpan(lying), 0) << "a size that points outside the tag is no tag";
    QByteArray shortFile("TAG");
    EXPECT_TRUE(FindEndTags(shortFile).empty());
}

TEST(EndTags, Lyrics3ByteFormatRoundTrips)
{
    Lyrics3Tag tag;
    tag.Lyrics = QStringLiteral("[00:01]One\r\n[00:02]Two");
    tag.Artist = QStringLiteral("Zoë");
    tag.Title = QStringLiteral("Łódź");
    const QByteArray bytes = BuildLyrics3(tag);
    EXPECT_TRUE(bytes.startsWith("LYRICSBEGININD00003110LYR00022[00:01]One\r\n[00:02]Two"));
    EXPECT_TRUE(bytes.contains("EAR00004Zo\xC3\xAB")) << "UTF-8, sized in bytes";
    EXPECT_TRUE(bytes.endsWith(QByteArray::number(bytes.size() - 15).rightJustified(6, '0') + "LYRICS200"));

    Lyrics3Tag back;
    ASSERT_TRUE(ReadLyrics3(QByteArray("audio") + bytes + Id3v1(), false, back));
    EXPECT_EQ(back.Version, 2);
    EXPECT_EQ(back.Size, bytes.size());
    EXPECT_EQ(back.Lyrics, tag.Lyrics);
    EXPECT_EQ(back.Artist, tag.Artist);
    EXPECT_EQ(back.Title, tag.Title);

    Lyrics3Tag v1;
    ASSERT_TRUE(ReadLyrics3(QByteArray("audioLYRICSBEGINold words\r\nLYRICSEND") + Id3v1(), false, v1));
    EXPECT_EQ(v1.Version, 1);
    EXPECT_EQ(v1.Lyrics, "old words\r\n");

    QByteArray truncated = bytes;
    truncated.replace("LYR00022", "LYR00099");
    EXPECT_FALSE(ReadLyrics3(truncated + Id3v1(), false, back)) << "a field longer than its tag";
}

TEST(MidiRead, LengthRestsOnTheTempoNearTheStart)
{
    const QByteArray notes = QByteArray("\0\x90\x3C\x60", 4) + QByteArray("\x83\x00\x80\x3C\x40", 5);  // 384 ticks
    EXPECT_DOUBLE_EQ(MidiFileSeconds(Smf(notes)), 2.0) << "four quarters at the default 120 bpm";
    const QByteArray tempo60 = QByteArray("\0\xFF\x51\x03\x0F\x42\x40", 7);
    EXPECT_DOUBLE_EQ(MidiFileSeconds(Smf(tempo60 + notes)), 4.0);
    // A tempo change long after the start does not enter the length.
    const QByteArray lateTempo = QByteArray("\x83\x00\xFF\x51\x03\x07\xA1\x20", 8);
    EXPECT_DOUBLE_EQ(MidiFileSeconds(Smf(tempo60 + notes + lateTempo)), 8.0);
    // Running status: the second note-off has no status byte.
    const QByteArray running = QByteArray("\0\x90\x3C\x60\0\x40\x60\x83\x00\x3C\0\0\x40\0", 14);
    EXPECT_DOUBLE_EQ(MidiFileSeconds(Smf(running)), 2.0);
    EXPECT_EQ(MidiFileSeconds("RIFF not midi"), 0.0);
    EXPECT_DOUBLE_EQ(MidiFileSeconds(Smf(notes).left(26)), 0.0) << "a cut file reads as far as it goes";
}

TEST(MidiRead, TitleComesFromQualifyingTextEventsOnly)
{
    QString title, artist;
    const QByteArray padding(24, '\0');
    ReadMidiTitle(padding + QByteArray("xx@Tnot an event") + MidiEvent("@TSILENT night") + MidiEvent("@Tgruber"),
                  false, title, artist);
    EXPECT_EQ(title, "Silent Night") << "the first \"@T\" is not a text event and is passed over";
    EXPECT_EQ(artist, "Gruber");

    title = artist = QStringLiteral("kept");
    ReadMidiTitle(padding + "@Ta @Tb @Tc" + MidiEvent("@Tlate"), false, title, artist);
    EXPECT_EQ(title, "kept") << "three searches, none qualified: nothing changes";
    EXPECT_EQ(artist, "kept");
}
