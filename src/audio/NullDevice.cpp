#include "audio/NullDevice.h"

#include <chrono>

double SteadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

NullDevice::NullDevice(int sampleRate, int framesPerBuffer)
    : m_sampleRate(sampleRate), m_framesPerBuffer(framesPerBuffer), m_buffer(size_t(framesPerBuffer) * 2)
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
        renderer.Render(m_buffer.data(), m_framesPerBuffer, BufferTiming{due + period});
    }
}
