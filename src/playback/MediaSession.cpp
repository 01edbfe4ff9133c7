#include "playback/MediaSession.h"

#include "audio/AudioEngine.h"
#include "audio/FileSource.h"

#include <QFile>
#include <cmath>

MediaSession::MediaSession(AudioEngine& engine) : m_engine(engine) {}

MediaSession::~MediaSession()
{
    if (m_source)
        m_engine.RemoveSource(m_source.get());
}

bool MediaSession::RenderFile(const QString& path)
{
    std::string error;
    auto source = FileSource::Open(QFile::encodeName(path).toStdString(), m_engine.SampleRate(), error);
    if (!source) {
        m_error = QString::fromStdString(error);
        return false;
    }
    source->SetRate(m_rate);
    if (m_semitones != 0 || m_tempo != 1)
        source->SetSound(m_semitones, m_tempo);
    if (m_vocalsOff && !source->SetVocalsOff(true))
        m_vocalsOff = false;
    source->Volume = m_volume;
    source->Balance = m_balance;
    if (!m_engine.AddSource(source)) {
        m_error = QStringLiteral("too many sounds at once");
        return false;
    }
    if (m_source)
        m_engine.RemoveSource(m_source.get());
    m_source = std::move(source);
    return true;
}

void MediaSession::Run()
{
    if (m_source)
        m_source->Run();
}

void MediaSession::Pause()
{
    if (m_source)
        m_source->Pause();
}

void MediaSession::Stop()
{
    if (m_source)
        m_source->Stop();
}

int MediaSession::GetState() const
{
    return m_source ? m_source->GetState() : FileSource::Stopped;
}

double MediaSession::get_Duration() const
{
    return m_source ? m_source->Duration() : 0;
}

double MediaSession::get_CurrentPosition() const
{
    return m_source ? m_source->Position(m_engine.Now()) : 0;
}

void MediaSession::put_CurrentPosition(double seconds)
{
    if (m_source)
        m_source->Seek(seconds);
}

void MediaSession::put_Rate(double rate)
{
    m_rate = rate;
    if (m_source)
        m_source->SetRate(rate);
}

void MediaSession::SetSound(int semitones, double tempo)
{
    m_semitones = semitones;
    m_tempo = tempo;
    if (m_source)
        m_source->SetSound(semitones, tempo);
}

bool MediaSession::SetVocalsOff(bool off)
{
    if (m_source && !m_source->SetVocalsOff(off))
        return false;
    m_vocalsOff = off;
    return true;
}

void MediaSession::put_Volume(int hundredthsDb)
{
    m_volume = std::clamp(hundredthsDb, -10000, 0);
    if (m_source)
        m_source->Volume = m_volume;
}

void MediaSession::put_Balance(int hundredthsDb)
{
    m_balance = std::clamp(hundredthsDb, -10000, 10000);
    if (m_source)
        m_source->Balance = m_balance;
}

int16_t VolumeOfSlider(double value)
{
    const double level = value > 0.2 ? -(1 - value) * 1.2 * 3000 : -(10000 - value * 5 * 7000);
    return static_cast<int16_t>(std::lround(level));
}

int ReopenedVolume(double sliderValue, bool muted)
{
    return muted ? -10000 : int(std::lround(sliderValue * 7000 - 7000));
}

double MediaSession::SecondsBuffered() const
{
    return m_source ? m_source->SecondsBuffered() : 0;
}

bool MediaSession::ReadyFor(double seconds) const
{
    return !m_source || m_source->ReadyFor(seconds);
}
