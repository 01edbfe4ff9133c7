// LRC: "[mm:ss.xx]" tags before a line (several repeat it), header tags, and in enhanced LRC
// "<mm:ss.xx>" tags before each word.

#include "formats/LineBuilder.h"
#include "formats/TimedLyrics.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace {

const QRegularExpression kTime(QStringLiteral("^\\s*(\\d{1,6}):(\\d{1,2})(?:[.:](\\d{1,3}))?\\s*$"));
const QRegularExpression kWordTag(QStringLiteral("<(\\d{1,6}:\\d{1,2}(?:[.:]\\d{1,3})?)>"));

// Seconds of "mm:ss", "mm:ss.x", "mm:ss.xx", "mm:ss.xxx" (a ":" before the fraction as well);
// minutes may pass 59.
std::optional<double> ParseTime(const QString& tag)
{
    const QRegularExpressionMatch m = kTime.match(tag);
    if (!m.hasMatch())
        return std::nullopt;
    const QString fraction = m.captured(3);
    const double parts = fraction.isEmpty() ? 0 : fraction.toDouble() / std::pow(10.0, fraction.size());
    return m.captured(1).toDouble() * 60 + m.captured(2).toDouble() + parts;
}

struct TimedLine {
    double time = 0;
    double shift = 0;  // a repeated line's word tags move with it
    QString body;
};

struct Header {
    QString artist, title;
    double offsetSeconds = 0;
};

// The tags at the line's start: times, or header tags; the rest is the line's body.
void ReadLine(const QString& line, std::vector<TimedLine>& lines, Header& header)
{
    std::vector<double> times;
    qsizetype at = 0;
    while (at < line.size() && line[at] == u'[') {
        const qsizetype close = line.indexOf(u']', at);
        if (close < 0)
            break;
        const QString tag = line.mid(at + 1, close - at - 1);
        at = close + 1;
        if (const auto time = ParseTime(tag)) {
            times.push_back(*time);
            continue;
        }
        const qsizetype colon = tag.indexOf(u':');
        const QString key = tag.left(colon).trimmed().toLower();
        const QString value = tag.mid(colon + 1).trimmed();
        if (key == u"ar")
            header.artist = value;
        else if (key == u"ti")
            header.title = value;
        else if (key == u"offset")
            header.offsetSeconds = value.toDouble() / 1000;
    }
    const QString body = line.mid(at);
    if (body.trimmed().isEmpty())
        return;
    for (const double time : times)
        lines.push_back({time, time - times.front(), body});
}

// A line's words: what stands before the first word tag at the line's time, then each tag's.
void AddWords(LineBuilder& builder, const TimedLine& line, double offset)
{
    qsizetype at = 0;
    double time = line.time;
    for (QRegularExpressionMatchIterator it = kWordTag.globalMatch(line.body); it.hasNext();) {
        const QRegularExpressionMatch tag = it.next();
        const QString text = line.body.mid(at, tag.capturedStart() - at);
        if (!text.trimmed().isEmpty())
            builder.Add(time - offset, text);
        time = ParseTime(tag.captured(1)).value_or(time) + line.shift;
        at = tag.capturedEnd();
    }
    const QString rest = line.body.mid(at);
    if (!rest.trimmed().isEmpty())
        builder.Add(time - offset, rest);
    builder.EndLine();
}

} // namespace

std::optional<TimedLyrics> ReadLrc(const QString& text)
{
    std::vector<TimedLine> lines;
    Header header;
    for (const QString& line : TextLines(text))
        ReadLine(line.trimmed(), lines, header);
    std::stable_sort(lines.begin(), lines.end(), [](const TimedLine& a, const TimedLine& b) { return a.time < b.time; });

    bool enhanced = false;
    LineBuilder builder;
    for (const TimedLine& line : lines) {
        enhanced = enhanced || kWordTag.match(line.body).hasMatch();
        AddWords(builder, line, header.offsetSeconds);
    }
    TimedLyrics lyrics;
    lyrics.items[0].Artist = header.artist;
    lyrics.items[0].Title = header.title;
    return builder.Finish(std::move(lyrics), enhanced ? QStringLiteral("LRC (enhanced)") : QStringLiteral("LRC"),
                          !enhanced);
}

QString LrcTime(double seconds)
{
    const long long hundredths = std::llround(std::max(seconds, 0.0) * 100);
    return QStringLiteral("%1:%2.%3")
        .arg(hundredths / 6000, 2, 10, QLatin1Char('0'))
        .arg(hundredths / 100 % 60, 2, 10, QLatin1Char('0'))
        .arg(hundredths % 100, 2, 10, QLatin1Char('0'));
}

QString WriteLrc(const std::vector<LyricItem>& lyrics, bool enhanced)
{
    QString out;
    if (!lyrics.empty() && !lyrics[0].Artist.isEmpty())
        out += QStringLiteral("[ar:%1]\r\n").arg(lyrics[0].Artist);
    if (!lyrics.empty() && !lyrics[0].Title.isEmpty())
        out += QStringLiteral("[ti:%1]\r\n").arg(lyrics[0].Title);
    bool lineStart = true;
    for (size_t i = 1; i < lyrics.size(); ++i) {
        const LyricItem& syllable = lyrics[i];
        if (lineStart)
            out += u'[' + LrcTime(syllable.Time) + u']' + (enhanced ? QString() : syllable.LineText.trimmed());
        if (enhanced)
            out += u'<' + LrcTime(syllable.Time) + u'>' + syllable.Text;
        lineStart = syllable.LineEnd || i + 1 == lyrics.size();
        // A line's last syllable closes with its end where a held tap measured it.
        if (enhanced && lineStart && syllable.Length > 0)
            out += u'<' + LrcTime(syllable.Time + syllable.Length) + u'>';
        if (lineStart)
            out += QStringLiteral("\r\n");
    }
    return out;
}
