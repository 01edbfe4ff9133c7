#pragma once
// A MIDI song on the engine: the second kind of song session. The file is read by the event
// parser into the synthesiser's sequencer; its length, tempo figures and channel table come
// from the readers of the old program, so lyrics and clock stay on the scale they always had.

#include "audio/SongSession.h"
#include "midi/MidiBytes.h"

#include <memory>
#include <string>

class AudioEngine;
class SynthSource;

// The synthesiser of the last MIDI song, kept with its SoundFont for the next one: loading a
// SoundFont takes tens of milliseconds for the default one and about a second for a large one.
class SynthKeeper {
public:
    // A synthesiser with that SoundFont (empty: the default) at that rate: the kept one when it
    // has them, else a new one; nullptr and a message when the SoundFont cannot be loaded.
    std::shared_ptr<SynthSource> Take(const std::string& soundFont, int sampleRate, std::string& error);
    // A synthesiser no engine holds any more.
    void Keep(std::shared_ptr<SynthSource> synth, const std::string& soundFont, int sampleRate);

private:
    std::shared_ptr<SynthSource> m_synth;
    std::string m_soundFont;
    int m_sampleRate = 0;
};

class MidiPlayer final : public SongSession {
public:
    // `figures` outlive the player: the next song keeps what this one leaves where it has none;
    // so does `keeper`, when there is one, with the synthesiser.
    MidiPlayer(AudioEngine& engine, MidiFigures& figures, std::string soundFont = {}, SynthKeeper* keeper = nullptr);
    ~MidiPlayer() override;

    // OpenMusic: measures the song, reads its figures and channels, and loads it, stopped at 0.
    bool RenderFile(const QString& path) override;
    QString ErrorText() const override { return m_error; }
    bool KindUnavailable() const override { return m_noSynth; }

    // PlayMidi: from where the song stands (10 units back from the very end), then SetChannels.
    void Run() override;
    // PauseMidi.
    void Pause() override;
    // StopMidi: back to 0, ready.
    void Stop() override;
    int GetState() const override { return m_state; }

    // GetMidiDuration.
    double get_Duration() const override;
    // MidiTime: the heard tick's share of the song's ticks, times its duration.
    double get_CurrentPosition() const override;
    // SetMidiPosition with the share of the duration.
    void put_CurrentPosition(double seconds) override;
    // The master tempo: 1 the song's own, 2 twice as fast.
    double get_Rate() const override { return m_rate; }
    void put_Rate(double rate) override;
    void put_Volume(int hundredthsDb) override;
    int get_Volume() const override { return m_volume; }
    void put_Balance(int hundredthsDb) override;

    // SetMidiPosition(Fraction): the share of the song to go on from, in the state it was in.
    void SetMidiPosition(double fraction);
    // Moved faders and the whole-song balance are sent again after every start; transpose and
    // the strips' balance are not.
    void SetChannels();
    // Semitones for the melodic channels.
    void SetTranspose(int semitones);
    // A channel strip's volume (controller 7), kept for SetChannels, and its balance (controller 10).
    void SetChannelVolume(int channel, int value);
    void SetChannelBalance(int channel, int value);
    void SetChannelMute(int channel, bool muted);
    // The whole-song balance: one pan for all 16 channels.
    void SetSongPan(int pan);
    bool SongLoaded() const { return m_synth != nullptr; }

private:
    // The song's synthesiser leaves the engine, for the keeper when there is one.
    void ReleaseSynth();
    uint64_t EndTick() const;
    void SendSongPan();

    AudioEngine& m_engine;
    MidiFigures& m_figures;
    std::string m_soundFont;
    SynthKeeper* m_keeper;
    std::shared_ptr<SynthSource> m_synth;
    QString m_error;
    bool m_noSynth = false;
    int m_state = Stopped;
    double m_rate = 1.0;
    int m_volume = 0;
    int m_balance = 0;
    int m_songPan = -1;  // none until the whole-song balance is turned
};

// The song of a parsed MIDI file for the sequencer: its channel events and tempo changes in
// tick order.
struct MidiFile;
struct SynthSong;
SynthSong SynthSongOf(const MidiFile& file);
