#pragma once
// An output device as the engine sees it: it calls the renderer from its own real-time thread
// with the time at which the buffer's first frame will reach the listener.

#include <memory>
#include <string>

struct BufferTiming {
    // Seconds on the device's clock (AudioDevice::Now) at which frame 0 of the buffer is heard.
    double heardAt = 0;
    // While the input runs: as many interleaved stereo frames of the microphone as the buffer
    // has, and the device-clock second at which the first of them reached the converter.
    const float* input = nullptr;
    double capturedAt = 0;
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

    // The capture side, beside the running output: input device 1 and up of InputDeviceNames(),
    // anything else the default. False (and Error()) when the device cannot record.
    virtual bool StartInput(int inputDeviceIndex) = 0;
    virtual void StopInput() = 0;
    virtual bool InputRunning() const = 0;
    // Seconds from the air to the input buffer and from the output buffer to the air, as the
    // device reports them.
    virtual double InputLatency() const { return 0; }
    virtual double OutputLatency() const { return 0; }
    // True when input and output run in one stream, on one clock.
    virtual bool Duplex() const { return false; }
};

// Seconds of the process's steady clock, the clock of every real device.
double SteadySeconds();

// The output the program plays on: the null device when SONGWEAVER_AUDIO=null or the user chose
// it, else PortAudio on the device named by the "audio device" setting's index (default device
// for 0 or an index past the list).
std::unique_ptr<AudioDevice> CreateOutputDevice(int deviceIndex);
