#include "playback/SongRender.h"

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "midi/MidiRender.h"
#include "playback/MediaSession.h"
#include "tags/MP3Class.h"

#include <chrono>
#include <cmath>
#include <memory>
#include <thread>

namespace {

constexpr int kBufferFrames = 512;
// A decoder that gives nothing for this long has stopped: the rendering ends with a message.
constexpr auto kDecoderPatience = std::chrono::seconds(10);

bool IsMidiSong(const QString& path)
{
    MP3Class song(false);
    song.SetFilename(path);
    song.ReadFile();
    return song.format() == u"MIDI";
}

SongRendering RenderMidi(const QString& path, const SongRenderOptions& options)
{
    if (options.semitones % 2 != 0)
        return {{}, QStringLiteral("a MIDI song moves by whole tones: --key takes an even number")};
    if (options.vocalsOff)
        return {{}, QStringLiteral("only a stereo audio song can lose its vocals")};
    MidiRenderOptions midi;
    midi.soundFont = options.soundFont;
    midi.sampleRate = options.sampleRate;
    midi.from = options.from;
    midi.seconds = options.seconds;
    midi.semitones = options.semitones;
    midi.tempo = options.tempo;
    const MidiRendering rendering = RenderMidiSong(path, midi);
    return {rendering.frames, rendering.error};
}

SongRendering RenderAudio(const QString& path, const SongRenderOptions& options)
{
    SongRendering result;
    auto device = std::make_unique<ManualDevice>(options.sampleRate);
    ManualDevice& clock = *device;
    AudioEngine engine(std::move(device));
    engine.Start();
    MediaSession session(engine);
    if (!session.RenderFile(path))
        return {{}, session.ErrorText()};
    session.SetSound(options.semitones, options.tempo);
    if (options.vocalsOff && !session.SetVocalsOff(true))
        return {{}, QStringLiteral("only a stereo audio song can lose its vocals")};
    if (options.from > 0)
        session.put_CurrentPosition(options.from);
    session.Run();

    const double stepSeconds = double(kBufferFrames) / options.sampleRate;
    const double limit = options.seconds > 0 ? options.seconds : (session.get_Duration() - options.from) / options.tempo;
    const auto wanted = size_t(std::llround(std::max(limit, 0.0) * options.sampleRate)) * 2;
    while (result.frames.size() < wanted && session.get_CurrentPosition() < session.get_Duration()) {
        // Each buffer once the decoder has it, as a sound card would find it.
        const auto deadline = std::chrono::steady_clock::now() + kDecoderPatience;
        while (!session.ReadyFor(stepSeconds)) {
            if (std::chrono::steady_clock::now() > deadline)
                return {{}, QStringLiteral("the song stopped decoding")};
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        const std::vector<float>& out = clock.Step(kBufferFrames, kBufferFrames);
        result.frames.insert(result.frames.end(), out.begin(), out.end());
    }
    result.frames.resize(std::min(result.frames.size(), wanted));
    return result;
}

} // namespace

SongRendering RenderSong(const QString& path, const SongRenderOptions& options)
{
    return IsMidiSong(path) ? RenderMidi(path, options) : RenderAudio(path, options);
}
