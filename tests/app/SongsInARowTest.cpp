// An evening of songs as a singer meets it: the player with its real karaoke window, songs that
// follow each other by hand-over, Next and the end of the song before, each lit in time.

#include "playback/MediaSession.h"
#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"
#include "ui/editor/Editor.h"
#include "ui/editor/LyricsTable.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/options/LyricOptions.h"
#include "ui/player/PlayerWindow.h"

#include <QCheckBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kRate = 48000;

struct Lit {
    int index;
    double position;
};

class Evening : public testing::Test, protected ProgramWindows {
protected:
    Evening()
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state, kRate);
        windows.PlayerWidget().ApplySkin();
        windows.PlayerWidget().BuildMenus();
        windows.LyricLoaded = [this](LyricWindow& window) {
            QObject::connect(&window, &LyricWindow::syllableLit, [this](int index, double position) {
                lit.push_back({index, position});
            });
        };
        commands.ButtonAction(PlayerButton::Karaoke);  // the karaoke window, as a singer opens it
        EXPECT_TRUE(state.KaraokeOpen);
        windows.LyricWidget()->resize(640, 360);

        // The first song has more syllables than the second, and a line of its own.
        first = Song("first", 4, "[0.2]One [0.4]two [0.6]three [0.8]four\r\n[1.0]five [1.2]six [1.4]se[1.6]ven");
        second = Song("second", 3, "[0.3]Sing [0.6]a[0.9]gain");
    }

    QString Song(const QString& name, int seconds, const char* lines)
    {
        const QString song = WriteRampWav(dir.filePath(name + ".wav"), kRate * seconds, kRate);
        WriteFileBytes(dir.filePath(name + ".lrs"),
                       QByteArray("#Songweaver\r\n#TITLE=") + name.toUtf8() + "\r\n" + lines + "\r\n#End Songweaver\r\n");
        return song;
    }

    // Plays in 10 ms steps with both ticks, as the timers would, once the decoder has each
    // step's audio ready.
    void Play(double seconds)
    {
        for (int i = 0; i < int(seconds * 100 + 0.5); ++i) {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
            auto* session = state.Session.get();
            while (session && session->GetState() == SongSession::Running
                   && dynamic_cast<MediaSession*>(session)->SecondsBuffered() < 0.01
                   && std::chrono::steady_clock::now() < deadline)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            device->Step(kRate / 100, kRate / 100);
            if (!transport.Ticks().Running())
                continue;
            transport.Ticks().PlaybackTick();
            if (i % 50 == 49)
                transport.Ticks().mmTimer();
        }
    }

    // The second song's three syllables, each lit within a tick of its time.
    void ExpectSecondSongLitInTime(size_t from)
    {
        ASSERT_EQ(state.CurrentFile, second);
        ASSERT_EQ(lit.size(), from + 3) << "every syllable of the second song is lit";
        const double times[] = {0.3, 0.6, 0.9};
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(lit[from + size_t(i)].index, i + 1);
            EXPECT_GE(lit[from + size_t(i)].position, times[i]);
            EXPECT_LE(lit[from + size_t(i)].position, times[i] + 0.021);
        }
    }

    QTemporaryDir dir;
    ManualDevice* device = nullptr;
    std::vector<Lit> lit;
    QString first, second;
};

} // namespace

TEST_F(Evening, ASongHandedToTheRunningPlayerShowsItsLyrics)
{
    transport.OpenFromCommandLine(first);
    Play(2.0);
    ASSERT_EQ(lit.size(), 8u) << "the first song is sung to its end";

    transport.OpenFromCommandLine(second);
    EXPECT_EQ(state.Lyrics.CurrentLyric, 0) << "new lyrics start from the title";
    Play(1.2);
    ExpectSecondSongLitInTime(8);
}

TEST_F(Evening, NextAndTheEndOfASongMoveOnWithTheirLyrics)
{
    state.Songs.AddItem(QStringLiteral("first"), QStringLiteral("00:04"), first);
    state.Songs.AddItem(QStringLiteral("second"), QStringLiteral("00:03"), second);
    transport.fnChangeSong(0);
    Play(2.0);
    commands.ButtonAction(PlayerButton::Next);  // Next
    Play(1.2);
    ExpectSecondSongLitInTime(8);

    // Back to the first, which plays to its end and hands over to the second by itself.
    lit.clear();
    transport.fnChangeSong(0);
    Play(5.5);
    ExpectSecondSongLitInTime(8);
}

TEST_F(Evening, ALoadIsNeverNestedInAnother)
{
    state.Songs.AddItem(QStringLiteral("first"), QStringLiteral("00:04"), first);
    // A hand-over that arrives while a song is still being opened, as it could from inside a
    // message box the load shows, is refused instead of loading into the half-made song.
    bool nested = true;
    state.Songs.AddItem(QStringLiteral("bad"), QString(), dir.filePath("bad.mp3"));
    WriteFileBytes(dir.filePath("bad.mp3"), QByteArray(4000, 'x'));
    ScriptedDialogs messages;
    PlayerTransport withMessages{state, windows, state.Songs, &messages};
    messages.shown = [&](const QString&) { nested = withMessages.OpenSong(second, true); };
    withMessages.fnChangeSong(1);
    EXPECT_FALSE(nested);
    EXPECT_NE(state.CurrentFile, second);
    EXPECT_TRUE(withMessages.OpenSong(second, false)) << "once the load is over the next one runs";
}

