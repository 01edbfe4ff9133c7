#pragma once
// The print settings, kept between runs in the settings group "PRT": the fonts and colours of
// the lyrics and the title, whether the title prints, and the alignment by its word.

#include <QFont>
#include <QString>
#include <cstdint>

class SettingsStore;

struct PrintSettings {
    int32_t BackColor = 0xFFFFFF;
    int32_t LyricColor = 0;
    int32_t TitleColor = 0;
    QString LyricsFontName = QStringLiteral("Arial");
    int16_t LyricsFontSize = 12;
    bool LyricsFontBold = false;
    bool LyricsFontItalic = false;
    bool LyricsFontUnderline = false;
    int32_t LyricsFontCharset = 238;
    QString TitleFontName = QStringLiteral("Arial");
    int16_t TitleFontSize = 16;
    bool TitleFontBold = true;
    bool TitleFontItalic = false;
    bool TitleFontUnderline = false;
    int32_t TitleFontCharset = 238;
    bool PrintTitle = true;
    QString Alignment = QStringLiteral("Center");  // "Left", "Center" or "Right"

    // A value missing from the store keeps its default.
    static PrintSettings Load(const SettingsStore& store);
    void Save(SettingsStore& store) const;

    QFont LyricsFont() const;
    QFont TitleFont() const;
    void SetLyricsFont(const QFont& font);
    void SetTitleFont(const QFont& font);
};
