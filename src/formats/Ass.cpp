// ASS and SSA subtitles: the events' Dialogue lines, syllables timed by \k, \kf, \K and \ko tags
// in centiseconds; other override tags go; a line without karaoke tags is a whole line.

#include "formats/LineBuilder.h"
#include "formats/TimedLyrics.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace {

const QRegularExpression kAssTime(QStringLiteral("^\\s*(\\d{1,3}):(\\d{1,2}):(\\d{1,2})(?:[.:](\\d{1,3}))?\\s*$"));
const QRegularExpression kKaraokeTag(QStringLiteral("\\\\(?:kf|ko|k|K)(\\d{1,6})"));
const QRegularExpression kOverride(QStringLiteral("\\{[^}]*\\}"));

std::optional<double> AssSeconds(const QString& text)
{
    const QRegularExpressionMatch m = kAssTime.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    const QString fraction = m.captured(4);
    return m.captured(1).toDouble() * 3600 + m.captured(2).toDouble() * 60 + m.captured(3).toDouble() +
           (fraction.isEmpty() ? 0 : fraction.toDouble() / std::pow(10.0, fraction.size()));
}

// Text as it shows: hard breaks as blanks, other escapes gone.
QString Shown(QString text)
{
    return text.replace(QStringLiteral("\\N"), QStringLiteral(" "))
        .replace(QStringLiteral("\\n"), QStringLiteral(" "))
        .replace(QStringLiteral("\\h"), QStringLiteral(" "));
}

// One Dialogue line's text from `start`: its syllables, each lasting its \k tag's centiseconds,
// or the whole line.
void AddDialogue(LineBuilder& builder, const QString& text, double start, bool& syllableTimed)
{
    if (!kKaraokeTag.match(text).hasMatch()) {
        const QString line = Shown(QString(text).remove(kOverride)).simplified();
        if (!line.isEmpty())
            builder.Add(start, line);
        builder.EndLine();
        return;
    }
    syllableTimed = true;
    struct Syllable {
        double time;
        QString text;
    };
    std::vector<Syllable> syllables;
    double time = start, duration = 0;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype close = text[at] == u'{' ? text.indexOf(u'}', at) : -1;
        if (close > at) {
            const QString block = text.mid(at, close - at + 1);
            if (kKaraokeTag.match(block).hasMatch()) {
                time += duration;
                duration = 0;
                for (QRegularExpressionMatchIterator it = kKaraokeTag.globalMatch(block); it.hasNext();)
                    duration += it.next().captured(1).toDouble() / 100;
            }
            at = close + 1;
            continue;
        }
        const qsizetype next = text.indexOf(u'{', at + 1);
        const QString piece = Shown(text.mid(at, (next < 0 ? text.size() : next) - at));
        // Blanks between two syllables end the word before them.
        if (piece.trimmed().isEmpty() && !syllables.empty())
            syllables.back().text += piece;
        else if (!piece.trimmed().isEmpty())
            syllables.push_back({time, piece});
        at = next < 0 ? text.size() : next;
    }
    for (const Syllable& syllable : syllables)
        builder.Add(syllable.time, syllable.text);
    builder.EndLine();
}

// "0:01:02.34" for ASS.
QString AssTime(double seconds)
{
    const long long cs = std::llround(std::max(seconds, 0.0) * 100);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(cs / 360000)
        .arg(cs / 6000 % 60, 2, 10, QLatin1Char('0'))
        .arg(cs / 100 % 60, 2, 10, QLatin1Char('0'))
        .arg(cs % 100, 2, 10, QLatin1Char('0'));
}

// A Win32 colour number (0x00BBGGRR) is ASS's own order; -1 takes the fallback.
QString AssColour(int32_t colour, int32_t fallback)
{
    return QStringLiteral("&H00%1").arg(uint32_t(colour < 0 ? fallback : colour) & 0xFFFFFF, 6, 16, QLatin1Char('0')).toUpper();
}

} // namespace

