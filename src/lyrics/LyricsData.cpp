#include "lyrics/LyricsData.h"

#include "lyrics/TagLyrics.h"

#include <QFontMetrics>
#include <algorithm>
#include <limits>

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
    header.LineTimed = false;
}

namespace {

QString JoinTitle(const QString& artist, const QString& title)
{
    if (title.isEmpty())
        return artist;
    return artist.isEmpty() ? title : artist + u'|' + title;
}

} // namespace

QString MakeLyricsTitle(const LyricsState& lyrics, const SongTags* tags)
{
    const LyricItem& header = lyrics.PlayLyrics[0];
    QString result = JoinTitle(header.Artist, header.Title);
    if (result.isEmpty() && tags)
        result = JoinTitle(tags->Artist(), tags->Title());
    if (result.isEmpty() && tags)
        result = tags->BaseName();
    return result;
}

QString FindLongestLine(const std::vector<LyricItem>& lyrics, const QFont& font)
{
    if (lyrics.size() < 2)
        return {};
    const QFontMetrics metrics(font);
    QString longest;
    int16_t widest = 0;
    for (size_t i = 1; i < lyrics.size(); ++i) {
        // The syllables of one line share its text: it is measured once.
        if (i > 1 && lyrics[i].LineText.isSharedWith(lyrics[i - 1].LineText))
            continue;
        const int width = std::min(metrics.horizontalAdvance(lyrics[i].LineText),
                                   int(std::numeric_limits<int16_t>::max()));
        if (width > widest) {
            widest = static_cast<int16_t>(width);
            longest = lyrics[i].LineText;
        }
    }
    return longest;
}

void BuildPictureOrder(LyricsState& lyrics)
{
    const size_t n = lyrics.PlayPictures.size() - 1;
    auto& order = lyrics.PictureTimes;
    order.assign(n + 1, PictureOrder{});
    for (size_t i = 1; i <= n; ++i) {
        const int32_t time = lyrics.PlayPictures[i].Time;
        order[i].Time = time < 1 ? -1 : time;
        order[i].Index = static_cast<int16_t>(i);
    }
    // The plain exchange sort: equal times keep no promised order.
    for (size_t i = 1; i <= n; ++i)
        for (size_t j = 1; j <= n; ++j)
            if (order[i].Time < order[j].Time)
                std::swap(order[i], order[j]);
}
