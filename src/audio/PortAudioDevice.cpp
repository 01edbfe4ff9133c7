#include "audio/PortAudioDevice.h"

#include "audio/NullDevice.h"
#include "audio/SoundDevices.h"

#include <portaudio.h>

namespace {

int OutputDeviceAt(int index)
{
    int seen = 0;
    for (int i = 0; i < Pa_GetDeviceCount(); ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (info && info->maxOutputChannels > 0 && ++seen == index)
            return i;
    }
    return Pa_GetDefaultOutputDevice();
}

// The stream callback PortAudio calls on its real-time thread.
int RenderStream(const void*, void* output, unsigned long frames, const PaStreamCallbackTimeInfo* time,
                 PaStreamCallbackFlags, void* device) noexcept
{
    static_cast<PortAudioDevice*>(device)->RenderBuffer(static_cast<float*>(output), int(frames), time->currentTime,
                                                        time->outputBufferDacTime);
    return paContinue;
}

} // namespace

PortAudioDevice::PortAudioDevice(int deviceIndex)
{
    m_error = PortAudioStartError();
    if (!m_error.empty())
        return;
    m_device = OutputDeviceAt(deviceIndex);
    const PaDeviceInfo* info = m_device >= 0 ? Pa_GetDeviceInfo(m_device) : nullptr;
    if (!info) {
        m_error = "no output device";
        return;
    }
    m_name = info->name;
    m_sampleRate = info->defaultSampleRate > 0 ? int(info->defaultSampleRate) : 48000;
}

PortAudioDevice::~PortAudioDevice()
{
    Stop();
}

bool PortAudioDevice::Start(AudioRenderer& renderer)
{
    if (!m_error.empty())
        return false;
    Stop();
    const PaDeviceInfo* info = Pa_GetDeviceInfo(m_device);
    PaStreamParameters params{};
    params.device = m_device;
    params.channelCount = 2;
    params.sampleFormat = paFloat32;
    params.suggestedLatency = info->defaultLowOutputLatency;

    QuietAudioLibraries quiet;
    m_renderer = &renderer;
    PaError err = Pa_OpenStream(&m_stream, nullptr, &params, m_sampleRate, paFramesPerBufferUnspecified,
                                paNoFlag, &RenderStream, this);
    if (err == paNoError) {
        const PaStreamInfo* stream = Pa_GetStreamInfo(m_stream);
        m_clock = std::make_unique<DacClock>(m_sampleRate, stream ? stream->outputLatency : 0);
        err = Pa_StartStream(m_stream);
    }
    if (err != paNoError) {
        m_error = Pa_GetErrorText(err);
        Stop();
        return false;
    }
    return true;
}

void PortAudioDevice::Stop()
{
    if (!m_stream)
        return;
    QuietAudioLibraries quiet;
    Pa_StopStream(m_stream);
    Pa_CloseStream(m_stream);
    m_stream = nullptr;
}

void PortAudioDevice::RenderBuffer(float* output, int frames, double streamNow, double dacTime) noexcept
{
    const double heardAt = m_clock->HeardAt(SteadySeconds(), streamNow, dacTime, frames);
    m_renderer->Render(output, frames, BufferTiming{heardAt});
}

std::unique_ptr<AudioDevice> CreateOutputDevice(int deviceIndex)
{
    if (NullDeviceChosen())
        return std::make_unique<NullDevice>();
    return std::make_unique<PortAudioDevice>(deviceIndex);
}
