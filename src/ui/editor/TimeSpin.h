#pragma once
// The time spin control (Correct): seconds shown as the list shows them ("mm:ss,fff"), typed in
// any of the three forms ("mm:ss", "mm:ss,fff", "mm:ss.fff"), a leading "-" for times before 0.

#include <QDoubleSpinBox>
#include <functional>

class TimeSpin final : public QDoubleSpinBox {
public:
    explicit TimeSpin(QWidget* parent);

    QString textFromValue(double value) const override;
    double valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& pos) const override;

    // The arrow keys held in the box: true for up; the key up ends the correction.
    std::function<void(bool up)> ArrowDown;
    std::function<void()> ArrowUp;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
};
