#include "print/PrintSettings.h"

#include "core/Numbers.h"
#include "core/SettingsStore.h"

#include <functional>
#include <vector>

namespace {

struct Field {
    const char* name;
    std::function<QString(const PrintSettings&)> encode;
    std::function<void(PrintSettings&, const QString&)> decode;
};

template <typename T>
Field Number(const char* name, T PrintSettings::*member)
{
    return {name, [member](const PrintSettings& s) { return QString::number(s.*member); },
            [member](PrintSettings& s, const QString& text) {
                if constexpr (sizeof(T) == 2)
                    s.*member = ToInt16(NumericValue(text));
                else
                    s.*member = ToInt32(NumericValue(text));
            }};
}

Field Flag(const char* name, bool PrintSettings::*member)
{
    return {name, [member](const PrintSettings& s) { return s.*member ? QStringLiteral("1") : QStringLiteral("0"); },
            [member](PrintSettings& s, const QString& text) { s.*member = NumericValue(text) != 0; }};
}

Field Text(const char* name, QString PrintSettings::*member)
{
    return {name, [member](const PrintSettings& s) { return s.*member; },
            [member](PrintSettings& s, const QString& text) { s.*member = text; }};
}

const std::vector<Field>& Fields()
{
    static const std::vector<Field> fields = {
        Number("BackColor", &PrintSettings::BackColor),
        Number("LyricColor", &PrintSettings::LyricColor),
        Number("TitleColor", &PrintSettings::TitleColor),
        Text("LyricsFontName", &PrintSettings::LyricsFontName),
        Number("LyricsFontSize", &PrintSettings::LyricsFontSize),
        Flag("LyricsFontBold", &PrintSettings::LyricsFontBold),
        Flag("LyricsFontItalic", &PrintSettings::LyricsFontItalic),
        Flag("LyricsFontUnderline", &PrintSettings::LyricsFontUnderline),
        Number("LyricsFontCharset", &PrintSettings::LyricsFontCharset),
        Number("TitleFontSize", &PrintSettings::TitleFontSize),
        Flag("TitleFontBold", &PrintSettings::TitleFontBold),
        Flag("TitleFontItalic", &PrintSettings::TitleFontItalic),
        Flag("TitleFontUnderline", &PrintSettings::TitleFontUnderline),
        Number("TitleFontCharset", &PrintSettings::TitleFontCharset),
        Text("TitleFontName", &PrintSettings::TitleFontName),
        Flag("PrintTitle", &PrintSettings::PrintTitle),
        Text("Alignment", &PrintSettings::Alignment),
    };
    return fields;
}

QString KeyOf(const Field& field)
{
    return QStringLiteral("PRT/") + QLatin1String(field.name);
}

QFont FontOf(const QString& name, int size, bool bold, bool italic, bool underline)
{
    QFont font(name);
    font.setPointSize(std::max(1, size));
    font.setBold(bold);
    font.setItalic(italic);
    font.setUnderline(underline);
    return font;
}

} // namespace

PrintSettings PrintSettings::Load(const SettingsStore& store)
{
    PrintSettings settings;
    for (const Field& field : Fields())
        if (const QString text = store.RegReadString(KeyOf(field)); !text.isEmpty())
            field.decode(settings, text);
    return settings;
}

void PrintSettings::Save(SettingsStore& store) const
{
    for (const Field& field : Fields())
        store.RegWriteString(KeyOf(field), field.encode(*this));
    store.Sync();
}

QFont PrintSettings::LyricsFont() const
{
    return FontOf(LyricsFontName, LyricsFontSize, LyricsFontBold, LyricsFontItalic, LyricsFontUnderline);
}

QFont PrintSettings::TitleFont() const
{
    return FontOf(TitleFontName, TitleFontSize, TitleFontBold, TitleFontItalic, TitleFontUnderline);
}

void PrintSettings::SetLyricsFont(const QFont& font)
{
    LyricsFontName = font.family();
    LyricsFontSize = int16_t(font.pointSize());
    LyricsFontBold = font.bold();
    LyricsFontItalic = font.italic();
    LyricsFontUnderline = font.underline();
}

void PrintSettings::SetTitleFont(const QFont& font)
{
    TitleFontName = font.family();
    TitleFontSize = int16_t(font.pointSize());
    TitleFontBold = font.bold();
    TitleFontItalic = font.italic();
    TitleFontUnderline = font.underline();
}
