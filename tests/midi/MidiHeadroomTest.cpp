// A loud MIDI song at the top of the volume slider, as the player starts: every channel at full
// volume and expression, full-velocity chords. It is played loud, and never clips.

#include "midi/MidiBuilder.h"
#include "midi/MidiRender.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

QByteArray LoudSong()
{
    std::vector<TrackBuilder> tracks{TrackBuilder().Tempo(0, 500000).End()};
    const int programs[] = {0, 16, 24, 29, 30, 33, 48, 56, 61, 62, 80, 81, 87, 90, 91};
    int channel = 0;
    for (const int program : programs) {
        if (channel == 9)
            ++channel;
        TrackBuilder track;
        track.Event(0, {0xC0 | channel, program}).Event(0, {0xB0 | channel, 7, 127}).Event(0, {0xB0 | channel, 11, 127});
        for (const int key : {48, 55, 60, 64})
            track.Event(0, {0x90 | channel, key, 127});
        track.Event(480 * 4, {0x80 | channel, 48, 0});
        for (const int key : {55, 60, 64})
            track.Event(0, {0x80 | channel, key, 0});
        tracks.push_back(track.End());
        ++channel;
    }
    TrackBuilder drums;
    for (int beat = 0; beat < 8; ++beat)
        drums.Event(beat == 0 ? 0 : 240, {0x99, 36, 127}).Event(0, {0x99, 49, 127}).Event(0, {0x99, 38, 127});
    tracks.push_back(drums.End(240));
    return MidiFileOf(tracks, 480);
}

} // namespace

TEST(MidiHeadroom, ALoudSongAtTheTopOfTheSliderIsLoudAndNeverClips)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("loud.mid");
    WriteFileBytes(path, LoudSong());
    MidiRenderOptions options;
    options.seconds = 2.5;
    const MidiRendering rendering = RenderMidiSong(path, options);
    ASSERT_TRUE(rendering.error.isEmpty()) << rendering.error.toStdString();
    ASSERT_GT(rendering.frames.size(), 44100u * 2);

    const auto clipped = std::count_if(rendering.frames.begin(), rendering.frames.end(),
                                       [](float s) { return std::fabs(s) >= 0.999f; });
    float peak = 0;
    for (const float s : rendering.frames)
        peak = std::max(peak, std::fabs(s));
    EXPECT_EQ(clipped, 0) << "peak " << peak;
    EXPECT_LE(peak, 0.9f) << "a decibel of headroom";
    EXPECT_GE(peak, 0.7f) << "still loud: the slider's top is for loud singing";
}
