#include "formats/LineBuilder.h"

#include <QRegularExpression>
#include <cmath>

QStringList TextLines(const QString& text)
{
    static const QRegularExpression lineBreaks(QStringLiteral("\r\n|\n|\r"));
    return text.split(lineBreaks);
}

void LineBuilder::Add(double time, const QString& text)
{
    LyricItem item;
    item.Time = std::isfinite(time) ? std::max(time, 0.0) : 0.0;
    item.Text = text;
    m_items.push_back(std::move(item));
}

void LineBuilder::EndLine()
{
    if (m_lineStart == m_items.size())
        return;
    QString line;
    for (size_t i = m_lineStart; i < m_items.size(); ++i)
        line += m_items[i].Text;
    for (size_t i = m_lineStart; i < m_items.size(); ++i)
        m_items[i].LineText = line;
    m_items.back().LineEnd = true;
    m_lineStart = m_items.size();
}

std::optional<TimedLyrics> LineBuilder::Finish(TimedLyrics lyrics, const QString& formatName, bool lineTimed)
{
    EndLine();
    if (m_items.empty())
        return std::nullopt;
    m_items.back().LineEnd = false;
    lyrics.items.resize(1);
    lyrics.items[0].FormatName = formatName;
    lyrics.items[0].LineTimed = lineTimed;
    lyrics.items.insert(lyrics.items.end(), m_items.begin(), m_items.end());
    return lyrics;
}
