#include "lyrics/LyricTime.h"

#include "core/Numbers.h"

#include <cmath>

double ParseLyricTime(const QString& text)
{
    const double minutes = NumericValue(text.left(2));
    const double seconds = NumericValue(text.mid(3, 2));
    const double whole = minutes * 60 + seconds;

    qsizetype mark = text.lastIndexOf(u',');
    if (mark < 0)
        mark = text.lastIndexOf(u'.');
    if (mark < 0)
        return whole;
    return NumericValue(QString::number(whole, 'f', 0) + u'.' + text.mid(mark + 1));
}

namespace {

QString Padded(qint64 value, int width)
{
    return QStringLiteral("%1").arg(value, width, 10, QLatin1Char('0'));
}

// The milliseconds as the fraction text of the given number of digits.
QString FractionText(qint64 milliseconds, int digits)
{
    if (digits >= 3)
        return Padded(milliseconds, 3);
    const double scaled = std::round(milliseconds / std::pow(10.0, 3 - digits));
    return Padded(static_cast<qint64>(scaled), digits).left(digits);
}

} // namespace

QString FormatLyricTime(double seconds, int digits, bool showMinutes)
{
    const bool negative = seconds < 0;
    const qint64 totalMilliseconds = std::llround(std::fabs(seconds) * 1000);
    const qint64 whole = totalMilliseconds / 1000;

    QString text = Padded(whole % 60, 2) + u',' + FractionText(totalMilliseconds % 1000, digits);
    if (showMinutes)
        text.prepend(Padded(whole / 60, 2) + u':');
    else if (text.endsWith(QLatin1String("00,000")))
        return QStringLiteral("00,000");
    if (negative)
        text.prepend(QLatin1String("- "));
    return text;
}

QString FormatBlockTime(double seconds, const QString& decimalMark)
{
    QString text = QString::number(std::round(seconds * 1000) / 1000, 'f', 3);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    return text.replace(u'.', decimalMark);
}

QString ResolvePicturePath(const QString& baseFolder, const QString& name)
{
    if (name.indexOf(u':') >= 1 || name.startsWith(u'/'))
        return name;
    QString relative = name;
    relative.replace(u'\\', u'/');
    return baseFolder.endsWith(u'/') ? baseFolder + relative : baseFolder + u'/' + relative;
}
