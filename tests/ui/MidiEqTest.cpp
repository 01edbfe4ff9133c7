// The MIDI window on the offscreen platform, as a singer meets it: opened in the middle of a
// MIDI song, strips that light up only for the song's channels, faders, mutes and knobs under
// the mouse, the switch to the equaliser face, and what the next song and closing leave.

#include "midi/MidiPlayer.h"
#include "playback/MediaSession.h"
#include "playback/MidiControls.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "SessionWindows.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"
#include "ui/midi/MidiEq.h"
#include "ui/midi/MidiEqLayout.h"
#include "ui/voice/RegMe.h"
#include "voice/Equalizer.h"
#include "voice/VoiceRecorder.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace MidiEqLayout;

namespace {

class MidiWindow : public testing::Test {
protected:
    MidiWindow()
    {
        LoadDefaults(state, windows.store);
        StartManualEngine(state);
        kar = CopyFixture(MediaFixture("song.kar"), dir.path());
    }
    // Saves what the window shows when a folder for pictures is given.
    void Picture(MidiEq& window, const QString& name)
    {
        const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
        if (!folder.isEmpty())
            window.grab().save(folder + u'/' + name + QStringLiteral(".png"));
    }

    QTemporaryDir dir;
    QString kar;
    PlayerState state;
    Journal journal;
    SessionWindows windows{state, journal};
    FakeSongList list{journal};
    PlayerTransport transport{state, windows, list};
};

QPoint At(double x, double y)
{
    return QPointF(x, y).toPoint();
}

} // namespace

TEST_F(MidiWindow, OpenedInMidSongItShowsTheSongsChannelsAndItsControlsReachTheSong)
{
    transport.OpenSong(kar, false);
    ASSERT_NE(PlayingMidi(state), nullptr);
    MidiEq window(state, windows.store, windows.docking);
    window.Show();
    Picture(window, QStringLiteral("midieq-strips"));

    // Channels are found by the reader's byte search: a stray byte lights a strip too.
    EXPECT_TRUE(window.StripOf(0).enabled) << "the song plays on channel 1";
    for (int channel = 1; channel < kChannels; ++channel)
        EXPECT_EQ(window.StripOf(channel).enabled, state.Midi.ChannelTable[size_t(channel)].Channel != -1) << channel;
    EXPECT_FALSE(window.StripOf(3).enabled);
    EXPECT_EQ(window.StripOf(0).volume, 100);
    EXPECT_EQ(window.StripOf(0).balance, 64) << "no pan in the file: the middle";
    EXPECT_EQ(window.StripText(0), "1  Acoustic Grand   vol 100   pan C");

    QTest::mouseClick(&window, Qt::LeftButton, {}, At(StripCentre(0), kFaderTop));
    EXPECT_EQ(window.StripOf(0).volume, 127) << "a press at the top of the fader";
    EXPECT_TRUE(state.Midi.ChannelTable[0].VolumeChanged);
    EXPECT_EQ(state.Midi.ChannelTable[0].Volume, 127);
    QTest::mouseClick(&window, Qt::LeftButton, {}, At(StripCentre(3), kFaderTop));
    EXPECT_EQ(window.StripOf(3).volume, 0) << "an unused channel's fader does not move";
    EXPECT_FALSE(state.Midi.ChannelTable[3].VolumeChanged);

    QTest::mouseClick(&window, Qt::LeftButton, {}, At(StripCentre(0), kMuteY));
    EXPECT_TRUE(window.StripOf(0).muted);
    EXPECT_TRUE(window.StripText(0).endsWith("muted"));

    const QPoint knobTop = At(kToneX, kKnobTravelTop + kKnobHeight / 2);
    QTest::mousePress(&window, Qt::LeftButton, {}, At(kToneX, 123));
    QTest::mouseMove(&window, knobTop);
    QTest::mouseRelease(&window, Qt::LeftButton, {}, knobTop);
    EXPECT_EQ(window.TransposeTop(), 150) << "the knob at the top of its travel";
    EXPECT_EQ(window.ToneLabel(), "+10");
    QTest::mouseDClick(&window, Qt::LeftButton, {}, knobTop);
    EXPECT_EQ(window.TransposeTop(), 118) << "a double click centres the knob";
    EXPECT_EQ(window.ToneLabel(), "0");

    QTest::mouseClick(&window, Qt::LeftButton, {}, At(kTempoX, kKnobTravelBottom + kKnobHeight / 2));
    EXPECT_EQ(window.TempoTop(), 86);
    EXPECT_EQ(window.TempoLabel(), "-10");
}

