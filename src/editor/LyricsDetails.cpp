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
    c.Header = header;
    const auto fields = HeaderColors(c.Header);
    const auto settings = SettingColors(theme);
    for (int i = 0; i < kDetailsColors; ++i)
        c.Colors[size_t(i)] = *fields[size_t(i)] == -1 ? settings[size_t(i)] : *fields[size_t(i)];
    c.Pictures = pictures.empty() ? std::vector<PictureItem>(1) : pictures;
    return c;
}

void AcceptDetails(const DetailsChoice& choice, const ThemeClass& theme, LyricItem& header,
                   std::vector<PictureItem>& pictures)
{
    const int16_t alignment = header.Alignment;
    const int16_t layout = header.Layout;
    header = choice.Header;
    const auto fields = HeaderColors(header);
    const auto settings = SettingColors(theme);
    for (int i = 0; i < kDetailsColors; ++i) {
        const int32_t chosen = choice.Colors[size_t(i)];
        *fields[size_t(i)] = chosen == settings[size_t(i)] ? -1 : chosen;
    }
    if (header.Alignment < 0 || header.Alignment > 2)
        header.Alignment = alignment;
    if (header.Layout < 0 || header.Layout > 2)
        header.Layout = layout;
    pictures = choice.Pictures.empty() ? std::vector<PictureItem>(1) : choice.Pictures;
}

void ClearDetails(DetailsChoice& choice, const ThemeClass& theme)
{
    choice.Header.Artist.clear();
    choice.Header.Title.clear();
    choice.Header.Picture.clear();
    choice.Pictures.assign(1, PictureItem{});
    choice.Colors = SettingColors(theme);
}

void DefaultImagePlacing(DetailsChoice& choice, const ThemeClass& theme)
{
    LyricItem& h = choice.Header;
    h.ImageLayout = theme.ImageSize;
    h.ImagePosition = theme.ImageAlign;
    h.ImageCustomX = theme.ImageSizeX;
    h.ImageCustomY = theme.ImageSizeY;
    h.ImageOffsetX = theme.ImageOffsetX;
    h.ImageOffsetY = theme.ImageOffsetY;
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
