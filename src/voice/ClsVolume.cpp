#include "voice/ClsVolume.h"

#include "audio/AudioEngine.h"
#include "audio/SoundDevices.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kFullLevel = 65535;
constexpr int kCentre = 32768;
constexpr int kShelfRange = 1200;

} // namespace

QStringList EnumMixer()
{
    return InputDeviceNames().mid(0, clsVolume::kMixerNames);
}

int HundredthsDbOfLevel(int level)
{
    if (level <= 0)
        return -10000;
    return std::max(-10000, int(std::lround(2000 * std::log10(double(std::min(level, kFullLevel)) / kFullLevel))));
}

int LevelOfHundredthsDb(int hundredthsDb)
{
    if (hundredthsDb <= -10000)
        return 0;
    return std::clamp(int(std::lround(kFullLevel * std::pow(10.0, hundredthsDb / 2000.0))), 0, kFullLevel);
}

int ShelfOfLevel(int level)
{
    return int(std::lround(double(std::clamp(level, 0, kFullLevel) - kCentre) * kShelfRange / kCentre));
}

int LevelOfShelf(int hundredthsDb)
{
    return std::clamp(int(std::lround(double(hundredthsDb) * kCentre / kShelfRange)) + kCentre, 0, kFullLevel);
}

QString clsVolume::MixerName() const
{
    const QStringList names = EnumMixer();
    return m_mixer >= 1 && m_mixer <= names.size() ? names[m_mixer - 1] : QString();
}

void clsVolume::setMixerSelect(int device)
{
    m_mixer = device;
    InitializeMixer(device);
}

void clsVolume::InitializeMixer(int device)
{
    m_mixer = device;
    if (m_engine && m_engine->InputRunning()) {
        m_engine->StopInput();
        m_engine->StartInput(device);
    }
}

int clsVolume::VolumeLevel() const
{
    return m_engine ? LevelOfHundredthsDb(m_engine->MasterVolume()) : kFullLevel;
}

void clsVolume::setVolumeLevel(int level)
{
    if (m_engine)
        m_engine->SetMasterVolume(HundredthsDbOfLevel(level));
}

int clsVolume::MicOutLevel() const
{
    return m_engine ? LevelOfHundredthsDb(m_engine->MonitorVolume()) : kFullLevel;
}

void clsVolume::setMicOutLevel(int level)
{
    if (m_engine)
        m_engine->SetMonitorVolume(HundredthsDbOfLevel(level));
}

int clsVolume::MicInLevel() const
{
    return m_engine ? LevelOfHundredthsDb(m_engine->InputVolume()) : kFullLevel;
}

void clsVolume::setMicInLevel(int level)
{
    if (m_engine)
        m_engine->SetInputVolume(HundredthsDbOfLevel(level));
}

int clsVolume::WaveLevel() const
{
    return m_engine ? LevelOfHundredthsDb(m_engine->BusVolume(AudioSource::Bus::Wave)) : kFullLevel;
}

void clsVolume::setWaveLevel(int level)
{
    if (m_engine)
        m_engine->SetBusVolume(AudioSource::Bus::Wave, HundredthsDbOfLevel(level));
}

int clsVolume::MidiLevel() const
{
    return m_engine ? LevelOfHundredthsDb(m_engine->BusVolume(AudioSource::Bus::Synth)) : kFullLevel;
}

void clsVolume::setMidiLevel(int level)
{
    if (m_engine)
        m_engine->SetBusVolume(AudioSource::Bus::Synth, HundredthsDbOfLevel(level));
}

int clsVolume::MicroOutMute() const
{
    return !m_engine || m_engine->MonitorMute() ? -1 : 0;
}

void clsVolume::setMicroOutMute(int mute)
{
    if (m_engine)
        m_engine->SetMonitorMute(mute != 0);
}

bool clsVolume::VolumeMute() const
{
    return m_engine && m_engine->MasterMute();
}

void clsVolume::setVolumeMute(bool mute)
{
    if (m_engine)
        m_engine->SetMasterMute(mute);
}

bool clsVolume::WaveMute() const
{
    return m_engine && m_engine->BusMute(AudioSource::Bus::Wave);
}

void clsVolume::setWaveMute(bool mute)
{
    if (m_engine)
        m_engine->SetBusMute(AudioSource::Bus::Wave, mute);
}

int clsVolume::VolumeLevelBass() const
{
    return m_engine ? LevelOfShelf(m_engine->MasterBass()) : kCentre;
}

void clsVolume::setVolumeLevelBass(int level)
{
    if (m_engine)
        m_engine->SetMasterBass(ShelfOfLevel(level));
}

int clsVolume::VolumeLevelTreble() const
{
    return m_engine ? LevelOfShelf(m_engine->MasterTreble()) : kCentre;
}

void clsVolume::setVolumeLevelTreble(int level)
{
    if (m_engine)
        m_engine->SetMasterTreble(ShelfOfLevel(level));
}

// The pan's distance from the centre (0 to 32767) is the weaker side's cut, as a level.
int clsVolume::VolumeLevelPan() const
{
    if (!m_engine)
        return kCentre;
    const int balance = m_engine->MasterBalance();
    const int away = int(std::lround((kCentre - 1) * (1.0 - double(LevelOfHundredthsDb(-std::abs(balance))) / kFullLevel)));
    return balance > 0 ? kCentre + away : kCentre - away;
}

void clsVolume::setVolumeLevelPan(int level)
{
    if (!m_engine)
        return;
    const int offset = std::clamp(level, 0, kFullLevel) - kCentre;
    const int away = std::min(std::abs(offset), kCentre - 1);
    const int weaker = HundredthsDbOfLevel(int(std::lround(kFullLevel * (1.0 - double(away) / (kCentre - 1)))));
    m_engine->SetMasterBalance(offset > 0 ? -weaker : weaker);
}
