#include "midi/MidiPlayer.h"

#include "audio/AudioEngine.h"
#include "audio/SynthSource.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiFile.h"

#include <algorithm>
#include <cmath>

namespace {

// A pause at the very end goes 10 units of music time back, so Play has something left to play.
constexpr double kEndBackOff = 10;

} // namespace

SynthSong SynthSongOf(const MidiFile& file)
{
    SynthSong song;
    song.Division = file.Division;
    for (const MidiTrack& track : file.Tracks) {
        song.EndTick = std::max(song.EndTick, track.EndTick);
        for (const MidiEvent& event : track.Events) {
            if (event.Status == 0xFF && event.MetaType == 0x51 && event.Data.size() == 3)
                song.Tempos.push_back({event.Tick, BigEndianAt(event.Data, 0, 3)});
            else if (event.Status >= 0x80 && event.Status < 0xF0)
                song.Events.push_back({event.Tick, event.Status, uint8_t(ByteAt(event.Data, 0)),
                                       uint8_t(ByteAt(event.Data, 1))});
        }
    }
    auto byTick = [](const auto& a, const auto& b) { return a.Tick < b.Tick; };
    std::stable_sort(song.Events.begin(), song.Events.end(), byTick);
    std::stable_sort(song.Tempos.begin(), song.Tempos.end(), byTick);
    if (song.Tempos.empty() || song.Tempos.front().Tick > 0)
        song.Tempos.insert(song.Tempos.begin(), SynthTempo{0, 500000});
    return song;
}

std::shared_ptr<SynthSource> SynthKeeper::Take(const std::string& soundFont, int sampleRate, std::string& error)
{
    if (m_synth && m_soundFont == soundFont && m_sampleRate == sampleRate)
        return std::exchange(m_synth, nullptr);
    m_synth.reset();
    return SynthSource::Create(soundFont, sampleRate, error);
}

void SynthKeeper::Keep(std::shared_ptr<SynthSource> synth, const std::string& soundFont, int sampleRate)
{
    m_synth = std::move(synth);
    m_soundFont = soundFont;
    m_sampleRate = sampleRate;
}

MidiPlayer::MidiPlayer(AudioEngine& engine, MidiFigures& figures, std::string soundFont, SynthKeeper* keeper)
    : m_engine(engine), m_figures(figures), m_soundFont(std::move(soundFont)), m_keeper(keeper)
{
}

MidiPlayer::~MidiPlayer()
{
    ReleaseSynth();
}

void MidiPlayer::ReleaseSynth()
{
    if (!m_synth)
        return;
    m_engine.RemoveSource(m_synth.get());
    if (m_keeper)
        m_keeper->Keep(std::move(m_synth), m_soundFont, m_engine.SampleRate());
    m_synth.reset();
}

bool MidiPlayer::RenderFile(const QString& path)
{
    const auto parsed = ParseMidiFile(ReadWholeFile(path));
    if (!parsed) {
        m_error = QStringLiteral("not a MIDI file");
        return false;
    }
    ReleaseSynth();
    std::string error;
    m_synth = m_keeper ? m_keeper->Take(m_soundFont, m_engine.SampleRate(), error)
                       : SynthSource::Create(m_soundFont, m_engine.SampleRate(), error);
    if (!m_synth) {
        m_error = QStringLiteral("MIDI songs cannot be played: %1.").arg(QString::fromStdString(error));
        m_noSynth = true;
        return false;
    }
    StoreSongLength(MeasureMidiSong(*parsed), m_figures);
    m_synth->Load(SynthSongOf(*parsed));
    if (m_rate != 1.0)
        m_synth->SetTempoFactor(m_rate);
    m_synth->Volume = m_volume;
    m_synth->Balance = m_balance;
    if (!m_engine.AddSource(m_synth)) {
        m_error = QStringLiteral("the engine has no room for another song");
        m_synth.reset();
        return false;
    }
    m_state = Stopped;
    return true;
}

