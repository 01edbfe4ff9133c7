#include "audio/NullDevice.h"

#include "audio/PcmConversion.h"

#include <QFile>
#include <QString>
#include <algorithm>
#include <chrono>

double SteadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

NullDevice::NullDevice(int sampleRate, int framesPerBuffer)
    : m_sampleRate(sampleRate),
      m_framesPerBuffer(framesPerBuffer),
      m_buffer(size_t(framesPerBuffer) * 2),
      m_input(size_t(framesPerBuffer) * 2)
{
}

NullDevice::~NullDevice()
{
    Stop();
}

bool NullDevice::Start(AudioRenderer& renderer)
{
    Stop();
    m_running = true;
    m_thread = std::thread([this, &renderer] { Pace(renderer); });
    return true;
}

void NullDevice::Stop()
{
    m_running = false;
    if (m_thread.joinable())
        m_thread.join();
}

bool NullDevice::StartInput(int)
{
    if (m_inputRunning)
        return true;
    m_loop.clear();
    m_loopRead = 0;
    const QString wav = qEnvironmentVariable("SONGWEAVER_CAPTURE_WAV");
    if (!wav.isEmpty()) {
        std::string error;
        m_loop = DecodeWholeFile(QFile::encodeName(wav).toStdString(), m_sampleRate, 2, error);
        if (m_loop.empty()) {
            m_error = "cannot read the capture file " + wav.toStdString() + ": " + error;
            return false;
        }
    }
    m_inputRunning = true;
    return true;
}

void NullDevice::StopInput()
{
    m_inputRunning = false;
    // The pacing thread marks itself busy before it reads the flag (both sequentially
    // consistent), so once it is not busy it no longer reads the loop.
    while (m_inputBusy.load())
        std::this_thread::yield();
}

const float* NullDevice::NextInput() noexcept
{
    if (!m_inputRunning.load())
        return nullptr;
    if (m_loop.empty()) {
        std::fill(m_input.begin(), m_input.end(), 0.0f);
        return m_input.data();
    }
    for (float& sample : m_input) {
        sample = m_loop[m_loopRead];
        m_loopRead = (m_loopRead + 1) % m_loop.size();
    }
    return m_input.data();
}

void NullDevice::Pace(AudioRenderer& renderer)
{
    using Clock = std::chrono::steady_clock;
    const double period = double(m_framesPerBuffer) / m_sampleRate;
    const double start = SteadySeconds();
    m_firstHeardAt = start + period;
    for (long long k = 0; m_running; ++k) {
        const double due = start + k * period;
        std::this_thread::sleep_until(Clock::time_point(std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(due))));
        m_inputBusy = true;
        renderer.Render(m_buffer.data(), m_framesPerBuffer, BufferTiming{due + period, NextInput(), due - period});
        m_inputBusy = false;
    }
}
