#include "lyrics/TagLyrics.h"

#include "lyrics/LyricTime.h"
#include "core/Numbers.h"

#include <QFont>
#include <QStringList>

namespace {

const QString kPictureSeparator = QStringLiteral("||||");

PictureItem TagPicture(const QString& line)
{
    PictureItem picture;
    const qsizetype separator = line.indexOf(kPictureSeparator);
    if (separator < 0) {
        picture.File = line;
        return picture;
    }
    picture.File = line.left(separator);
    const qsizetype open = line.indexOf(u'[');
    const qsizetype close = line.indexOf(u']');
    if (open >= 0 && close > 0)
        picture.Time = ToInt32(NumericValue(line.mid(open + 1, close - open - 1)));
    return picture;
}

} // namespace

void AppendTagLines(std::vector<LyricItem>& lyrics, const QString& text)
{
    for (const QString& line : text.split(QStringLiteral("\r\n"))) {
        const qsizetype close = line.indexOf(u']');
        if (!line.startsWith(u'[') || close < 0)
            continue;
        LyricItem item;
        item.Time = ParseLyricTime(line.mid(1, close - 1));
        item.Text = line.mid(close + 1);
        item.LineText = item.Text;
        item.LineEnd = true;
        lyrics.push_back(std::move(item));
    }
}

void ImportTagLyrics(LyricsState& lyrics, const TagLyrics& tag, const QFont& font, const LyricsRefit& refit)
{
    lyrics.PlayPictures.resize(1);
    LyricItem& header = lyrics.PlayLyrics[0];
    header.Artist = tag.LyricsArtist;
    header.Title = tag.LyricsTitle;
    header.Picture.clear();

    for (const QString& line : tag.LyricsPicture.split(QStringLiteral("\r\n")))
        if (!line.isEmpty())
            lyrics.PlayPictures.push_back(TagPicture(line));
    const size_t first = lyrics.PlayLyrics.size();
    AppendTagLines(lyrics.PlayLyrics, tag.Lyrics);
    if (lyrics.PlayLyrics.size() > first)
        lyrics.PlayLyrics.back().LineEnd = false;

    BuildPictureOrder(lyrics);
    lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, font);
    if (refit)
        refit();
}
