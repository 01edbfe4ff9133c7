#include "audio/TimeStretch.h"

#include <rubberband/RubberBandStretcher.h>

#include <algorithm>
#include <cmath>

namespace {

using RubberBand::RubberBandStretcher;

RubberBandStretcher::Options OptionsOf(TimeStretch::Engine engine)
{
    // Formants kept, so that a voice moved in key still sounds like a voice; the pitch method that
    // stays smooth while the key knob turns; one thread, the worker's own.
    return RubberBandStretcher::OptionProcessRealTime | RubberBandStretcher::OptionThreadingNever |
           RubberBandStretcher::OptionFormantPreserved | RubberBandStretcher::OptionPitchHighConsistency |
           (engine == TimeStretch::Engine::Finer ? RubberBandStretcher::OptionEngineFiner
                                                 : RubberBandStretcher::OptionEngineFaster);
}

double Clamped(double value, double low, double high, double fallback)
{
    return std::isfinite(value) ? std::clamp(value, low, high) : fallback;
}

} // namespace

TimeStretch::TimeStretch(int sampleRate, Engine engine)
    : m_stretcher(std::make_unique<RubberBandStretcher>(size_t(std::max(sampleRate, 1)), 2, OptionsOf(engine))),
      m_left(kBlockFrames), m_right(kBlockFrames)
{
    m_stretcher->setMaxProcessSize(kBlockFrames);
    Restart(0);
}

TimeStretch::~TimeStretch() = default;

void TimeStretch::SetTempo(double tempo)
{
    m_tempo = Clamped(tempo, kSlowest, kFastest, m_tempo);
    m_stretcher->setTimeRatio(1 / m_tempo);
}

void TimeStretch::SetSemitones(double semitones)
{
    m_semitones = Clamped(semitones, -kSemitoneRange, kSemitoneRange, m_semitones);
    m_stretcher->setPitchScale(std::pow(2.0, m_semitones / 12));
}

void TimeStretch::Restart(int64_t songFrame)
{
    m_stretcher->reset();
    m_stretcher->setTimeRatio(1 / m_tempo);
    m_stretcher->setPitchScale(std::pow(2.0, m_semitones / 12));
    // Silence ahead of the song, and as much dropped from the start of what comes out, line the
    // first frame up with the song's.
    std::fill(m_left.begin(), m_left.end(), 0.0f);
    std::fill(m_right.begin(), m_right.end(), 0.0f);
    for (size_t pad = m_stretcher->getPreferredStartPad(); pad > 0;) {
        const size_t block = std::min(pad, size_t(kBlockFrames));
        const float* channels[] = {m_left.data(), m_right.data()};
        m_stretcher->process(channels, block, false);
        pad -= block;
    }
    m_startDelay = int64_t(m_stretcher->getStartDelay());
    m_songFrame = double(songFrame);
    m_songEnd = double(songFrame);
    m_finished = false;
}

int TimeStretch::FramesWanted() const
{
    return int(std::clamp<size_t>(m_stretcher->getSamplesRequired(), 1, kBlockFrames));
}

void TimeStretch::Push(const float* frames, int count)
{
    while (count > 0) {
        const int block = std::min(count, kBlockFrames);
        for (int i = 0; i < block; ++i) {
            m_left[size_t(i)] = frames[2 * i];
            m_right[size_t(i)] = frames[2 * i + 1];
        }
        const float* channels[] = {m_left.data(), m_right.data()};
        m_stretcher->process(channels, size_t(block), false);
        frames += 2 * block;
        count -= block;
        m_songEnd += block;
    }
}

void TimeStretch::Finish()
{
    // The finer engine holds back the song's last frames until it has looked past them: silence
    // after the end lets them out, and Pull stops at the song's end.
    std::fill(m_left.begin(), m_left.end(), 0.0f);
    std::fill(m_right.begin(), m_right.end(), 0.0f);
    const float* channels[] = {m_left.data(), m_right.data()};
    // Its look-ahead and its delay: what it still holds of the song comes out before the end.
    for (size_t pad = m_stretcher->getPreferredStartPad() + m_stretcher->getStartDelay(); pad > 0;) {
        const size_t block = std::min(pad, size_t(kBlockFrames));
        m_stretcher->process(channels, block, false);
        pad -= block;
    }
    m_stretcher->process(channels, 0, true);
    m_finished = true;
}

void TimeStretch::DropStartDelay()
{
    while (m_startDelay > 0) {
        const int ready = m_stretcher->available();
        if (ready <= 0)
            return;
        const size_t block = size_t(std::min<int64_t>({m_startDelay, ready, kBlockFrames}));
        float* channels[] = {m_left.data(), m_right.data()};
        m_startDelay -= int64_t(m_stretcher->retrieve(channels, block));
    }
}

int TimeStretch::Pull(float* out, int count)
{
    DropStartDelay();
    if (m_startDelay > 0)
        return 0;
    if (m_finished)
        count = std::min(count, int(std::max(0.0, std::ceil((m_songEnd - m_songFrame) / m_tempo))));
    int given = 0;
    while (given < count) {
        const int ready = m_stretcher->available();
        if (ready <= 0)
            break;
        const size_t block = size_t(std::min({count - given, ready, kBlockFrames}));
        float* channels[] = {m_left.data(), m_right.data()};
        const size_t got = m_stretcher->retrieve(channels, block);
        for (size_t i = 0; i < got; ++i) {
            out[2 * (size_t(given) + i)] = m_left[i];
            out[2 * (size_t(given) + i) + 1] = m_right[i];
        }
        given += int(got);
        if (got == 0)
            break;
    }
    m_songFrame += given * m_tempo;
    return given;
}
