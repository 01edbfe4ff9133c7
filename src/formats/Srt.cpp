// SRT: numbered cues, "hh:mm:ss,mmm --> hh:mm:ss,mmm", then the cue's text; each cue a line.

#include "formats/LineBuilder.h"
#include "formats/TimedLyrics.h"

#include <QRegularExpression>
#include <cmath>

namespace {

const QRegularExpression kCueTimes(
    QStringLiteral("^\\s*(\\d{1,4}):(\\d{1,2}):(\\d{1,2})[,.](\\d{1,3})\\s*-->\\s*(\\d{1,4}):(\\d{1,2}):(\\d{1,2})[,.](\\d{1,3})"));
const QRegularExpression kMarkup(QStringLiteral("<[^>]*>|\\{\\\\[^}]*\\}"));

double CueSeconds(const QRegularExpressionMatch& m, int first)
{
    const QString millis = m.captured(first + 3);
    return m.captured(first).toDouble() * 3600 + m.captured(first + 1).toDouble() * 60 + m.captured(first + 2).toDouble() +
           millis.toDouble() / std::pow(10.0, millis.size());
}

QString SrtTime(double seconds)
{
    const long long ms = std::llround(std::max(seconds, 0.0) * 1000);
    return QStringLiteral("%1:%2:%3,%4")
        .arg(ms / 3600000, 2, 10, QLatin1Char('0'))
        .arg(ms / 60000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms % 1000, 3, 10, QLatin1Char('0'));
}

} // namespace

std::optional<TimedLyrics> ReadSrt(const QString& text)
{
    LineBuilder builder;
    std::optional<double> cueStart;
    QStringList cueText;
    const auto endCue = [&] {
        const QString line = cueText.join(u' ').remove(kMarkup).simplified();
        if (cueStart && !line.isEmpty()) {
            builder.Add(*cueStart, line);
            builder.EndLine();
        }
        cueStart.reset();
        cueText.clear();
    };
    for (const QString& line : TextLines(text)) {
        const QRegularExpressionMatch times = kCueTimes.match(line);
        if (times.hasMatch()) {
            endCue();
            cueStart = CueSeconds(times, 1);
        } else if (line.trimmed().isEmpty()) {
            endCue();
        } else if (cueStart) {
            cueText << line.trimmed();
        }
    }
    endCue();
    return builder.Finish(TimedLyrics{}, QStringLiteral("SRT"), true);
}

QString WriteSrt(const std::vector<LyricItem>& lyrics)
{
    // Each line lasts to the next one's start; the last, and a line before a long pause, four seconds.
    constexpr double kLongestCue = 4;
    std::vector<const LyricItem*> starts;
    for (size_t i = 1; i < lyrics.size(); ++i)
        if (i == 1 || lyrics[i - 1].LineEnd)
            starts.push_back(&lyrics[i]);
    QString out;
    for (size_t cue = 0; cue < starts.size(); ++cue) {
        const double start = starts[cue]->Time;
        const double end = cue + 1 < starts.size() ? std::min(starts[cue + 1]->Time, start + kLongestCue) : start + kLongestCue;
        out += QStringLiteral("%1\r\n%2 --> %3\r\n%4\r\n\r\n")
                   .arg(cue + 1)
                   .arg(SrtTime(start), SrtTime(std::max(end, start)), starts[cue]->LineText.trimmed());
    }
    return out;
}
