#include "audio/SoundDevices.h"

#include <alsa/asoundlib.h>
#include <fluidsynth.h>
extern "C" {
#include <libavutil/avutil.h>
}
#include <fcntl.h>
#include <portaudio.h>
#include <unistd.h>

namespace {

void IgnoreAlsaError(const char*, int, const char*, int, const char*, ...) {}

// Device lists are read when PortAudio starts, and its hosts (ALSA, JACK) do not take well to
// being started and stopped again and again; it starts once and stops when the program ends.
class PortAudioLibrary {
public:
    PortAudioLibrary()
    {
        QuietAudioLibraries quiet;
        const PaError err = Pa_Initialize();
        if (err != paNoError)
            m_error = Pa_GetErrorText(err);
    }
    ~PortAudioLibrary()
    {
        if (m_error.empty()) {
            QuietAudioLibraries quiet;
            Pa_Terminate();
        }
    }
    PortAudioLibrary(const PortAudioLibrary&) = delete;
    PortAudioLibrary& operator=(const PortAudioLibrary&) = delete;

    const std::string& Error() const { return m_error; }

private:
    std::string m_error;
};

} // namespace

const std::string& PortAudioStartError()
{
    static const PortAudioLibrary library;
    return library.Error();
}

bool NullDeviceChosen()
{
    return qEnvironmentVariable("SONGWEAVER_AUDIO").compare(QLatin1String("null"), Qt::CaseInsensitive) == 0;
}

QuietAudioLibraries::QuietAudioLibraries()
{
    snd_lib_error_set_handler(IgnoreAlsaError);
    // JACK and the ALSA plugins print while devices are probed; those lines help no user.
    m_savedStderr = dup(STDERR_FILENO);
    const int devNull = open("/dev/null", O_WRONLY);
    if (devNull >= 0) {
        dup2(devNull, STDERR_FILENO);
        close(devNull);
    }
}

QuietAudioLibraries::~QuietAudioLibraries()
{
    if (m_savedStderr >= 0) {
        dup2(m_savedStderr, STDERR_FILENO);
        close(m_savedStderr);
    }
}

namespace {

QStringList DeviceNames(bool input)
{
    QStringList names;
    if (!PortAudioStartError().empty())
        return names;
    const int count = Pa_GetDeviceCount();
    for (int i = 0; i < count; ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (info && (input ? info->maxInputChannels : info->maxOutputChannels) > 0)
            names << QString::fromLocal8Bit(info->name);
    }
    return names;
}

} // namespace

QStringList OutputDeviceNames()
{
    return DeviceNames(false);
}

QStringList InputDeviceNames()
{
    return DeviceNames(true);
}

bool HasOutputDevice()
{
    return NullDeviceChosen() || !OutputDeviceNames().isEmpty();
}

QStringList AudioLibraryVersions()
{
    return {QStringLiteral("FFmpeg ") + QString::fromUtf8(av_version_info()),
            QStringLiteral("PortAudio ") + QString::fromUtf8(Pa_GetVersionInfo()->versionText).remove(QStringLiteral("PortAudio V")),
            QStringLiteral("FluidSynth ") + QString::fromUtf8(fluid_version_str())};
}
