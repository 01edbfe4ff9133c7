#include "audio/ManualDevice.h"

#include <algorithm>

const std::vector<float>& ManualDevice::Step(int frames, int bufferFrames)
{
    m_output.assign(size_t(frames) * 2, 0.0f);
    for (int done = 0; done < frames && m_renderer;) {
        const int n = std::min(bufferFrames, frames - done);
        m_renderer->Render(m_output.data() + size_t(done) * 2, n, BufferTiming{Now()});
        m_frames += n;
        done += n;
    }
    return m_output;
}