std::optional<TimedLyrics> ReadAss(const QString& text)
{
    LineBuilder builder;
    bool inEvents = false;
    bool syllableTimed = false;
    QStringList format = {QStringLiteral("Layer"), QStringLiteral("Start"), QStringLiteral("End"), QStringLiteral("Style"),
                          QStringLiteral("Name"),  QStringLiteral("MarginL"), QStringLiteral("MarginR"),
                          QStringLiteral("MarginV"), QStringLiteral("Effect"), QStringLiteral("Text")};
    struct Event {
        double start;
        QString text;
    };
    std::vector<Event> events;
    for (const QString& raw : TextLines(text)) {
        const QString line = raw.trimmed();
        if (line.startsWith(u'[')) {
            inEvents = line.compare(QStringLiteral("[Events]"), Qt::CaseInsensitive) == 0;
            continue;
        }
        if (!inEvents)
            continue;
        if (line.startsWith(QStringLiteral("Format:"), Qt::CaseInsensitive)) {
            format = line.mid(7).split(u',');
            for (QString& field : format)
                field = field.trimmed();
            continue;
        }
        if (!line.startsWith(QStringLiteral("Dialogue:"), Qt::CaseInsensitive))
            continue;
        // The text is the last field and may hold commas.
        const QStringList fields = line.mid(9).split(u',');
        const qsizetype startField = format.indexOf(QStringLiteral("Start"));
        const qsizetype textField = format.indexOf(QStringLiteral("Text"));
        if (startField < 0 || textField < 0 || fields.size() <= textField || textField != format.size() - 1)
            continue;
        const auto start = AssSeconds(fields[startField]);
        if (start)
            events.push_back({*start, fields.mid(textField).join(u',')});
    }
    std::stable_sort(events.begin(), events.end(), [](const Event& a, const Event& b) { return a.start < b.start; });
    for (const Event& event : events)
        AddDialogue(builder, event.text, event.start, syllableTimed);
    return builder.Finish(TimedLyrics{}, QStringLiteral("ASS"), !syllableTimed);
}

QString WriteAss(const std::vector<LyricItem>& lyrics, const QString& fontFamily, int fontSize)
{
    // A line shows from a little before its first syllable to the next line, at most a while
    // after its last.
    constexpr double kLead = 0.5;
    constexpr double kLastSyllable = 1.5;
    const LyricItem header = lyrics.empty() ? LyricItem{} : lyrics[0];
    QString out = QStringLiteral("[Script Info]\r\nScriptType: v4.00+\r\nTitle: %1\r\nPlayResX: 1280\r\nPlayResY: 720\r\n"
                                 "WrapStyle: 0\r\nScaledBorderAndShadow: yes\r\n\r\n[V4+ Styles]\r\n"
                                 "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, "
                                 "BackColour, Bold, Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, "
                                 "BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, Encoding\r\n")
                      .arg(header.Title);
    // Sung syllables take the primary colour, the ones still to come the secondary.
    out += QStringLiteral("Style: Karaoke,%1,%2,%3,%4,%5,&H80000000,-1,0,0,0,100,100,0,0,1,3,0,2,40,40,60,1\r\n\r\n")
               .arg(fontFamily.isEmpty() ? QStringLiteral("Arial") : fontFamily)
               .arg(std::max(fontSize, 8))
               .arg(AssColour(header.HighlightColor, 0x00FFFF), AssColour(header.ForeColor, 0xFFFFFF),
                    AssColour(header.OutlineColor1, 0x000000));
    out += QStringLiteral("[Events]\r\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\r\n");
    size_t first = 1;
    for (size_t i = 1; i < lyrics.size(); ++i) {
        if (!lyrics[i].LineEnd && i + 1 < lyrics.size())
            continue;
        const double nextLine = i + 1 < lyrics.size() ? lyrics[i + 1].Time : lyrics[i].Time + kLastSyllable;
        const double end = std::min(nextLine, lyrics[i].Time + kLastSyllable);
        const double start = std::max(0.0, lyrics[first].Time - kLead);
        QString line = QStringLiteral("{\\k%1}").arg(std::llround((lyrics[first].Time - start) * 100));
        for (size_t s = first; s <= i; ++s) {
            const double until = s < i ? lyrics[s + 1].Time : end;
            line += QStringLiteral("{\\k%1}%2").arg(std::max(0LL, std::llround((until - lyrics[s].Time) * 100))).arg(lyrics[s].Text);
        }
        out += QStringLiteral("Dialogue: 0,%1,%2,Karaoke,,0,0,0,,%3\r\n").arg(AssTime(start), AssTime(std::max(end, start)), line);
        first = i + 1;
    }
    return out;
}
