#include "audio/ManualDevice.h"

#include <algorithm>

bool ManualDevice::StartInput(int)
{
    m_inputRunning = true;
    return true;
}

void ManualDevice::StopInput()
{
    m_inputRunning = false;
    m_fed.clear();
    m_fedRead = 0;
}

void ManualDevice::FeedInput(const std::vector<float>& interleaved)
{
    m_fed.erase(m_fed.begin(), m_fed.begin() + std::ptrdiff_t(m_fedRead));
    m_fedRead = 0;
    m_fed.insert(m_fed.end(), interleaved.begin(), interleaved.end());
}

const float* ManualDevice::NextInput(int frames)
{
    if (!m_inputRunning)
        return nullptr;
    m_inputBuffer.assign(size_t(frames) * 2, 0.0f);
    const size_t n = std::min(m_inputBuffer.size(), m_fed.size() - m_fedRead);
    std::copy_n(m_fed.begin() + std::ptrdiff_t(m_fedRead), n, m_inputBuffer.begin());
    m_fedRead += n;
    return m_inputBuffer.data();
}

const std::vector<float>& ManualDevice::Step(int frames, int bufferFrames)
{
    m_output.assign(size_t(frames) * 2, 0.0f);
    for (int done = 0; done < frames && m_renderer;) {
        const int n = std::min(bufferFrames, frames - done);
        const float* input = NextInput(n);
        m_renderer->Render(m_output.data() + size_t(done) * 2, n, BufferTiming{Now(), input, Now()});
        m_frames += n;
        done += n;
    }
    return m_output;
}
