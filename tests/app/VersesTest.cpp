// A karaoke file with a words track per verse, all sung at the same times: the singer picks the
// verse from the karaoke window's menu or from the MIDI window, while the song plays.

#include "midi/MidiBuilder.h"
#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/midi/MidiEq.h"

#include <QMenu>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace {

class Verses : public testing::Test, protected ProgramWindows {
protected:
    Verses()
    {
        LoadDefaults(state, store);
        StartManualEngine(state);
        commands.ButtonAction(PlayerButton::Karaoke);
        song = dir.filePath("three verses.kar");
        WriteFileBytes(song, VersesMidiFile({{"Morning", "sun"}, {"Evening", "moon"}, {nullptr, "star"}}));
    }

    QStringList Checked(QMenu& menu)
    {
        QStringList checked;
        for (QAction* action : menu.actions())
            if (action->isChecked())
                checked << action->text();
        return checked;
    }

    QTemporaryDir dir;
    QString song;
};

} // namespace

TEST_F(Verses, TheKaraokeWindowsMenuAndTheMidiWindowOfferEachVerse)
{
    transport.OpenSong(song, false);
    ASSERT_TRUE(state.IsMidi);
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].Text, "sun0 ");

    const std::unique_ptr<QMenu> menu(windows.LyricWidget()->BuildMenu());
    QMenu* verses = menu->findChild<QMenu*>(QStringLiteral("Verses"));
    ASSERT_NE(verses, nullptr);
    ASSERT_EQ(verses->actions().size(), 3);
    EXPECT_EQ(verses->actions()[2]->text(), "&3 Verse 3") << "a track without a name is numbered";
    EXPECT_EQ(Checked(*verses), QStringList{"&1 Morning"});
    verses->actions()[1]->trigger();
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].Text, "moon0 ");
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].LineText, "moon0 moon1 moon2 moon3 ");
    EXPECT_TRUE(state.SongOpen()) << "the song plays on";

    auto& midi = dynamic_cast<MidiEq&>(windows.LoadMidiEq());
    if (const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR"); !folder.isEmpty())
        midi.grab().save(folder + QStringLiteral("/midi-verses.png"));
    const std::unique_ptr<QMenu> fromMidi(midi.BuildVerseMenu());
    EXPECT_EQ(Checked(*fromMidi), QStringList{"&2 Evening"});
    fromMidi->actions()[2]->trigger();
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].Text, "star0 ");

    // The next song starts from its own first verse.
    transport.OpenSong(song, false);
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].Text, "sun0 ");
    EXPECT_EQ(state.Midi.Verse, 1);
}

TEST_F(Verses, ASongWithOneVerseOffersNoChoice)
{
    WriteFileBytes(song, VersesMidiFile({{"Words", "one"}}));
    transport.OpenSong(song, false);
    const std::unique_ptr<QMenu> menu(windows.LyricWidget()->BuildMenu());
    EXPECT_EQ(menu->findChild<QMenu*>(QStringLiteral("Verses")), nullptr);
    commands.MenuCommand("Verse1");
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].Text, "one0 ");
}
