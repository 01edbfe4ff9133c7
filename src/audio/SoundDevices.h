#pragma once
// Which sound output the program can use.

#include <QString>
#include <QStringList>

#include <string>

// True when SONGWEAVER_AUDIO=null asks for the silent device paced by the clock
// (headless runs, CI).
bool NullDeviceChosen();

// PortAudio starts on first use and stays up until the program ends: empty when it started,
// its error text otherwise.
const std::string& PortAudioStartError();

// Names of the output devices PortAudio reports.
QStringList OutputDeviceNames();
// Names of the devices PortAudio can record from.
QStringList InputDeviceNames();

// The sound libraries the program runs on, as "name version": FFmpeg, PortAudio, FluidSynth.
QStringList AudioLibraryVersions();

// True when the null device is chosen or PortAudio reports an output device.
bool HasOutputDevice();

// Keeps PortAudio's and ALSA's chatter off stderr while it lives.
class QuietAudioLibraries {
public:
    QuietAudioLibraries();
    ~QuietAudioLibraries();
    QuietAudioLibraries(const QuietAudioLibraries&) = delete;
    QuietAudioLibraries& operator=(const QuietAudioLibraries&) = delete;

private:
    int m_savedStderr = -1;
};
