#include "audio/VocalReducer.h"

extern "C" {
#include <libavutil/tx.h>
}

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// Blocks over which the reduction fades in or out: about 40 ms at 48 kHz.
constexpr int kFadeBlocks = 8;
constexpr int kOverlap = VocalReducer::kWindow / VocalReducer::kHop;

} // namespace

VocalReducer::VocalReducer(int sampleRate)
    : m_sampleRate(std::max(sampleRate, 1)), m_window(kWindow), m_input(kWindow), m_sum(kWindow), m_ready(kHop),
      m_frame(kWindow), m_spectrum(kWindow)
{
    // The square root of a periodic Hann window, before and after: their product overlaps to a
    // constant, so with no reduction the song comes back exactly, only late.
    for (int i = 0; i < kWindow; ++i)
        m_window[size_t(i)] = float(std::sqrt(0.5 - 0.5 * std::cos(2 * std::numbers::pi * i / kWindow)));
    const float one = 1.0f;
    av_tx_init(&m_forward, &m_forwardFn, AV_TX_FLOAT_FFT, 0, kWindow, &one, AV_TX_UNALIGNED);
    av_tx_init(&m_inverse, &m_inverseFn, AV_TX_FLOAT_FFT, 1, kWindow, &one, AV_TX_UNALIGNED);
}

VocalReducer::~VocalReducer()
{
    av_tx_uninit(&m_forward);
    av_tx_uninit(&m_inverse);
}

void VocalReducer::Reset()
{
    std::fill(m_input.begin(), m_input.end(), Complex{0, 0});
    std::fill(m_sum.begin(), m_sum.end(), Complex{0, 0});
    std::fill(m_ready.begin(), m_ready.end(), Complex{0, 0});
    m_filled = 0;
    m_warmBlocks = 0;
    // A seek lands in the song as it was heard: reduced at once, not faded in.
    m_amount = m_on ? 1 : 0;
    m_sinceReduced = kOverlap;
}

void VocalReducer::Process(float* interleaved, int frames)
{
    for (int i = 0; i < frames; ++i) {
        float& left = interleaved[2 * i];
        float& right = interleaved[2 * i + 1];
        m_input[size_t(kWindow - kHop + m_filled)] = {left, right};
        left = m_ready[size_t(m_filled)].re;
        right = m_ready[size_t(m_filled)].im;
        if (++m_filled == kHop)
            EndOfHop();
    }
}

void VocalReducer::EndOfHop()
{
    m_filled = 0;
    // After a fade out the transform runs on until no reduced block overlaps the output, so
    // that going back to the plain delay is seamless.
    const bool transforming = m_forward && m_inverse && (m_on || m_amount > 0 || m_sinceReduced < kOverlap);
    if (transforming) {
        m_sinceReduced = m_amount > 0 ? 0 : m_sinceReduced + 1;
        ReduceFrame();
        ++m_warmBlocks;
    } else {
        m_warmBlocks = 0;
        std::fill(m_sum.begin(), m_sum.end(), Complex{0, 0});
    }
    // Until the overlapping blocks cover the window, the transform's output is not whole yet:
    // the song goes out as it came in, as late.
    if (m_warmBlocks >= kOverlap) {
        std::copy(m_sum.begin(), m_sum.begin() + kHop, m_ready.begin());
        const float step = 1.0f / kFadeBlocks;
        m_amount = m_on ? std::min(1.0f, m_amount + step) : std::max(0.0f, m_amount - step);
    } else {
        std::copy(m_input.begin(), m_input.begin() + kHop, m_ready.begin());
    }
    std::copy(m_sum.begin() + kHop, m_sum.end(), m_sum.begin());
    std::fill(m_sum.end() - kHop, m_sum.end(), Complex{0, 0});
    std::copy(m_input.begin() + kHop, m_input.end(), m_input.begin());
}

void VocalReducer::ReduceFrame()
{
    for (int i = 0; i < kWindow; ++i)
        m_frame[size_t(i)] = {m_input[size_t(i)].re * m_window[size_t(i)], m_input[size_t(i)].im * m_window[size_t(i)]};
    m_forwardFn(m_forward, m_spectrum.data(), m_frame.data(), sizeof(Complex));

    // Left and right share one transform, as its real and imaginary parts; bin k and bin N - k
    // give both sides, and one real gain on both bins turns down both sides alike.
    const double hzPerBin = double(m_sampleRate) / kWindow;
    for (int k = 1; k < kWindow / 2; ++k) {
        const double hz = k * hzPerBin;
        if (hz < kLowestHz || hz > kHighestHz)
            continue;
        const Complex z = m_spectrum[size_t(k)];
        const Complex mirror = m_spectrum[size_t(kWindow - k)];
        const float lRe = 0.5f * (z.re + mirror.re), lIm = 0.5f * (z.im - mirror.im);
        const float rRe = 0.5f * (z.im + mirror.im), rIm = 0.5f * (mirror.re - z.re);
        const float power = lRe * lRe + lIm * lIm + rRe * rRe + rIm * rIm;
        if (power <= 1e-20f)
            continue;
        // 1 where both sides are the same, 0 where one is silent or they are out of phase.
        const float alike = std::clamp(2 * (lRe * rRe + lIm * rIm) / power, 0.0f, 1.0f);
        const float gain = 1 - m_amount * alike * alike * alike * alike;
        m_spectrum[size_t(k)] = {z.re * gain, z.im * gain};
        m_spectrum[size_t(kWindow - k)] = {mirror.re * gain, mirror.im * gain};
    }

    m_inverseFn(m_inverse, m_frame.data(), m_spectrum.data(), sizeof(Complex));
    // The product of the two windows overlaps to 2 at a quarter hop; the transforms scale by N.
    const float scale = 0.5f / kWindow;
    for (int i = 0; i < kWindow; ++i) {
        const float w = m_window[size_t(i)] * scale;
        m_sum[size_t(i)].re += m_frame[size_t(i)].re * w;
        m_sum[size_t(i)].im += m_frame[size_t(i)].im * w;
    }
}
