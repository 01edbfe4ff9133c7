#pragma once
// A recording on its way to disk: a writer thread empties the engine's capture ring every few
// milliseconds, converts the microphone to 16-bit PCM of the recording's rate and channels and
// appends it to a WAV file, whose sizes are written when the recording ends.

#include <QFile>
#include <QString>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

class AudioEngine;
class PcmConverter;

class CaptureWriter {
public:
    CaptureWriter();
    ~CaptureWriter();
    CaptureWriter(const CaptureWriter&) = delete;
    CaptureWriter& operator=(const CaptureWriter&) = delete;

    // Creates the file with the header of an empty recording; false when it cannot be made.
    bool Begin(const QString& path, int rate, int channels);
    // Arms the engine's capture and starts the writer.
    void Start(AudioEngine& engine);
    // Ends the capture, writes what is left and the sizes, closes the file; false when a write
    // failed on the way.
    bool Finish();
    bool Running() const { return m_thread.joinable(); }
    // Bytes of samples written so far (writer thread's count).

private:
    void WriteLoop();
    // Moves what the ring holds to the file; false when nothing was waiting.
    bool Drain();

    AudioEngine* m_engine = nullptr;
    QFile m_file;
    std::unique_ptr<PcmConverter> m_converter;
    std::vector<float> m_block;
    int m_rate = 0;
    int m_channels = 0;
    std::thread m_thread;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_failed{false};
    std::atomic<qint64> m_dataBytes{0};
};
