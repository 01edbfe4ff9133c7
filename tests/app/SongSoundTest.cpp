// A song's key, tempo and vocals as a singer moves them: the keys work from the main window, the
// karaoke window (also in full screen) and the playlist; the knobs show what the keys did; a song
// whose vocals cannot go says so; the choice comes back for the same song, even moved, and a new
// song starts as it is.

#include "library/LibraryChoices.h"
#include "library/LibraryDatabase.h"
#include "playback/MediaSession.h"
#include "playback/SongSound.h"
#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/midi/MidiEq.h"
#include "ui/player/PlayerWindow.h"
#include "ui/playlist/UserList.h"

#include <QCoreApplication>
#include <QDir>
#include <QKeyEvent>
#include <QMenu>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class KeyAndTempo : public testing::Test, protected ProgramWindows {
protected:
    KeyAndTempo()
    {
        LoadDefaults(state, store);
        StartManualEngine(state);
        windows.PlayerWidget().BuildMenus();
    }

    MediaSession& Media() { return dynamic_cast<MediaSession&>(*state.Session); }

    static void Press(QWidget& window, int key)
    {
        QKeyEvent press(QEvent::KeyPress, key, Qt::AltModifier);
        QCoreApplication::sendEvent(&window, &press);
    }

    QTemporaryDir dir;
};

} // namespace

TEST_F(KeyAndTempo, TheKeysWorkFromEveryWindowThatPlaysAndTheKnobsShowThem)
{
    transport.OpenSong(WriteRampWav(dir.filePath("song.wav"), 48000 * 2), false);
    auto& midi = dynamic_cast<MidiEq&>(windows.LoadMidiEq());

    Press(windows.PlayerWidget(), Qt::Key_Up);
    Press(windows.PlayerWidget(), Qt::Key_Up);
    EXPECT_EQ(Media().Semitones(), 2);
    EXPECT_EQ(midi.ToneLabel(), "+2") << "the KEY knob moved with the key";

    commands.ButtonAction(PlayerButton::Karaoke);
    LyricWindow& lyric = *windows.LyricWidget();
    Press(lyric, Qt::Key_Right);
    EXPECT_NEAR(Media().Tempo(), 1.044, 0.001) << "a step of tempo from the karaoke window";
    lyric.ToggleFullScreen();
    Press(lyric, Qt::Key_Left);
    Press(lyric, Qt::Key_Left);
    EXPECT_NEAR(Media().Tempo(), 0.958, 0.001) << "and in full screen";

    Press(dynamic_cast<UserList&>(windows.LoadUserList()), Qt::Key_Down);
    EXPECT_EQ(Media().Semitones(), 1) << "from the playlist";

    Press(windows.PlayerWidget(), Qt::Key_End);
    EXPECT_TRUE(Media().VocalsOff());
    QMenu& sound = *windows.PlayerWidget().Menu("Sound");
    emit sound.aboutToShow();
    const QAction* vocals = sound.actions().last();
    EXPECT_TRUE(vocals->isChecked()) << "the menu shows the vocals off";
    if (const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR"); !folder.isEmpty()) {
        midi.Switch();
        midi.grab().save(folder + QStringLiteral("/midi-vocals-off.png"));
        midi.Switch();
        midi.grab().save(folder + QStringLiteral("/midi-audio-knobs.png"));
    }

    Press(windows.PlayerWidget(), Qt::Key_Home);
    EXPECT_EQ(Media().Semitones(), 0);
    EXPECT_EQ(Media().Tempo(), 1.0);
    EXPECT_FALSE(Media().VocalsOff()) << "back to the song as it is";
    EXPECT_EQ(midi.TransposeTop(), kKnobCentre);
    EXPECT_EQ(midi.TempoTop(), kKnobCentre);
    EXPECT_TRUE(dialogs.messages.isEmpty()) << dialogs.messages.join('\n').toStdString();
}

TEST_F(KeyAndTempo, AMidiSongStepsInItsOwnWayAndCannotLoseItsVocals)
{
    transport.OpenSong(CopyFixture(MediaFixture("song.kar"), dir.path()), false);
    ASSERT_TRUE(state.IsMidi);
    commands.KeyDown(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(KnobSemitones(state), 2) << "MIDI songs move by whole tones";
    commands.KeyDown(Qt::Key_Right, Qt::AltModifier);
    EXPECT_NEAR(KnobTempo(state), 16.0 / 15, 1e-9) << "a fifteenth of the master tempo";

    commands.MenuCommand("VocalsOff");
    EXPECT_FALSE(state.VocalsOff);
    EXPECT_EQ(dialogs.messages, QStringList{"info: Only a stereo audio song can lose its vocals."});
}

TEST_F(KeyAndTempo, AChoiceComesBackForTheSameSongMovedAndANewSongStartsAsItIs)
{
    LibraryDatabase library(dir.filePath("library.db"));
    ASSERT_TRUE(library.Open().Usable());
    state.SongChoices = std::make_unique<LibraryChoices>(library);
    const QString first = WriteRampWav(dir.filePath("first.wav"), 48000 * 2);
    transport.OpenSong(first, false);
    for (int i = 0; i < 3; ++i)
        commands.KeyDown(Qt::Key_Up, Qt::AltModifier);
    commands.KeyDown(Qt::Key_Left, Qt::AltModifier);
    commands.KeyDown(Qt::Key_End, Qt::AltModifier);
    const SongChoice chosen = ChosenSound(state);

    transport.OpenSong(WriteRampWav(dir.filePath("second.wav"), 48000 * 3), false);
    EXPECT_EQ(Media().Semitones(), 0);
    EXPECT_EQ(Media().Tempo(), 1.0);
    EXPECT_FALSE(state.VocalsOff) << "a new song starts at its own key and tempo";

    QDir().mkpath(dir.filePath("moved"));
    const QString moved = dir.filePath("moved/renamed.wav");
    ASSERT_TRUE(QFile::rename(first, moved));
    transport.OpenSong(moved, false);
    EXPECT_EQ(ChosenSound(state), chosen);
    EXPECT_EQ(Media().Semitones(), 3);
    EXPECT_NEAR(Media().Tempo(), chosen.tempo, 1e-9);
    EXPECT_TRUE(Media().VocalsOff()) << "the song moved to another folder comes back as it was chosen";
    transport.CloseSong();
    state.SongChoices.reset();
}
