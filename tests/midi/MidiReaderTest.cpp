// The byte reader of MIDI files as the player meets them: header and tempo figures, the
// channel table, the title search and the song length, each with its old oddities kept.

#include "MidiBuilder.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiRead.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

std::vector<LyricItem> Read(const QByteArray& file, MidiFigures& figures)
{
    std::vector<LyricItem> words(1);
    ReadFile(file, figures, words, false);
    return words;
}

QString WriteSong(const QTemporaryDir& dir, const QByteArray& bytes, const QString& name = QStringLiteral("song.mid"))
{
    const QString path = dir.filePath(name);
    WriteFileBytes(path, bytes);
    return path;
}

} // namespace

TEST(MidiBytes, HeaderNumbersAreReadThroughHexadecimalText)
{
    EXPECT_EQ(JoinedHexNumber(QByteArray("\x00\x05", 2), 0, 2), 5u);
    EXPECT_EQ(JoinedHexNumber(QByteArray("\x00\x10", 2), 0, 2), 16u);
    EXPECT_EQ(JoinedHexNumber(QByteArray("\x01\x05", 2), 0, 2), 21u) << "01 05 reads as 0x15";
    EXPECT_EQ(JoinedHexNumber(QByteArray("\x01", 1), 0, 2), 16u) << "past the end is 0";
}

TEST(MidiBytes, TheFirstTempoGivesTheFiguresAndAFileWithoutOneKeepsTheSongBefore)
{
    MidiFigures figures;
    // A new program has no figures yet: every time collapses to 0.
    const QByteArray noTempo =
        MidiFileOf({TrackBuilder().Meta(0, 3, "Words").Text(0, "\\One").Text(500, "two").Text(500, "three").End()});
    std::vector<LyricItem> words = Read(noTempo, figures);
    ASSERT_EQ(words.size(), 5u);
    for (size_t i = 1; i < words.size(); ++i)
        EXPECT_EQ(words[i].Time, 0.0) << i;

    const QByteArray twoTempos = MidiFileOf(
        {TrackBuilder().Tempo(0, 500000).Tempo(480, 250000).End(), TrackBuilder().Event(0, {0x90, 60, 100}).End()});
    Read(twoTempos, figures);
    EXPECT_EQ(figures.MidiTempoMicros, 500000);
    EXPECT_FLOAT_EQ(figures.MidiBpm, 120.0f);
    EXPECT_EQ(figures.MidiQuarterDivision, 120);
    EXPECT_NEAR(figures.MidiMsPerTick, 500000.0 / 120 / 4000, 1e-12);

    const QByteArray oddTempo = MidiFileOf({TrackBuilder().Tempo(0, 700000).End()}, 96);
    Read(oddTempo, figures);
    EXPECT_FLOAT_EQ(figures.MidiBpm, 85.71f) << "two decimals";
    EXPECT_EQ(figures.MidiQuarterDivision, 24);

    Read(MidiFileOf({TrackBuilder().Event(0, {0x90, 60, 100}).End()}, 960), figures);
    EXPECT_EQ(figures.MidiTempoMicros, 700000) << "no tempo event: the song before's figures stay";
    EXPECT_EQ(figures.MidiQuarterDivision, 24);
}

TEST(MidiBytes, ChannelsAreFoundByRawByteSearches)
{
    MidiFigures figures;
    figures.ChannelTable[3].Patch = 42;
    const QByteArray file = MidiFileOf({TrackBuilder()
                                            .Tempo(0, 500000)
                                            .Event(0, {0xC0, 0x00})  // program 0 is passed over
                                            .Event(0, {0xC0, 0x05})
                                            .Event(0, {0xB0, 7, 0})    // volume 0 and 127 are passed over
                                            .Event(0, {0xB0, 7, 127})
                                            .Event(0, {0xB0, 7, 80})
                                            .Event(0, {0xB0, 10, 0})   // pan 0: the next pair is taken as it stands
                                            .Event(0, {0xB0, 10, 0x85})
                                            .Event(0, {0x90, 60, 100})
                                            .Event(0, {0x91, 62, 100})
                                            .Event(0, {0xB1, 10, 20})
                                            .Text(0, QByteArray("a\x93z"))  // a note-on byte inside a text
                                            .End()});
    Read(file, figures);
    const ChannelRecord& c0 = figures.ChannelTable[0];
    EXPECT_EQ(c0.Channel, 1);
    EXPECT_EQ(c0.Patch, 5);
    EXPECT_EQ(c0.Volume, 80);
    EXPECT_EQ(c0.Pan, 0x85);
    EXPECT_EQ(c0.State, 2);

    const ChannelRecord& c1 = figures.ChannelTable[1];
    EXPECT_EQ(c1.Channel, 2);
    EXPECT_EQ(c1.Volume, 100) << "no volume: 100";
    EXPECT_EQ(c1.Pan, 20);

    const ChannelRecord& c3 = figures.ChannelTable[3];
    EXPECT_EQ(c3.Channel, 4) << "used through the byte in the text";
    EXPECT_EQ(c3.Patch, 42) << "no program: the patch of the song before";
    EXPECT_EQ(figures.ChannelTable[5].Channel, -1);
    EXPECT_EQ(figures.ChannelTable[5].State, 0);

    // The next song: channel 1 has no pan event, so its pan stays; its program 0 keeps patch 5.
    figures.ChannelTable[0].VolumeChanged = true;
    Read(MidiFileOf({TrackBuilder().Event(0, {0xC0, 0}).Event(0, {0x90, 60, 1}).End()}), figures);
    EXPECT_EQ(figures.ChannelTable[0].Patch, 5);
    EXPECT_EQ(figures.ChannelTable[0].Pan, 0x85);
    EXPECT_FALSE(figures.ChannelTable[0].VolumeChanged);
}