TEST_F(Evening, WordsTappedInTheEditorLightOnTheKaraokeWindowAndPlayBackAfterTheSave)
{
    // A song without lyrics plays; the editor comes up on it and the words are split.
    const QString song = WriteRampWav(dir.filePath("untimed.wav"), kRate * 6, kRate);
    transport.OpenFromCommandLine(song);
    commands.ButtonAction(PlayerButton::Editor);
    Editor& editor = *windows.EditorWidget();
    ASSERT_TRUE(editor.isVisible());
    editor.LyricsBox().setPlainText(QStringLiteral("Here we go\r\nsing it now"));
    editor.Command(QStringLiteral("MenuSplitWords"));
    Play(0.5);
    EXPECT_TRUE(lit.empty()) << "rows without a time are not sung";

    // Each tap lights its syllable within a tick, the reaction taken off.
    for (int row = 1; row <= 6; ++row) {
        Play(0.3);
        QTest::keyClick(&editor.List(), Qt::Key_Space);
        Play(0.02);
        ASSERT_EQ(lit.size(), size_t(row)) << "tap " << row;
        EXPECT_EQ(lit.back().index, row);
    }

    // Saved into the song (a WAV keeps the block at its end), closed, and played again.
    editor.Command(QStringLiteral("MenuSave"));
    QTRY_VERIFY(ReadFileBytes(song).contains("#End Songweaver"));
    const std::vector<LyricItem> tapped = state.Lyrics.EditLyrics;
    commands.ButtonAction(PlayerButton::Editor);
    EXPECT_FALSE(state.EditorOpen);
    transport.CloseSong();
    lit.clear();
    transport.OpenFromCommandLine(song);
    Play(3.0);
    ASSERT_EQ(lit.size(), 6u);
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(lit[i].index, int(i + 1));
        EXPECT_NEAR(lit[i].position, tapped[i + 1].Time, 0.021) << "syllable " << i + 1;
    }
}

TEST_F(Evening, PreferencesOpenedInMidSongShowOnTheKaraokeWindowAndCancelTakesThemBack)
{
    transport.OpenFromCommandLine(first);
    Play(0.7);
    commands.MenuCommand(QStringLiteral("Keyboard"));
    LyricOptions* options = windows.Preferences();
    ASSERT_TRUE(options);
    EXPECT_TRUE(options->isVisible());
    EXPECT_EQ(options->findChild<QTabWidget*>()->currentIndex(), 5);
    commands.ButtonAction(PlayerButton::Preferences);
    EXPECT_EQ(windows.Preferences(), options) << "one preferences window at a time";
    EXPECT_EQ(options->findChild<QTabWidget*>()->currentIndex(), 0);

    const QImage before = windows.LyricWidget()->grab().toImage();
    options->findChild<QRadioButton*>(QStringLiteral("DisplayMode0"))->click();
    options->findChild<QCheckBox*>(QStringLiteral("FitText"))->click();
    options->findChild<QSpinBox*>(QStringLiteral("FontSize"))->setValue(8);
    const QImage changed = windows.LyricWidget()->grab().toImage();
    EXPECT_NE(changed, before) << "the page shows the new settings while the song plays";
    Play(0.4);
    EXPECT_EQ(lit.size(), 5u) << "the song goes on lighting its syllables";

    options->findChild<QPushButton*>(QStringLiteral("Cancel"))->click();
    EXPECT_FALSE(options->isVisible());
    EXPECT_EQ(state.Theme->DisplayMode, 3);
    EXPECT_EQ(state.Theme->LyricsFontSize, 20);
    EXPECT_TRUE(state.Theme->LyricsFitFont);

    state.Recording = true;
    commands.MenuCommand(QStringLiteral("Prefs"));
    EXPECT_FALSE(options->isVisible()) << "not while the voice is recorded";
}

TEST_F(Evening, AtASlowerTempoASyllableLightsWhenItsSongSecondIsHeard)
{
    // A syllable at song second 10, the song at 0.8 of its tempo: heard, and lit, at 12.5 s.
    const QString song = Song("slow", 12, "[1.0]Count [10.0]ten");
    transport.OpenFromCommandLine(song);
    auto* media = dynamic_cast<MediaSession*>(state.Session.get());
    ASSERT_NE(media, nullptr);
    media->SetSound(0, 0.8);
    Play(12.4);
    ASSERT_FALSE(lit.empty());
    EXPECT_EQ(lit.back().index, 1) << "at 12.4 s of the song's sound, song second 9.92: not yet";
    Play(0.2);
    ASSERT_EQ(lit.back().index, 2);
    EXPECT_NEAR(lit.back().position, 10.0, 0.021) << "lit at its own song second";
    EXPECT_NEAR(state.Session->get_CurrentPosition(), 12.6 * 0.8, 0.03);
}