TEST_F(MidiWindow, TheEqualiserFaceTurnsTheWholeSongBalanceAndANewSongResetsTheKnobs)
{
    MidiEq window(state, windows.store, windows.docking);
    window.Show();
    EXPECT_FALSE(window.StripOf(0).enabled) << "no song yet";
    transport.OpenSong(kar, false);
    window.ChangeMidi(kar, 0);
    EXPECT_TRUE(window.StripOf(0).enabled);
    window.MoveTempo(140);

    QTest::mouseClick(&window, Qt::LeftButton, {}, kSwitcher.center().toPoint());
    EXPECT_EQ(window.ShownFace(), MidiEq::Face::Equaliser);
    const QPoint knob = kBalanceKnob.toPoint();
    QTest::mousePress(&window, Qt::LeftButton, {}, knob);
    QTest::mouseMove(&window, knob + QPoint(40, 0));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, knob + QPoint(40, 0));
    EXPECT_EQ(state.SongBalance, 15000) << "a quarter of the knob's drag to the right";
    Picture(window, QStringLiteral("midieq-equaliser"));
    QTest::mouseDClick(&window, Qt::LeftButton, {}, knob);
    EXPECT_EQ(state.SongBalance, 10000);

    // The next song: the transport closes the old one first, and the window follows.
    const QString next = CopyFixture(MediaFixture("song.kar"), dir.path(), "next.kar");
    transport.OpenSong(next, false);
    window.CloseDevice();
    window.ChangeMidi(next, 0);
    EXPECT_EQ(window.TempoTop(), 118);
    EXPECT_EQ(window.ShownFace(), MidiEq::Face::Strips);
    EXPECT_TRUE(window.StripOf(0).enabled);

    window.Unload();
    EXPECT_FALSE(windows.store.RegReadString("eq position").isEmpty());
}

