#include "audio/CaptureWriter.h"

#include "audio/AudioEngine.h"
#include "audio/PcmConversion.h"
#include "audio/WavFile.h"

#include <chrono>

namespace {

constexpr size_t kBlockFrames = 4096;
constexpr auto kWriterPause = std::chrono::milliseconds(20);

} // namespace

CaptureWriter::CaptureWriter() : m_block(kBlockFrames * 2) {}

CaptureWriter::~CaptureWriter()
{
    if (Running())
        Finish();
}

bool CaptureWriter::Begin(const QString& path, int rate, int channels)
{
    m_rate = rate;
    m_channels = channels;
    m_dataBytes = 0;
    m_failed = false;
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray header = WavHeader(rate, channels, 16, 0);
    return m_file.write(header) == header.size() && m_file.flush();
}

void CaptureWriter::Start(AudioEngine& engine)
{
    m_engine = &engine;
    m_converter = std::make_unique<PcmConverter>(engine.SampleRate(), m_rate, m_channels);
    engine.ArmCapture();
    m_stop = false;
    m_thread = std::thread([this] { WriteLoop(); });
}

void CaptureWriter::WriteLoop()
{
    while (!m_stop.load()) {
        if (!Drain())
            std::this_thread::sleep_for(kWriterPause);
    }
}

bool CaptureWriter::Drain()
{
    const size_t got = m_engine->CaptureRing().Read(m_block.data(), m_block.size());
    if (got == 0)
        return false;
    const QByteArray pcm = m_converter->Convert(m_block.data(), int(got / 2));
    if (m_file.write(pcm) != pcm.size())
        m_failed = true;
    m_dataBytes += pcm.size();
    return true;
}

bool CaptureWriter::Finish()
{
    if (m_engine) {
        m_engine->DisarmCapture();
        m_stop = true;
        if (m_thread.joinable())
            m_thread.join();
        while (Drain()) {
        }
        const QByteArray rest = m_converter->Convert(nullptr, 0);
        m_failed = m_failed || m_file.write(rest) != rest.size();
        m_dataBytes += rest.size();
        m_engine = nullptr;
    }
    if (!m_file.isOpen())
        return false;
    const QByteArray header = WavHeader(m_rate, m_channels, 16, quint32(m_dataBytes.load()));
    const bool written = m_file.seek(0) && m_file.write(header) == header.size();
    m_file.close();
    return written && !m_failed && m_file.error() == QFile::NoError;
}
