#include "audio/PortAudioDevice.h"

#include "audio/NullDevice.h"
#include "audio/SoundDevices.h"

#include <portaudio.h>

#include <algorithm>

namespace {

// Input and output buffers are widened in blocks of this many frames at most.
constexpr int kMaxBufferFrames = 16384;

int DeviceAt(int index, bool input)
{
    int seen = 0;
    for (int i = 0; i < Pa_GetDeviceCount(); ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (info && (input ? info->maxInputChannels : info->maxOutputChannels) > 0 && ++seen == index)
            return i;
    }
    return input ? Pa_GetDefaultInputDevice() : Pa_GetDefaultOutputDevice();
}

int RenderStream(const void* input, void* output, unsigned long frames, const PaStreamCallbackTimeInfo* time,
                 PaStreamCallbackFlags, void* device) noexcept
{
    static_cast<PortAudioDevice*>(device)->RenderBuffer(static_cast<const float*>(input), static_cast<float*>(output),
                                                        int(frames), time->currentTime, time->outputBufferDacTime,
                                                        time->inputBufferAdcTime);
    return paContinue;
}

int CaptureStream(const void* input, void*, unsigned long frames, const PaStreamCallbackTimeInfo* time,
                  PaStreamCallbackFlags, void* device) noexcept
{
    static_cast<PortAudioDevice*>(device)->TakeInputBuffer(static_cast<const float*>(input), int(frames),
                                                           time->currentTime, time->inputBufferAdcTime);
    return paContinue;
}

PaStreamParameters StreamParameters(int device, int channels, bool input)
{
    const PaDeviceInfo* info = Pa_GetDeviceInfo(device);
    PaStreamParameters params{};
    params.device = device;
    params.channelCount = channels;
    params.sampleFormat = paFloat32;
    params.suggestedLatency = input ? info->defaultLowInputLatency : info->defaultLowOutputLatency;
    return params;
}

} // namespace

PortAudioDevice::PortAudioDevice(int deviceIndex)
    : m_inputStereo(size_t(kMaxBufferFrames) * 2), m_ringInput(size_t(kMaxBufferFrames) * 2)
{
    m_error = PortAudioStartError();
    if (!m_error.empty())
        return;
    m_device = DeviceAt(deviceIndex, false);
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
    if (m_device < 0)
        return false;
    m_renderer = &renderer;
    return OpenStreams();
}

void PortAudioDevice::Stop()
{
    CloseStreams();
    m_renderer = nullptr;
}

bool PortAudioDevice::StartInput(int inputDeviceIndex)
{
    if (m_device < 0)
        return false;
    const int device = DeviceAt(inputDeviceIndex, true);
    const PaDeviceInfo* info = device >= 0 ? Pa_GetDeviceInfo(device) : nullptr;
    if (!info) {
        m_error = "no recording device";
        return false;
    }
    m_inputDevice = device;
    m_inputChannels = std::min(2, info->maxInputChannels);
    if (!m_renderer || OpenStreams())
        return true;
    // The output must go on even when the microphone cannot be had.
    m_inputDevice = -1;
    const std::string error = m_error;
    OpenStreams();
    m_error = error;
    return false;
}

void PortAudioDevice::StopInput()
{
    if (m_inputDevice < 0)
        return;
    m_inputDevice = -1;
    if (m_renderer)
        OpenStreams();
}

bool PortAudioDevice::OpenStreams()
{
    CloseStreams();
    QuietAudioLibraries quiet;
    m_duplex = false;
    if (m_inputDevice >= 0 && OpenOutput(true)) {
        m_duplex = true;
        return true;
    }
    if (!OpenOutput(false))
        return false;
    if (m_inputDevice >= 0 && !OpenSeparateInput()) {
        CloseStreams();
        OpenOutput(false);
        return false;
    }
    return true;
}

bool PortAudioDevice::OpenOutput(bool withInput)
{
    const PaStreamParameters output = StreamParameters(m_device, 2, false);
    const PaStreamParameters input = withInput ? StreamParameters(m_inputDevice, m_inputChannels, true)
                                               : PaStreamParameters{};
    PaError err = Pa_OpenStream(&m_stream, withInput ? &input : nullptr, &output, m_sampleRate,
                                paFramesPerBufferUnspecified, paNoFlag, &RenderStream, this);
    if (err == paNoError) {
        const PaStreamInfo* stream = Pa_GetStreamInfo(m_stream);
        m_outputLatency = stream ? stream->outputLatency : 0;
        if (withInput)
            m_inputLatency = stream ? stream->inputLatency : 0;
        m_clock = std::make_unique<DacClock>(m_sampleRate, m_outputLatency);
        err = Pa_StartStream(m_stream);
    }
    // A duplex stream the card refuses is no error: the output opens alone next.
    return err == paNoError || Abandon(m_stream, err, !withInput);
}

