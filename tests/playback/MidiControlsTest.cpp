// The MIDI window's controls on a MIDI song that plays on the manual device: what a person
// hears when they move the faders, mute a channel, turn the balance, and seek afterwards; the
// volume slider's MIDI law; the time signature in the bit rate's label.

#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"
#include "playback/MediaSession.h"
#include "playback/MidiControls.h"
#include "playback/SongSound.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/FakeForms.h"
#include "support/PlayerSetup.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

struct Loudness {
    double left = 0;
    double right = 0;
};

class MidiControls : public testing::Test {
protected:
    MidiControls()
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state);
        kar = CopyFixture(MediaFixture("song.kar"), dir.path());
        transport.OpenSong(kar, false);
    }
    // The root mean square of each side over the next `frames` frames.
    Loudness Listen(int frames = 9600)
    {
        const std::vector<float>& out = device->Step(frames);
        Loudness sum;
        for (size_t i = 0; i + 1 < out.size(); i += 2) {
            sum.left += double(out[i]) * out[i];
            sum.right += double(out[i + 1]) * out[i + 1];
        }
        return {std::sqrt(sum.left / frames), std::sqrt(sum.right / frames)};
    }

    QTemporaryDir dir;
    QString kar;
    PlayerState state;
    Journal journal;
    MemoryStore store;
    FakeWindows windows{journal};
    FakeSongList list{journal};
    ManualDevice* device = nullptr;
    PlayerTransport transport{state, windows, list};
};

} // namespace

TEST_F(MidiControls, AClosedFaderStaysClosedAfterASeekAndAMutedChannelIsSilent)
{
    ASSERT_NE(PlayingMidi(state), nullptr);
    const double playing = Listen().left;
    EXPECT_GT(playing, 0.005) << "the song's one channel sounds";
    // Silence: 40 dB under the song, which leaves room for the reverberation's last traces.
    const double silence = playing / 100;

    ApplyChannelVolume(state, 0, 0);
    Listen(24000);
    EXPECT_LT(Listen().left, silence) << "the fader at the bottom";
    // A seek sets the controllers as the song has them there; the moved fader is sent again.
    transport.SeekTo(0.5);
    Listen(24000);
    EXPECT_LT(Listen().left, silence) << "the fader holds through a seek";
    EXPECT_TRUE(state.Midi.ChannelTable[0].VolumeChanged);

    ApplyChannelVolume(state, 0, 100);
    transport.SeekTo(0);
    EXPECT_GT(Listen().left, 0.005);
    ApplyChannelMute(state, 0, true);
    Listen(24000);
    EXPECT_LT(Listen().left, silence) << "muted";
    transport.SeekTo(0.25);
    Listen(24000);
    EXPECT_LT(Listen().left, silence) << "a mute holds through a seek";
    ApplyChannelMute(state, 0, false);
    Listen(24000);
    EXPECT_GT(Listen().left, 0.005) << "the next note sounds again";
}

TEST_F(MidiControls, TheWholeSongBalancePansEveryChannelAndStaysForTheNextSong)
{
    const Loudness centre = Listen();
    EXPECT_NEAR(centre.left, centre.right, centre.left * 0.1);
    ApplySongBalance(state, 0);
    Listen(2400);
    const Loudness left = Listen();
    // What is left on the right is the reverberation, which the synthesiser does not pan.
    EXPECT_LT(left.right, left.left * 0.1) << "turned fully left";
    EXPECT_EQ(state.SongBalance, 0);
    transport.SeekTo(0.5);
    Listen(2400);
    const Loudness sought = Listen();
    EXPECT_LT(sought.right, sought.left * 0.1) << "the whole-song balance holds through a seek";

    const QString again = CopyFixture(MediaFixture("song.kar"), dir.path(), "again.kar");
    transport.OpenSong(again, false);
    Listen(2400);
    const Loudness next = Listen();
    EXPECT_LT(next.right, next.left * 0.1) << "the next song keeps the knob's balance";
}

TEST_F(MidiControls, TheVolumeSliderFollowsTheMidiLawAndTheLabelShowsTheTimeSignature)
{
    EXPECT_EQ(MidiVolumeOfSlider(0.0), -3000);
    EXPECT_EQ(MidiVolumeOfSlider(0.5), -1050);
    EXPECT_EQ(MidiVolumeOfSlider(1.0), 900);
    windows.player.volume = 0.5;
    transport.VolumeMoved(0.5);
    EXPECT_EQ(state.Session->get_Volume(), -1050);
    EXPECT_EQ(transport.GetVolume(), -1050);
    EXPECT_EQ(windows.player.bitrate, "Tempo: 4/4") << "a file without a time signature is in 4/4";
    EXPECT_EQ(windows.player.sampleRate, "");

    const QString wav = WriteRampWav(dir.filePath("audio.wav"), 48000);
    transport.OpenSong(wav, false);
    transport.VolumeMoved(0.5);
    EXPECT_EQ(state.Session->get_Volume(), VolumeOfSlider(0.5)) << "audio songs keep their own law";
}

TEST_F(MidiControls, TheTempoKnobSetsTheMasterTempoOrTheTempoOfAnAudioSongInItsKey)
{
    ApplyTempo(state, 150);
    Listen(2400);
    const double before = state.Session->get_CurrentPosition();
    Listen(48000);
    EXPECT_NEAR(state.Session->get_CurrentPosition() - before, 2.0, 0.01) << "the knob's top: twice as fast";

    transport.OpenSong(WriteRampWav(dir.filePath("audio.wav"), 48000 * 4), true);
    ApplyTempo(state, 102);
    PlayDecoded(*device, state, 0.2);
    double start = state.Session->get_CurrentPosition();
    PlayDecoded(*device, state, 1.0);
    EXPECT_NEAR(state.Session->get_CurrentPosition() - start, std::sqrt(0.5), 0.02)
        << "a quarter of the travel: half an octave of tempo down, the key kept";
    EXPECT_EQ(state.Session->get_Rate(), 1.0);

    state.Theme->KeepPitch = false;
    ApplyTempo(state, 102);
    PlayDecoded(*device, state, 0.2);
    start = state.Session->get_CurrentPosition();
    PlayDecoded(*device, state, 1.0);
    EXPECT_NEAR(state.Session->get_CurrentPosition() - start, 0.5, 0.02)
        << "the key not kept: the knob's rate alone, half speed and an octave down";
}
