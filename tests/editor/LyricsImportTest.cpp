// The editor's import as a user meets it: a block in the file wins, then a lyrics tag, then the
// MIDI words; the import's own block reader skips the first 20 lines.

#include "../midi/MidiBuilder.h"
#include "editor/LyricsImport.h"
#include "lyrics/LyricsBlock.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString Block(int headerLines, int syllableLines)
{
    QString text = QStringLiteral("#Songweaver\r\n#ARTIST=Singer\r\n#LAYOUT=3\r\n#IMAGE=sun.png%12%Wipe%5%left\r\n");
    for (int i = 3; i < headerLines; ++i)
        text += QStringLiteral("#\r\n");
    for (int i = 0; i < syllableLines; ++i)
        text += QStringLiteral("[%1]Line [%2]%3\r\n").arg(i * 2).arg(i * 2 + 1).arg(i);
    return text + QStringLiteral("#End Songweaver");
}

// A karaoke file with `count` syllables after a first line mark, titled by "@T" events.
QByteArray KaraokeFile(int count)
{
    TrackBuilder words = TrackBuilder().Meta(0, 3, "Words").Text(0, "@TOLD TUNE").Text(0, "@Tthe band");
    for (int i = 0; i < count; ++i)
        words.Text(250, i == 0 ? "\\la " : "la ");
    words.End();
    const TrackBuilder music = TrackBuilder().Tempo(0, 1000000).Event(0, {0x90, 60, 90}).End(250 * 30);
    return MidiFileOf({music, words}, 250);
}

} // namespace

TEST(LyricsImport, TheImportReaderTakesSyllablesOnlyBehindTheHeaderWindow)
{
    LyricsState lyrics;
    ASSERT_TRUE(getMyLyrics(lyrics, Block(3, 10))) << "a block of 15 lines";
    EXPECT_EQ(lyrics.EditLyrics.size(), 1u);
    EXPECT_EQ(lyrics.EditLyrics[0].Artist, "Singer");
    EXPECT_EQ(lyrics.EditLyrics[0].Layout, 3) << "the import reads the layout's value";
    ASSERT_EQ(lyrics.EditPictures.size(), 2u);
    EXPECT_EQ(lyrics.EditPictures[1].File, "sun.png");
    EXPECT_EQ(lyrics.EditPictures[1].Effect, "Wipe");

    ASSERT_TRUE(getMyLyrics(lyrics, Block(3, 25)));
    // Lines 1 to 20 behind the mark never give syllables: lines 4 to 20 held syllable lines 0 to 16.
    ASSERT_EQ(lyrics.EditLyrics.size(), 1u + 2 * 8);
    EXPECT_EQ(lyrics.EditLyrics[1].Text, "Line ");
    EXPECT_DOUBLE_EQ(lyrics.EditLyrics[1].Time, 34);
    EXPECT_EQ(lyrics.EditLyrics[2].LineText, "Line 17");
    EXPECT_FALSE(lyrics.EditLyrics.back().LineEnd);

    const QString broken = Block(3, 20).replace(QStringLiteral("#End"), QStringLiteral("[9 broken\r\n#End"));
    EXPECT_FALSE(getMyLyrics(lyrics, broken)) << "a piece without its bracket";
}

TEST(LyricsImport, ABlockWinsOverMidiWordsAndFewWordsFail)
{
    QTemporaryDir dir;
    LyricsState lyrics;
    MidiFigures figures;

    const QString kar = dir.filePath(QStringLiteral("tune.kar"));
    WriteFileBytes(kar, KaraokeFile(12));
    ASSERT_TRUE(ImportLyrics(lyrics, figures, nullptr, kar, false));
    ASSERT_EQ(lyrics.EditLyrics.size(), 14u);
    EXPECT_EQ(lyrics.EditLyrics[0].Title, "Old Tune");
    EXPECT_EQ(lyrics.EditLyrics[0].Artist, "The Band");
    EXPECT_DOUBLE_EQ(lyrics.EditLyrics[2].Time, 1.0);
    EXPECT_DOUBLE_EQ(figures.MidiSegmentLength, 30 * 768.0) << "the last event, 30 quarter notes in";
    EXPECT_DOUBLE_EQ(figures.MidiMsPerTick, 4.0) << "the import overwrites the player's figures";

    // Nine syllables with the lead-in are too few, though the player shows them.
    const QString shortKar = dir.filePath(QStringLiteral("short.kar"));
    WriteFileBytes(shortKar, KaraokeFile(8));
    EXPECT_FALSE(ImportLyrics(lyrics, figures, nullptr, shortKar, false));
    EXPECT_EQ(lyrics.EditLyrics.size(), 1u);
    EXPECT_EQ(lyrics.EditLyrics[0].Title, "");

    const QString both = dir.filePath(QStringLiteral("both.kar"));
    WriteFileBytes(both, KaraokeFile(12) + Block(21, 2).toUtf8() + "\r\n");
    ASSERT_TRUE(ImportLyrics(lyrics, figures, nullptr, both, false));
    EXPECT_EQ(lyrics.EditLyrics[0].Artist, "Singer");
    EXPECT_EQ(lyrics.EditLyrics.size(), 5u);

    const QString unfinished = dir.filePath(QStringLiteral("unfinished.kar"));
    WriteFileBytes(unfinished, KaraokeFile(12) + "#Songweaver\r\n[1]no end\r\n");
    EXPECT_FALSE(ImportLyrics(lyrics, figures, nullptr, unfinished, false)) << "a block without its end";
}