bool PortAudioDevice::OpenSeparateInput()
{
    m_inputRing.Clear();
    const PaStreamParameters input = StreamParameters(m_inputDevice, m_inputChannels, true);
    PaError err = Pa_OpenStream(&m_inputStream, &input, nullptr, m_sampleRate, paFramesPerBufferUnspecified, paNoFlag,
                                &CaptureStream, this);
    if (err == paNoError) {
        const PaStreamInfo* stream = Pa_GetStreamInfo(m_inputStream);
        m_inputLatency = stream ? stream->inputLatency : 0;
        err = Pa_StartStream(m_inputStream);
    }
    return err == paNoError || Abandon(m_inputStream, err, true);
}

bool PortAudioDevice::Abandon(PaStream*& stream, int err, bool keepReason)
{
    if (keepReason)
        m_error = Pa_GetErrorText(err);
    if (stream)
        Pa_CloseStream(stream);
    stream = nullptr;
    return false;
}

void PortAudioDevice::CloseStreams()
{
    QuietAudioLibraries quiet;
    for (PaStream** stream : {&m_stream, &m_inputStream}) {
        if (!*stream)
            continue;
        Pa_StopStream(*stream);
        Pa_CloseStream(*stream);
        *stream = nullptr;
    }
}

double PortAudioDevice::CapturedAt(double cpuNow, double streamNow, double adcTime, int frames) const
{
    const double age = streamNow - adcTime;
    if (adcTime > 0 && age >= 0 && age < DacClock::kMaxLatency)
        return cpuNow - age;
    return cpuNow - m_inputLatency - double(frames) / m_sampleRate;
}

int PortAudioDevice::Widen(const float* input, int frames) noexcept
{
    const int n = std::min(frames, kMaxBufferFrames);
    for (int i = 0; i < n; ++i) {
        const float left = input[i * m_inputChannels];
        m_inputStereo[size_t(2 * i)] = left;
        m_inputStereo[size_t(2 * i + 1)] = m_inputChannels > 1 ? input[i * m_inputChannels + 1] : left;
    }
    return n;
}

void PortAudioDevice::RenderBuffer(const float* input, float* output, int frames, double streamNow, double dacTime,
                                   double adcTime) noexcept
{
    const double cpuNow = SteadySeconds();
    BufferTiming timing{m_clock->HeardAt(cpuNow, streamNow, dacTime, frames)};
    if (input && frames <= kMaxBufferFrames) {
        Widen(input, frames);
        timing.input = m_inputStereo.data();
        timing.capturedAt = CapturedAt(cpuNow, streamNow, adcTime, frames);
    } else if (m_inputStream && frames <= kMaxBufferFrames) {
        // The input stream runs on its own clock: take what it has, silence for what it lacks.
        const size_t first = m_inputRing.TotalRead();
        const size_t got = m_inputRing.Read(m_ringInput.data(), size_t(frames) * 2);
        std::fill(m_ringInput.begin() + std::ptrdiff_t(got), m_ringInput.begin() + std::ptrdiff_t(frames) * 2, 0.0f);
        timing.input = m_ringInput.data();
        const CaptureBlock block = m_ringBlock.Read().value_or(CaptureBlock{});
        const auto framesAfterBlock = double(std::ptrdiff_t(first) - std::ptrdiff_t(block.start)) / 2;
        timing.capturedAt = block.at + framesAfterBlock / m_sampleRate;
    }
    m_renderer->Render(output, frames, timing);
}

void PortAudioDevice::TakeInputBuffer(const float* input, int frames, double streamNow, double adcTime) noexcept
{
    if (!input)
        return;
    const int n = Widen(input, frames);
    m_ringBlock.Publish({m_inputRing.TotalWritten(), CapturedAt(SteadySeconds(), streamNow, adcTime, frames)});
    m_inputRing.Write(m_inputStereo.data(), size_t(n) * 2);
}

std::unique_ptr<AudioDevice> CreateOutputDevice(int deviceIndex)
{
    if (NullDeviceChosen())
        return std::make_unique<NullDevice>();
    return std::make_unique<PortAudioDevice>(deviceIndex);
}
