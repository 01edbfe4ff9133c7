#include "lyrics/LyricsData.h"

void ResetLyricsData(LyricsState& lyrics)
{
    lyrics.PlayPictures.resize(1);
    lyrics.PlayLyrics.resize(1);
    lyrics.LyricsTitleText.clear();

    LyricItem& header = lyrics.PlayLyrics[0];
    header.Picture.clear();
    header.ForeColor = -1;
    header.HighlightColor = -1;
    header.OutlineColor1 = -1;
    header.OutlineColor2 = -1;
    header.OutlineColor3 = -1;
    header.OutlineColor4 = -1;
    header.BackColor = -1;
    header.Alignment = -1;
    header.Layout = -1;
    header.FormatName.clear();
}