TEST(MidiBytes, TheWordsTrackIsNamedWordsOrHasFiftyTexts)
{
    const TrackBuilder music = TrackBuilder().Tempo(0, 500000).Event(0, {0x90, 60, 100}).End(480);
    TrackBuilder named = TrackBuilder().Meta(0, 3, "Words").Text(0, "\\Hi").End();
    TrackBuilder many;
    for (int i = 0; i < 50; ++i)
        many.Text(10, "la ");
    many.End();
    TrackBuilder fewer;
    for (int i = 0; i < 49; ++i)
        fewer.Text(10, "la ");
    fewer.End();

    EXPECT_EQ(ChooseWordsTrack(MidiFileOf({music, named})), 1);
    EXPECT_EQ(ChooseWordsTrack(MidiFileOf({music, fewer, many})), 2);
    EXPECT_EQ(ChooseWordsTrack(MidiFileOf({music, fewer})), -1);
    EXPECT_EQ(ChooseWordsTrack(MidiFileOf({music, named}, 480, 0)), -1) << "a track count of 0";

    // Without a chosen track the whole file is scanned.
    MidiFigures figures;
    const std::vector<LyricItem> words = Read(MidiFileOf({music, named}, 480, 0), figures);
    ASSERT_EQ(words.size(), 3u);
    EXPECT_EQ(words[2].Text, "Hi");
}

TEST(MidiRead, TitleFromQualifyingAtTEventsInProperCase)
{
    QTemporaryDir dir;
    const QByteArray file = MidiFileOf({TrackBuilder()
                                            .Meta(0, 3, "@Tnot a text event")
                                            .Text(0, "@TMY OLD SONG")
                                            .Text(0, "@Tjohn SMITH")
                                            .Text(0, "@Tdropped")
                                            .Tempo(0, 1000000)
                                            .Tempo(480, 250000)
                                            .End(1440)});
    MidiRead read;
    read.SetFilename(WriteSong(dir, file));
    EXPECT_EQ(read.Title, "My Old Song");
    EXPECT_EQ(read.Artist, "John Smith");
    EXPECT_DOUBLE_EQ(read.Length, 4.0) << "4 quarter notes at the first tempo, 60 BPM";

    MidiRead none;
    none.SetFilename(WriteSong(dir, MidiFileOf({TrackBuilder().Meta(0, 3, "@Ta").Meta(0, 3, "@Tb").Meta(0, 3, "@Tc")
                                                    .Text(0, "@Tfourth").End(480)}),
                               QStringLiteral("none.mid")));
    EXPECT_EQ(none.Title, "") << "three hits, none qualifies: the fourth is never looked at";
    EXPECT_DOUBLE_EQ(none.Length, 0.5) << "no tempo: 120 BPM";

    MidiRead missing;
    missing.SetFilename(dir.filePath(QStringLiteral("gone.mid")));
    EXPECT_EQ(missing.Length, 0);
}

TEST(MidiBytes, PatchNamesAndThePatchFile)
{
    EXPECT_EQ(GetPatch(0), "Acoustic Grand");
    EXPECT_EQ(GetPatch(21), "Accoridan");
    EXPECT_EQ(GetPatch(40), "Violin");
    EXPECT_EQ(GetPatch(77), "Skakuhachi");
    EXPECT_EQ(GetPatch(87), "Lead 8 (bass+lead)");
    EXPECT_EQ(GetPatch(127), "Gunshot");
    EXPECT_EQ(GetPatch(128), "Percussion");
    EXPECT_EQ(GetPatch(129), "");
    EXPECT_EQ(GetPatch(-1), "");

    QTemporaryDir dir;
    ASSERT_TRUE(CreateFileTemp(dir.path()));
    const QByteArray bytes = ReadFileBytes(dir.filePath(QStringLiteral("filetemp.tmp")));
    ASSERT_EQ(bytes.size(), 411);
    EXPECT_EQ(bytes.left(23), QByteArray::fromHex("4d546864000000060000000100604d54726b0000018000"));
    EXPECT_EQ(bytes.mid(23, 6), QByteArray::fromHex("c00001c00101"));
    EXPECT_EQ(bytes.mid(23 + 3 * 127, 3), QByteArray::fromHex("c07f01"));
    EXPECT_EQ(bytes.right(4), QByteArray::fromHex("00ff2f00"));
}

TEST(MidiBytes, AConverterOutputUnder1000BytesIsDeletedAndTheSongRead)
{
    QTemporaryDir dir;
    const QString song = dir.filePath(QStringLiteral("song.kar"));
    const QString small = dir.filePath(QStringLiteral("small.tmp"));
    const QString whole = dir.filePath(QStringLiteral("whole.tmp"));
    WriteFileBytes(small, QByteArray(999, 'x'));
    WriteFileBytes(whole, QByteArray(1000, 'x'));
    EXPECT_EQ(AcceptConvertedFile(small, song), song);
    EXPECT_FALSE(QFile::exists(small));
    EXPECT_EQ(AcceptConvertedFile(whole, song), whole);
    EXPECT_TRUE(QFile::exists(whole));
}