uint64_t MidiPlayer::EndTick() const
{
    return m_synth ? m_synth->Song().EndTick : 0;
}

void MidiPlayer::Run()
{
    if (!m_synth)
        return;
    const double tick = m_synth->TickAt(m_engine.Now());
    if (m_synth->Ended() || tick >= double(EndTick())) {
        const double backOff = kEndBackOff * m_synth->Song().Division / kMusicTimePerQuarter;
        m_synth->SeekTick(uint64_t(std::max(0.0, double(EndTick()) - backOff)));
    }
    m_synth->Run();
    m_state = Running;
    SetChannels();
}

void MidiPlayer::Pause()
{
    if (!m_synth)
        return;
    m_synth->Hold();
    m_state = Paused;
}

void MidiPlayer::Stop()
{
    if (!m_synth)
        return;
    m_synth->Hold();
    m_synth->SeekTick(0);
    m_state = Stopped;
}

double MidiPlayer::get_Duration() const
{
    return m_figures.MidiDuration;
}

double MidiPlayer::get_CurrentPosition() const
{
    if (!m_synth || EndTick() == 0)
        return 0;
    return m_synth->TickAt(m_engine.Now()) / double(EndTick()) * m_figures.MidiDuration;
}

void MidiPlayer::put_CurrentPosition(double seconds)
{
    if (m_figures.MidiDuration > 0)
        SetMidiPosition(seconds / m_figures.MidiDuration);
}

void MidiPlayer::SetMidiPosition(double fraction)
{
    if (!m_synth)
        return;
    const int kept = m_state;
    m_synth->SeekTick(uint64_t(std::clamp(fraction, 0.0, 1.0) * double(EndTick())));
    if (kept == Running)
        Run();
}

void MidiPlayer::SetChannels()
{
    for (size_t c = 0; c < m_figures.ChannelTable.size(); ++c) {
        const ChannelRecord& record = m_figures.ChannelTable[c];
        if (record.Channel != -1 && record.VolumeChanged)
            m_synth->SendController(int(c), 7, record.Volume);
    }
    // The whole-song balance is a knob of the window, not a move on one channel: it holds too.
    SendSongPan();
}

void MidiPlayer::SetTranspose(int semitones)
{
    if (m_synth)
        m_synth->SetTranspose(semitones);
}

void MidiPlayer::SetChannelVolume(int channel, int value)
{
    if (!m_synth || channel < 0 || channel > 15)
        return;
    m_synth->SendController(channel, 7, value);
    ChannelRecord& record = m_figures.ChannelTable[size_t(channel)];
    record.Volume = int16_t(value);
    record.VolumeChanged = true;
}

void MidiPlayer::SetChannelBalance(int channel, int value)
{
    if (m_synth && channel >= 0 && channel <= 15)
        m_synth->SendController(channel, 10, value);
}

void MidiPlayer::SetChannelMute(int channel, bool muted)
{
    if (m_synth)
        m_synth->SetChannelMute(channel, muted);
}

void MidiPlayer::SetSongPan(int pan)
{
    m_songPan = std::clamp(pan, 0, 127);
    SendSongPan();
}

void MidiPlayer::SendSongPan()
{
    if (!m_synth || m_songPan < 0)
        return;
    for (int channel = 0; channel < 16; ++channel)
        m_synth->SendController(channel, 10, m_songPan);
}

void MidiPlayer::put_Rate(double rate)
{
    m_rate = rate;
    if (m_synth)
        m_synth->SetTempoFactor(rate);
}

void MidiPlayer::put_Volume(int hundredthsDb)
{
    m_volume = std::clamp(hundredthsDb, -10000, kLoudestHundredthsDb);
    if (m_synth)
        m_synth->Volume = m_volume;
}

void MidiPlayer::put_Balance(int hundredthsDb)
{
    m_balance = std::clamp(hundredthsDb, -10000, 10000);
    if (m_synth)
        m_synth->Balance = m_balance;
}
