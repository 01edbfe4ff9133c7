#include "editor/LyricsDetails.h"

#include "core/ThemeClass.h"
#include "lyrics/LyricTime.h"

#include <cmath>

namespace {

std::array<int32_t*, kDetailsColors> HeaderColors(LyricItem& h)
{
    return {&h.ForeColor, &h.HighlightColor, &h.OutlineColor1, &h.OutlineColor2,
            &h.OutlineColor3, &h.OutlineColor4, &h.BackColor};
}

} // namespace

std::array<int32_t, kDetailsColors> SettingColors(const ThemeClass& theme)
{
    return {theme.LyricsColor,         theme.LyricsHighlightColor, theme.LyricsOutlineColor1, theme.LyricsOutlineColor2,
            theme.LyricsOutlineColor3, theme.LyricsOutlineColor4,  theme.LyricsBackColor};
}

DetailsChoice DetailsOf(const LyricItem& header, const std::vector<PictureItem>& pictures, const ThemeClass& theme)
{
    DetailsChoice c;
    c.Artist = header.Artist;
    c.Title = header.Title;
    c.Picture = header.Picture;
    LyricItem copy = header;
    const auto fields = HeaderColors(copy);
    const auto settings = SettingColors(theme);
    for (int i = 0; i < kDetailsColors; ++i)
        c.Colors[size_t(i)] = *fields[size_t(i)] == -1 ? settings[size_t(i)] : *fields[size_t(i)];
    c.Alignment = header.Alignment;
    c.Layout = header.Layout;
    c.ImageLayout = header.ImageLayout;
    c.ImagePosition = header.ImagePosition;
    c.ImageCustomX = header.ImageCustomX;
    c.ImageCustomY = header.ImageCustomY;
    c.ImageOffsetX = header.ImageOffsetX;
    c.ImageOffsetY = header.ImageOffsetY;
    c.Pictures = pictures.empty() ? std::vector<PictureItem>(1) : pictures;
    return c;
}

void AcceptDetails(const DetailsChoice& choice, const ThemeClass& theme, LyricItem& header,
                   std::vector<PictureItem>& pictures)
{
    const auto fields = HeaderColors(header);
    const auto settings = SettingColors(theme);
    for (int i = 0; i < kDetailsColors; ++i) {
        const int32_t chosen = choice.Colors[size_t(i)];
        *fields[size_t(i)] = chosen == settings[size_t(i)] ? -1 : chosen;
    }
    if (choice.Alignment >= 0 && choice.Alignment <= 2)
        header.Alignment = choice.Alignment;
    if (choice.Layout >= 0 && choice.Layout <= 2)
        header.Layout = choice.Layout;
    header.Picture = choice.Picture;
    header.Artist = choice.Artist;
    header.Title = choice.Title;
    header.ImageLayout = choice.ImageLayout;
    header.ImagePosition = choice.ImagePosition;
    header.ImageCustomX = choice.ImageCustomX;
    header.ImageCustomY = choice.ImageCustomY;
    header.ImageOffsetX = choice.ImageOffsetX;
    header.ImageOffsetY = choice.ImageOffsetY;
    pictures = choice.Pictures.empty() ? std::vector<PictureItem>(1) : choice.Pictures;
}

void ClearDetails(DetailsChoice& choice, const ThemeClass& theme)
{
    choice.Artist.clear();
    choice.Title.clear();
    choice.Picture.clear();
    choice.Pictures.assign(1, PictureItem{});
    choice.Colors = SettingColors(theme);
}

void DefaultImagePlacing(DetailsChoice& choice, const ThemeClass& theme)
{
    choice.ImageLayout = theme.ImageSize;
    choice.ImagePosition = theme.ImageAlign;
    choice.ImageCustomX = theme.ImageSizeX;
    choice.ImageCustomY = theme.ImageSizeY;
    choice.ImageOffsetX = theme.ImageOffsetX;
    choice.ImageOffsetY = theme.ImageOffsetY;
}

QString PictureTimeText(int32_t seconds)
{
    const int32_t minutes = seconds / 60;
    return QStringLiteral("%1:%2").arg(minutes, 2, 10, QLatin1Char('0')).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

int KeptAspect(int before, int after, int otherBefore)
{
    if (before <= 0)
        return otherBefore;
    return int(std::lround(double(otherBefore) * after / before));
}

void ShowPicturesOnDisplay(LyricsState& lyrics, const QString& songFolder)
{
    lyrics.PlayPictures = lyrics.EditPictures.empty() ? std::vector<PictureItem>(1) : lyrics.EditPictures;
    for (size_t i = 1; i < lyrics.PlayPictures.size(); ++i)
        lyrics.PlayPictures[i].File = ResolvePicturePath(songFolder, lyrics.PlayPictures[i].File);
    QString& picture = lyrics.PlayLyrics[0].Picture;
    if (!picture.isEmpty())
        picture = ResolvePicturePath(songFolder, picture);
}
