#pragma once
// The picture details dialog: a timed picture's file, its second, and the transition that brings
// it in, with a live preview of that transition from the picture before it.

#include "karaoke/Transitions.h"
#include "lyrics/LyricsData.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <optional>

class Dialogs;
class LanguageTable;
class EffectPicker;
class QLineEdit;
class QSpinBox;
class ThemeClass;

// A picture control that can run a transition between two pictures on its own timer.
class TransitionPreview final : public QWidget {
    Q_OBJECT
public:
    explicit TransitionPreview(QWidget* parent = nullptr);
    void ShowPicture(const QImage& picture);
    // From the old picture to the new one by the effect; without an effect the new one at once.
    void Run(const QImage& before, const QImage& after, const std::optional<Effect>& effect, int speed);
    bool Running() const { return m_timer.isActive(); }
    const QImage& Shown() const { return m_shown; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage Fitted(const QImage& picture) const;
    void Step();

    QImage m_shown;
    std::optional<Transition> m_transition;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

class PictureDialog final : public QDialog {
    Q_OBJECT
public:
    // A new picture starts from the settings' effect; an existing row from its own values.
    PictureDialog(const PictureItem* row, const QImage& before, const ThemeClass& theme, const LanguageTable& language,
                  Dialogs& dialogs, const QString& baseFolder, QWidget* parent = nullptr);

    // The row as the controls say.
    PictureItem Picture() const;
    // Checks the file; a missing or unreadable one gets its message and keeps the dialog open.
    void Accept();
    void Browse();
    void Preview();

    QLineEdit& FileBox() { return *m_file; }
    QSpinBox& TimeBox() { return *m_time; }
    EffectPicker& Effect() { return *m_effect; }
    TransitionPreview& PreviewBox() { return *m_preview; }

private:
    QString Text(const char* key) const;

    const LanguageTable& m_language;
    Dialogs& m_dialogs;
    QString m_baseFolder;
    QImage m_before;
    QLineEdit* m_file;
    QSpinBox* m_time;
    EffectPicker* m_effect;
    TransitionPreview* m_preview;
};
