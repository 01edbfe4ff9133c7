#include "midi/MidiRender.h"

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "midi/MidiBytes.h"
#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int kBufferFrames = 512;
// Nothing a karaoke file holds runs this long; a damaged length stops here.
constexpr double kLongestSong = 4 * 3600;

} // namespace

double NearestMasterTempo(double factor)
{
    return std::clamp(std::round(factor * 15), 1.0, 30.0) / 15;
}

MidiRendering RenderMidiSong(const QString& path, const MidiRenderOptions& options)
{
    MidiRendering result;
    auto device = std::make_unique<ManualDevice>(options.sampleRate);
    ManualDevice& clock = *device;
    AudioEngine engine(std::move(device));
    engine.Start();
    MidiFigures figures;
    MidiPlayer player(engine, figures, options.soundFont);
    if (!player.RenderFile(path)) {
        result.error = player.ErrorText();
        return result;
    }
    player.put_Volume(MidiVolumeOfSlider(options.slider));
    player.SetTranspose(options.semitones);
    player.put_Rate(NearestMasterTempo(options.tempo));
    for (int channel : options.mutedChannels)
        player.SetChannelMute(channel, true);
    if (options.from > 0)
        player.put_CurrentPosition(options.from);
    player.Run();

    const double limit = options.seconds > 0 ? options.seconds : kLongestSong;
    const auto wanted = size_t(std::llround(limit * options.sampleRate)) * 2;
    while (result.frames.size() < wanted && player.get_CurrentPosition() < player.get_Duration()) {
        const std::vector<float>& out = clock.Step(kBufferFrames, kBufferFrames);
        result.frames.insert(result.frames.end(), out.begin(), out.end());
    }
    result.frames.resize(std::min(result.frames.size(), wanted));
    return result;
}
