#include "ui/editor/TimeSpin.h"

#include "lyrics/LyricTime.h"

#include <QKeyEvent>
#include <QRegularExpression>

namespace {

constexpr double kLongestSong = 24 * 3600;

bool IsArrow(const QKeyEvent* event)
{
    return event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
}

} // namespace

TimeSpin::TimeSpin(QWidget* parent) : QDoubleSpinBox(parent)
{
    setObjectName(QStringLiteral("Correct"));
    setDecimals(3);
    setRange(-kLongestSong, kLongestSong);
    setSingleStep(0.01);
    setAccelerated(true);
    setKeyboardTracking(false);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QString TimeSpin::textFromValue(double value) const
{
    return FormatLyricTime(value, 3, true).remove(u' ');
}

double TimeSpin::valueFromText(const QString& text) const
{
    QString digits = text.trimmed();
    const bool negative = digits.startsWith(u'-');
    if (negative)
        digits = digits.mid(1).trimmed();
    const double seconds = ParseLyricTime(digits);
    return negative ? -seconds : seconds;
}

QValidator::State TimeSpin::validate(QString& text, int&) const
{
    static const QRegularExpression whole(QStringLiteral("^\\s*-?\\s*\\d{2}:\\d{2}([,.]\\d{0,3})?\\s*$"));
    static const QRegularExpression partial(QStringLiteral("^\\s*-?\\s*[\\d:,.]*$"));
    if (whole.match(text).hasMatch())
        return QValidator::Acceptable;
    return partial.match(text).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
}

void TimeSpin::keyPressEvent(QKeyEvent* event)
{
    if (IsArrow(event) && ArrowDown) {
        if (!event->isAutoRepeat())
            ArrowDown(event->key() == Qt::Key_Up);
        return;
    }
    QDoubleSpinBox::keyPressEvent(event);
}

void TimeSpin::keyReleaseEvent(QKeyEvent* event)
{
    if (IsArrow(event) && ArrowUp) {
        if (!event->isAutoRepeat())
            ArrowUp();
        return;
    }
    QDoubleSpinBox::keyReleaseEvent(event);
}
