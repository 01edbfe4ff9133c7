#include "core/Numbers.h"

#include <cmath>
#include <limits>

namespace {

QString WithoutBlanks(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (QChar c : text)
        if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            out.append(c);
    return out;
}

double RadixValue(const QString& digits, int radix)
{
    double value = 0;
    for (QChar c : digits) {
        const int d = QString(c).toInt(nullptr, radix);
        if (d == 0 && c != u'0')
            break;
        value = value * radix + d;
    }
    return value;
}

template <typename T>
T RoundSaturated(double value)
{
    if (std::isnan(value))
        return 0;
    const double r = std::nearbyint(value);
    if (r <= std::numeric_limits<T>::min())
        return std::numeric_limits<T>::min();
    if (r >= std::numeric_limits<T>::max())
        return std::numeric_limits<T>::max();
    return static_cast<T>(r);
}

} // namespace

double NumericValue(const QString& text)
{
    const QString s = WithoutBlanks(text);
    if (s.startsWith(u"&H", Qt::CaseInsensitive))
        return RadixValue(s.mid(2), 16);
    if (s.startsWith(u"&O", Qt::CaseInsensitive))
        return RadixValue(s.mid(2), 8);

    qsizetype i = 0;
    const qsizetype n = s.size();
    auto digitsFrom = [&](qsizetype at) {
        while (at < n && s[at].isDigit() && s[at].unicode() < 128)
            ++at;
        return at;
    };
    if (i < n && (s[i] == u'+' || s[i] == u'-'))
        ++i;
    const qsizetype intStart = i;
    i = digitsFrom(i);
    bool anyDigit = i > intStart;
    if (i < n && s[i] == u'.') {
        const qsizetype fracStart = i + 1;
        const qsizetype fracEnd = digitsFrom(fracStart);
        anyDigit = anyDigit || fracEnd > fracStart;
        i = fracEnd;
    }
    if (!anyDigit)
        return 0;
    if (i < n && (s[i] == u'E' || s[i] == u'e' || s[i] == u'D' || s[i] == u'd')) {
        qsizetype j = i + 1;
        if (j < n && (s[j] == u'+' || s[j] == u'-'))
            ++j;
        const qsizetype expEnd = digitsFrom(j);
        if (expEnd > j)
            i = expEnd;
    }
    QString number = s.left(i);
    number.replace(u'D', u'E').replace(u'd', u'e');
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0;
}

int16_t ToInt16(double value) { return RoundSaturated<int16_t>(value); }
int32_t ToInt32(double value) { return RoundSaturated<int32_t>(value); }

QString FormatTime(double seconds)
{
    if (!(seconds > 0))
        seconds = 0;
    const auto whole = static_cast<long long>(seconds);
    return QStringLiteral("%1:%2")
        .arg(whole / 60, 2, 10, QLatin1Char('0'))
        .arg(whole % 60, 2, 10, QLatin1Char('0'));
}
