#pragma once
// Takes out what is mixed in the centre of a stereo song, the singer's voice as a rule, between
// about 120 Hz and 8 kHz: bass, highs and everything panned stay. Each block of the song is taken
// apart into frequencies (a short-time Fourier transform, 1024 frames, a quarter overlapping),
// and each frequency is turned down by how alike it is in both sides, in level and in phase.
// The sound comes out kDelayFrames late whether the reduction is on or off, so switching it
// neither gaps nor jumps; on and off fade over a few blocks. Nothing is allocated once it is
// made.

#include <cstddef>
#include <vector>

struct AVTXContext;

class VocalReducer {
public:
    static constexpr int kWindow = 1024;
    static constexpr int kHop = kWindow / 4;
    static constexpr int kDelayFrames = kWindow;
    static constexpr double kLowestHz = 120;
    static constexpr double kHighestHz = 8000;

    explicit VocalReducer(int sampleRate);
    ~VocalReducer();
    VocalReducer(const VocalReducer&) = delete;
    VocalReducer& operator=(const VocalReducer&) = delete;

    void SetOn(bool on) { m_on = on; }
    bool On() const { return m_on; }
    // Empties what it holds, as after a seek: the next frames come out kDelayFrames late again,
    // and reduced from the first if it is on.
    void Reset();
    // Interleaved stereo in place.
    void Process(float* interleaved, int frames);

private:
    struct Complex {
        float re, im;
    };
    void EndOfHop();
    void ReduceFrame();

    const int m_sampleRate;
    bool m_on = false;
    float m_amount = 0;   // 0 untouched to 1 fully reduced, moving a step per block
    int m_filled = 0;     // frames of the current block taken in
    int m_warmBlocks = 0; // blocks transformed since the transform started; its output is whole
                          // once the window has been covered
    int m_sinceReduced = kWindow / kHop;  // blocks transformed since the last one reduced
    std::vector<float> m_window;
    std::vector<Complex> m_input;   // the last kWindow frames, left as real and right as imaginary
    std::vector<Complex> m_sum;     // the overlapping output being added up
    std::vector<Complex> m_ready;   // the block going out now
    std::vector<Complex> m_frame, m_spectrum;
    AVTXContext* m_forward = nullptr;
    AVTXContext* m_inverse = nullptr;
    using Transform = void (*)(AVTXContext*, void*, void*, std::ptrdiff_t);
    Transform m_forwardFn = nullptr;
    Transform m_inverseFn = nullptr;
};
