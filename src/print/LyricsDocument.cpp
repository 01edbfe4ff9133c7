#include "print/LyricsDocument.h"

#include "core/Shell.h"
#include "core/TextCodec.h"
#include "lyrics/LyricsData.h"
#include "lyrics/LyricsLoader.h"
#include "print/PrintSettings.h"

#include <QFile>
#include <QSaveFile>

namespace {

const QString kLineEnd = QStringLiteral("\r\n");

QString Paragraph(const QString& alignment)
{
    if (alignment == u"Center")
        return QStringLiteral("<P align=center>");
    if (alignment == u"Right")
        return QStringLiteral("<P align=right>");
    return QStringLiteral("<P align=left>");
}

struct BlockStyle {
    QString fontName;
    int size;
    int32_t colour;
    bool bold;
    bool italic;
    bool underline;
};

// The paragraph, the span with the font, the colour and the opening flags.
QString OpenBlock(const BlockStyle& style, const QString& alignment)
{
    QString text = Paragraph(alignment) + kLineEnd;
    text += QStringLiteral("<span style=\"font-family:%1,Arial,Tahoma,Geneva; font-size: %2pt;\">")
                .arg(style.fontName)
                .arg(style.size);
    text += QStringLiteral("<FONT color=") + HexColor(style.colour) + QStringLiteral(">");
    if (style.bold)
        text += QStringLiteral("<b>");
    if (style.italic)
        text += QStringLiteral("<i>");
    if (style.underline)
        text += QStringLiteral("<u>");
    return text + kLineEnd;
}

// The flags close in the order they opened, as the page always had them.
QString CloseBlock(const BlockStyle& style)
{
    QString text;
    if (style.bold)
        text += QStringLiteral("</b>");
    if (style.italic)
        text += QStringLiteral("</i>");
    if (style.underline)
        text += QStringLiteral("</u>");
    return text + QStringLiteral("</span></P><BR>");
}

// Every line once: the line text of each syllable that ends a line, and of the last syllable.
QStringList PrintedLines(const std::vector<LyricItem>& lyrics)
{
    QStringList lines;
    for (size_t i = 1; i + 1 < lyrics.size(); ++i)
        if (lyrics[i].LineEnd)
            lines << lyrics[i].LineText;
    if (lyrics.size() > 1)
        lines << lyrics.back().LineText;
    return lines;
}

} // namespace

QString HexColor(int32_t colour)
{
    const QString h = QString::number(uint32_t(colour), 16).toUpper();
    switch (h.size()) {
    case 1: return QStringLiteral("#") + h + QStringLiteral("00000");
    case 2: return QStringLiteral("#") + h + QStringLiteral("0000");
    case 4: return QStringLiteral("#") + h.right(2) + h.left(2) + QStringLiteral("00");
    case 6: return QStringLiteral("#") + h.right(2) + h.mid(2, 2) + h.left(2);
    default: return h;
    }
}

QString BuildDocument(const std::vector<LyricItem>& lyrics, const PrintSettings& settings)
{
    QString html;
    for (const char* line : {"<html>", "<head>", "<title>Songweaver</title>",
                             "<META content=\"text/html; charset=windows-1250\" http-equiv=Content-Type></HEAD>",
                             "<BODY bgColor=#FFFFFF text=#00>"})
        html += QLatin1String(line) + kLineEnd;

    const LyricItem header = lyrics.empty() ? LyricItem{} : lyrics.front();
    if (settings.PrintTitle && (!header.Title.isEmpty() || !header.Artist.isEmpty())) {
        const BlockStyle title{settings.TitleFontName,  settings.TitleFontSize,   settings.TitleColor,
                               settings.TitleFontBold,  settings.TitleFontItalic, settings.TitleFontUnderline};
        html += OpenBlock(title, settings.Alignment);
        if (!header.Title.isEmpty())
            html += header.Title + QStringLiteral("<BR>") + kLineEnd;
        if (!header.Artist.isEmpty())
            html += header.Artist + QStringLiteral("<BR>") + kLineEnd;
        html += CloseBlock(title) + kLineEnd;
    }

    const BlockStyle text{settings.LyricsFontName, settings.LyricsFontSize,   settings.LyricColor,
                          settings.LyricsFontBold, settings.LyricsFontItalic, settings.LyricsFontUnderline};
    html += OpenBlock(text, settings.Alignment);
    for (const QString& line : PrintedLines(lyrics))
        html += line + QStringLiteral("<br>") + kLineEnd;
    html += CloseBlock(text) + QStringLiteral("</BODY></HTML>");
    return html;
}

QByteArray DocumentBytes(const QString& html)
{
    return EncodeWindows1250(html);
}

bool WriteDocumentFile(const QString& path, const QString& html)
{
    QSaveFile file(path);
    const QByteArray bytes = DocumentBytes(html);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

std::optional<QString> WriteDocument(const QString& name, const QString& html)
{
    const QString path = GetTempFolder() + name + QStringLiteral(".htm");
    if (!WriteDocumentFile(path, html))
        return std::nullopt;
    return path;
}

QString ReadDocument(const QString& path)
{
    return DecodeWindows1250(ReadWholeFile(path));
}
