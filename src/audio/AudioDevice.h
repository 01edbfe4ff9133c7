#pragma once
// An output device as the engine sees it: it calls the renderer from its own real-time thread
// with the time at which the buffer's first frame will reach the listener.

#include <memory>
#include <string>

struct BufferTiming {
    // Seconds on the device's clock (AudioDevice::Now) at which frame 0 of the buffer is heard.
    double heardAt = 0;
};

// What a device calls for every buffer. Real-time: no locks, no allocation, no I/O.
class AudioRenderer {
public:
    virtual ~AudioRenderer() = default;
    // Writes `frames` interleaved stereo float frames.
    virtual void Render(float* out, int frames, const BufferTiming& timing) noexcept = 0;
};

class AudioDevice {
public:
    virtual ~AudioDevice() = default;
    // Starts calling the renderer; false with Error() set when the device cannot run.
    virtual bool Start(AudioRenderer& renderer) = 0;
    virtual void Stop() = 0;
    virtual int SampleRate() const = 0;
    // The clock that BufferTiming::heardAt is measured on, in seconds.
    virtual double Now() const = 0;
    virtual std::string Name() const = 0;
    virtual std::string Error() const { return {}; }
};

// Seconds of the process's steady clock, the clock of every real device.
double SteadySeconds();

// The output the program plays on: the null device when SONGWEAVER_AUDIO=null or the user chose
// it, else PortAudio on the device named by the "audio device" setting's index (default device
// for 0 or an index past the list).
std::unique_ptr<AudioDevice> CreateOutputDevice(int deviceIndex);
