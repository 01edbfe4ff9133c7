#pragma once
// Buttons that show a colour or a font and change it through the desktop's picker, and a path
// box with its browse button. The pickers are handed in, so that tests answer for the user.

#include <QColor>
#include <QFont>
#include <QPushButton>
#include <cstdint>
#include <functional>
#include <optional>

class QLineEdit;

QIcon Swatch(const QColor& colour);
inline constexpr QSize kSwatchSize{44, 18};

class ColorButton final : public QPushButton {
    Q_OBJECT
public:
    using Picker = std::function<std::optional<QColor>(const QColor& initial)>;
    ColorButton(Picker picker, const QString& text = {}, QWidget* parent = nullptr);

    // The colour as the settings keep it: a Win32 colour number.
    int32_t Win32() const { return m_colour; }
    void SetWin32(int32_t colour);

signals:
    void Changed(int32_t colour);

private:
    Picker m_picker;
    int32_t m_colour = 0;
};

class FontButton final : public QPushButton {
    Q_OBJECT
public:
    using Picker = std::function<std::optional<QFont>(const QFont& initial)>;
    explicit FontButton(Picker picker, QWidget* parent = nullptr);

    const QFont& Font() const { return m_font; }
    // Shows the family and size in the font itself, at the dialog's size.
    void SetFont(const QFont& font);

signals:
    void Changed(const QFont& font);

private:
    Picker m_picker;
    QFont m_font;
};

// A path in a line box, and a button that asks for another.
class PathPicker final : public QWidget {
    Q_OBJECT
public:
    // The picker gets the path shown and gives the chosen one, empty when cancelled.
    using Picker = std::function<QString(const QString& current)>;
    explicit PathPicker(Picker picker, QWidget* parent = nullptr);

    QString Path() const;
    void SetPath(const QString& path);

signals:
    void Changed(const QString& path);

private:
    Picker m_picker;
    QLineEdit* m_edit;
};

class QComboBox;
class QLabel;
class QSlider;

// A timed picture's transition: the effect (or none), its detail and its speed from 1 to 10, in
// three labelled rows. Without an effect there is no detail and no speed to choose.
class EffectPicker final : public QWidget {
    Q_OBJECT
public:
    struct Texts {
        QString noEffect, noDetails, effect, detail, speed;
    };
    explicit EffectPicker(const Texts& texts, QWidget* parent = nullptr);

    // Shows a choice; an unknown effect shows none, a speed outside 1 to 10 the nearest end.
    void SetChoice(const QString& effect, const QString& detail, int speed);
    // The effect's name, empty for none.
    QString EffectName() const;
    // The detail chosen, empty without an effect.
    QString Detail() const;
    int Speed() const;

    QComboBox& EffectBox() { return *m_effect; }
    QComboBox& DetailBox() { return *m_detail; }
    QSlider& SpeedBox() { return *m_speed; }

signals:
    // The user changed the effect, its detail or its speed.
    void Changed();

private:
    void ShowDetails(const QString& chosen);

    QString m_noDetails;
    QComboBox* m_effect;
    QComboBox* m_detail;
    QSlider* m_speed;
    QLabel* m_speedValue;
    bool m_showing = false;
};
