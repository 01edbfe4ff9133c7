// The card mixer's controls on the engine: levels, mutes, tone and pan, and the list of mixers.

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "voice/ClsVolume.h"

#include <gtest/gtest.h>

TEST(Mixer, LevelsAndMutesLandOnTheEnginesLinesAndComeBack)
{
    AudioEngine engine(std::make_unique<ManualDevice>());
    clsVolume mixer(&engine);
    EXPECT_EQ(mixer.VolumeLevel(), clsVolume::VolumeMax()) << "the engine starts at full level";

    mixer.setVolumeLevel(32768);
    EXPECT_EQ(engine.MasterVolume(), -602) << "half the amplitude is 6 dB down";
    EXPECT_NEAR(mixer.VolumeLevel(), 32768, 8);
    mixer.setWaveLevel(0);
    EXPECT_EQ(engine.BusVolume(AudioSource::Bus::Wave), -10000);
    EXPECT_EQ(mixer.WaveLevel(), 0);
    mixer.setMidiLevel(6554);
    EXPECT_EQ(engine.BusVolume(AudioSource::Bus::Synth), -2000);
    mixer.setMicOutLevel(65535);
    EXPECT_EQ(engine.MonitorVolume(), 0);
    mixer.setMicInLevel(16384);
    EXPECT_EQ(engine.InputVolume(), -1204);

    EXPECT_EQ(mixer.MicroOutMute(), -1) << "the microphone is not heard until switched on";
    mixer.setMicroOutMute(0);
    EXPECT_FALSE(engine.MonitorMute());
    EXPECT_EQ(mixer.MicroOutMute(), 0);
    mixer.setVolumeMute(true);
    EXPECT_TRUE(engine.MasterMute());
    mixer.setWaveMute(true);
    EXPECT_TRUE(mixer.WaveMute());
    EXPECT_FALSE(engine.BusMute(AudioSource::Bus::Synth));

    mixer.setVolumeLevelBass(65535);
    EXPECT_EQ(engine.MasterBass(), 1200);
    mixer.setVolumeLevelTreble(0);
    EXPECT_EQ(engine.MasterTreble(), -1200);
    EXPECT_EQ(mixer.VolumeLevelTreble(), 0);
    mixer.setVolumeLevelPan(65535);
    EXPECT_EQ(engine.MasterBalance(), 10000) << "all the way right: the left is silent";
    mixer.setVolumeLevelPan(32768);
    EXPECT_EQ(engine.MasterBalance(), 0);
    mixer.setVolumeLevelPan(16384);
    EXPECT_EQ(engine.MasterBalance(), -602);
    EXPECT_NEAR(mixer.VolumeLevelPan(), 16384, 8);

    EXPECT_LE(EnumMixer().size(), clsVolume::kMixerNames);
    clsVolume none(nullptr);
    none.setVolumeLevel(0);
    EXPECT_EQ(none.VolumeLevel(), clsVolume::VolumeMax()) << "without an engine every control reads its rest";
    EXPECT_EQ(none.MicroOutMute(), -1);
}