TEST_F(MidiWindow, TheEqualiserFacesMicrophoneToneKnobsLevelBarAndVoiceFader)
{
    ManualDevice& device = StartManualEngine(state);
    ScriptedDialogs messages;
    Equalizer equalizer(state);
    QWidget anchor;
    RegMe indicator(state, anchor);
    VoiceRecorder recorder(state, windows, messages, equalizer, indicator);
    MidiEq window(state, windows.store, windows.docking);
    window.AttachVoice(equalizer, recorder);
    window.Show();
    QTest::mouseClick(&window, Qt::LeftButton, {}, kSwitcher.center().toPoint());

    QTest::mouseClick(&window, Qt::LeftButton, {}, kMicSwitch.center().toPoint());
    ASSERT_TRUE(state.MicrophoneOn) << "the MIC switch is the main window's microphone button";
    EXPECT_TRUE(state.Engine->InputRunning());
    EXPECT_FALSE(state.Engine->MonitorMute());

    // Treble a quarter turn up, bass reset by a double click after a turn down.
    const QPoint treble = kTrebleKnob.toPoint();
    QTest::mousePress(&window, Qt::LeftButton, {}, treble);
    QTest::mouseMove(&window, treble + QPoint(40, 0));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, treble + QPoint(40, 0));
    EXPECT_EQ(equalizer.Treble(), 15000);
    EXPECT_EQ(state.Engine->MasterTreble(), 600) << "half the way to 12 dB";
    const QPoint bass = kBassKnob.toPoint();
    QTest::mousePress(&window, Qt::LeftButton, {}, bass);
    QTest::mouseMove(&window, bass + QPoint(0, 40));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, bass + QPoint(0, 40));
    EXPECT_EQ(state.Engine->MasterBass(), -600);

    // The voice fader: its top is the loudest, its foot the quietest.
    QTest::mousePress(&window, Qt::LeftButton, {}, QPointF(kVoiceFaderX, kVoiceFaderBottom).toPoint());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, QPointF(kVoiceFaderX, kVoiceFaderBottom).toPoint());
    EXPECT_EQ(state.Theme->VoiceVolume, kVoiceFaderMax);
    QTest::mousePress(&window, Qt::LeftButton, {}, QPointF(kVoiceFaderX, kVoiceFaderTop + 20).toPoint());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, QPointF(kVoiceFaderX, kVoiceFaderTop + 20).toPoint());
    EXPECT_EQ(state.Theme->VoiceVolume, 29);

    // A loud note lights the bar on the window's own timer.
    device.FeedInput(std::vector<float>(512 * 2, 0.7f));
    device.Step(512);
    QTRY_COMPARE_WITH_TIMEOUT(window.LevelPixels(), changeVolume(2 * 22937), 2000);
    Picture(window, QStringLiteral("midieq-microphone"));

    QTest::mouseDClick(&window, Qt::LeftButton, {}, bass);
    EXPECT_EQ(state.Engine->MasterBass(), 0);
    state.Recording = true;
    QTest::mouseClick(&window, Qt::LeftButton, {}, kMicSwitch.center().toPoint());
    EXPECT_TRUE(state.MicrophoneOn) << "refused while a take is recorded";
    state.Recording = false;
    QTest::mouseClick(&window, Qt::LeftButton, {}, kMicSwitch.center().toPoint());
    EXPECT_FALSE(state.MicrophoneOn);
    EXPECT_FALSE(state.Engine->InputRunning());
}

TEST_F(MidiWindow, TheIndicatorsPanelsBlinkOnlyForWhatRuns)
{
    QWidget anchor;
    anchor.setGeometry(100, 100, 360, 120);
    RegMe indicator(state, anchor);
    state.Recording = true;
    indicator.Show();
    EXPECT_TRUE(indicator.isVisible());
    indicator.Blink();
    EXPECT_EQ(indicator.RecoLeft(), kPanelOffScreen);
    EXPECT_EQ(indicator.VocLeft(), 0) << "the voice does not play";
    indicator.Blink();
    EXPECT_EQ(indicator.RecoLeft(), 0);
    const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
    if (!folder.isEmpty())
        indicator.grab().save(folder + QStringLiteral("/regme.png"));
    indicator.Hide();
    EXPECT_FALSE(indicator.isVisible());
}

TEST_F(MidiWindow, AnAudioSongsKeyMovesBySemitonesAndItsTempoKeepsTheKey)
{
    transport.OpenSong(WriteRampWav(dir.filePath("audio.wav"), 48000 * 2), false);
    auto* media = dynamic_cast<MediaSession*>(state.Session.get());
    ASSERT_NE(media, nullptr);
    MidiEq window(state, windows.store, windows.docking);
    window.Show();

    window.MoveTranspose(kKnobBottom);
    EXPECT_EQ(window.ToneLabel(), "+12") << "the semitones, not the MIDI scale's -10 to +10";
    EXPECT_EQ(media->Semitones(), 12);
    window.MoveTranspose(kKnobTop);
    EXPECT_EQ(window.ToneLabel(), "-12");
    window.MoveTranspose(kKnobTop + 32 + 3);
    EXPECT_EQ(window.ToneLabel(), "+1");
    EXPECT_EQ(media->Semitones(), 1);

    window.MoveTempo(kKnobTop);
    EXPECT_DOUBLE_EQ(media->Tempo(), 0.5);
    EXPECT_EQ(media->get_Rate(), 1.0) << "the rate stays: the key is kept";
    EXPECT_EQ(media->Semitones(), 1) << "the tempo leaves the key where it is";
    Picture(window, QStringLiteral("midieq-audio-key"));
}
