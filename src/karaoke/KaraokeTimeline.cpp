#include "karaoke/KaraokeTimeline.h"

KaraokeTimeline::KaraokeTimeline(LyricsState& lyrics, KaraokeSurface& surface, const SongClock& song,
                                 std::function<double()> lyricsOffset)
    : m_lyrics(lyrics), m_surface(surface), m_song(song), m_offset(std::move(lyricsOffset))
{
}

void KaraokeTimeline::IsPlaying(double& position)
{
    if (!m_surface.CanPaint())
        return;
    position = std::max(0.0, position - m_offset());

    int32_t& current = m_lyrics.CurrentLyric;
    const int32_t last = LastIndex();
    if (current == last) {
        m_surface.SetLastTimer(true);
        return;
    }
    StepPicture(position);
    if (current + 1 > last) {
        m_surface.Restore();
        return;
    }
    if (TimeOf(current + 1) <= position) {
        if (!m_song.HasSong())
            return;
        const int32_t due = FirstDueSyllable(position);
        if (due < 0)
            return;
        m_surface.SetLastTimer(false);
        m_surface.PaintPage(due, false);
        current = due;
    } else if (position < TimeOf(1)) {
        m_surface.PaintTitle();
    }
}

// The first syllable after the current one that is due, skipping times of 0 and times that run
// backwards; one tick moves one syllable, so a late tick catches up over the next ticks.
int32_t KaraokeTimeline::FirstDueSyllable(double position) const
{
    const int32_t current = m_lyrics.CurrentLyric;
    for (int32_t i = current + 1; i <= LastIndex(); ++i) {
        const double time = TimeOf(i);
        if (time >= TimeOf(current) && time < position && time != 0 && !Fading)
            return i;
    }
    return -1;
}

int16_t StartPicture(const LyricsState& lyrics)
{
    for (size_t i = 1; i < lyrics.PlayPictures.size(); ++i)
        if (lyrics.PlayPictures[i].Time == 0)
            return int16_t(i);
    return 0;
}

void KaraokeTimeline::Restart()
{
    m_lyrics.CurrentLyric = 0;
    PictureIndex = 0;
}

void KaraokeTimeline::StepPicture(double position)
{
    const auto& times = m_lyrics.PictureTimes;
    // Pictures without a second of their own (time -1) sort to the front; the start picture
    // among them is shown by ChangeLyrics, and the tick passes over them all.
    int16_t next = int16_t(PictureIndex + 1);
    while (next < int(times.size()) && times[size_t(next)].Time == -1)
        ++next;
    if (next >= int(times.size()))
        return;
    if (times[size_t(next)].Time < position) {
        PictureIndex = next;
        m_surface.ChangePic(times[size_t(next)].Index);
        m_surface.ShowPicture(times[size_t(next)].Index);
    }
}

void KaraokeTimeline::GetLastPos(bool karaokeOpen)
{
    if (!m_surface.WindowReady() || !m_song.HasSong() || m_lyrics.PlayLyrics.size() < 2)
        return;
    const double position = m_song.Position();
    const int32_t last = LastIndex();
    if (TimeOf(last) != 0 && position > TimeOf(last))
        return;

    int32_t& current = m_lyrics.CurrentLyric;
    if (position < TimeOf(1) && current == 0) {
        m_surface.DropPicture();
        ApplyPictureRule(position);
        return;
    }
    if (current != last && TimeOf(current) < position && position <= TimeOf(current + 1))
        return;

    m_surface.ClearRows();
    m_surface.DropPicture();
    ApplyPictureRule(position);
    int32_t i = 1;
    while (i <= last && TimeOf(i) <= position)
        ++i;
    const int32_t index = i - 1;
    if (index != current) {
        current = index;
        if (karaokeOpen)
            m_surface.PaintPage(index, true);
    }
}

// The latest timed picture whose second has come, else the song's start picture, else the
// default background.
void KaraokeTimeline::ApplyPictureRule(double position)
{
    const auto& times = m_lyrics.PictureTimes;
    for (size_t i = times.size() - 1; i >= 1; --i) {
        if (times[i].Time > -1 && times[i].Time <= position) {
            PictureIndex = int16_t(i);
            m_surface.ChangePic(times[i].Index);
            m_surface.SetBackground(false);
            return;
        }
    }
    PictureIndex = 0;
    if (const int16_t start = StartPicture(m_lyrics)) {
        m_surface.ChangePic(start);
        m_surface.SetBackground(false);
        return;
    }
    m_surface.SetBackground(true);
}
