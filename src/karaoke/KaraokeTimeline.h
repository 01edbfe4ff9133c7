#pragma once
// From the song position to the syllable being sung: the 10 ms tick and the re-synchronisation
// after a jump. The highlight moves in whole syllables; there is no wipe between two times.

#include "core/SongClock.h"
#include "lyrics/LyricsData.h"

#include <functional>

// What the timeline asks of the karaoke window.
class KaraokeSurface {
public:
    virtual ~KaraokeSurface() = default;
    // The surfaces exist and no page is being composed.
    virtual bool CanPaint() const = 0;
    virtual bool WindowReady() const = 0;
    // Composes the page of a syllable; a jump advances no row.
    virtual void PaintPage(int32_t index, bool jump) = 0;
    virtual void PaintTitle() = 0;
    virtual void Restore() = 0;
    // The timer that takes the text away once the last syllable has been reached.
    virtual void SetLastTimer(bool enabled) = 0;
    // The timed picture of a PlayPictures element, and the one shown behind the text.
    virtual void ChangePic(int16_t picture) = 0;
    virtual void ShowPicture(int16_t picture) = 0;
    virtual void DropPicture() = 0;
    virtual void SetBackground(bool useDefault) = 0;
    virtual void ClearRows() = 0;
};

// The picture a song shows from its start: its first picture at second 0; 0 when none is.
int16_t StartPicture(const LyricsState& lyrics);

class KaraokeTimeline {
public:
    KaraokeTimeline(LyricsState& lyrics, KaraokeSurface& surface, const SongClock& song,
                    std::function<double()> lyricsOffset);

    // The tick. The position comes back with the offset taken off.
    void IsPlaying(double& position);
    // Re-synchronises to the song's position after a jump.
    void GetLastPos(bool karaokeOpen);
    // New lyrics, or the display cleared: from the first syllable and no timed picture again.
    void Restart();

    // Stops the tick from starting a new syllable until the next page or new lyrics.
    bool Fading = false;
    int16_t PictureIndex = 0;

private:
    int32_t LastIndex() const { return int32_t(m_lyrics.PlayLyrics.size()) - 1; }
    double TimeOf(int32_t index) const { return m_lyrics.PlayLyrics[size_t(index)].Time; }
    void StepPicture(double position);
    int32_t FirstDueSyllable(double position) const;
    void ApplyPictureRule(double position);

    LyricsState& m_lyrics;
    KaraokeSurface& m_surface;
    const SongClock& m_song;
    std::function<double()> m_offset;
};
