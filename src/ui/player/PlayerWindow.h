#pragma once
// The main window: one skinned picture with fifteen buttons hit-tested by their shapes, the
// lamp strip, the time digits, the song labels, the progress and volume sliders and the menus.
// It turns mouse and keys into button numbers, menu keys and key presses; PlayerCommands
// decides what they do.

#include "core/Forms.h"
#include "ui/kit/KeyedMenu.h"
#include "ui/kit/Skin.h"

#include <QWidget>
#include <array>
#include <set>

struct CoreState;
class QMenu;
class SettingsStore;
class Docking;

// The text cut one character at a time from its end, with "...", until it fits the width.
QString FitLabelText(const QString& text, const QFont& font, int width);

class PlayerWindow final : public QWidget, public PlayerForm {
    Q_OBJECT
public:
    PlayerWindow(CoreState& state, SettingsStore& store, Docking& docking);

    void Show() override;
    void Hide() override;
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;

    void DockAsFirstWindow() override;
    void ApplySkin() override;
    void BuildMenus() override;
    QRect Geometry() const override;
    QRect ScreenGeometry() const override;
    void MoveTo(QPoint topLeft) override;
    void SetTimeText(const QString& text) override;
    QString TimeStyle() const override { return m_timeStyle; }
    void SetTimeStyle(const QString& style) override { m_timeStyle = style; }
    void SetProgress(double fraction) override;
    void SetVolumeSlider(double value) override;
    void Light(PlayerLamp lamp, bool on) override;
    void SetButton(PlayerButton button, int state) override;
    // The disabled look of Record, Voice or Microphone (kinds 1, 2, 3) until the button is drawn again.
    void LightOut(int kind);

    // Each cut with "..." to fit 180 pixels (title at 13, artist at 11 points).
    void PutLabels(const QString& artist, const QString& title) override;
    void SetQualityLabels(const QString& bitrate, const QString& sampleRate) override;
    double VolumeValue() const override { return m_volume; }
    bool LampLit(PlayerLamp lamp) const { return m_lamps[size_t(lamp)]; }
    int ButtonState(PlayerButton button) const { return m_buttonState[size_t(button)]; }
    const Skin& SkinParts() const { return m_skin; }
    QMenu* Menu(const QString& name) const;

signals:
    void closeRequested();
    void minimizeRequested();
    // The user dragged the progress slider to this fraction of the song.
    void progressMoved(double fraction);
    void volumeMoved(double value);
    // A button was clicked (on release; Mute and Record on the press).
    void buttonAction(PlayerButton button);
    // A menu item by its key.
    void menuCommand(const QString& key);
    void keyPressed(int key, Qt::KeyboardModifiers modifiers);
    // A press on a label, the digits or the volume: the tool windows come to the front.
    void windowsToFront();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void ShowButton(int index, int state);
    QString Text(const char* key) const;
    void PaintButton(QPainter& painter, int button, qreal dpr);
    void PaintLabels(QPainter& painter);
    void PaintSlider(QPainter& painter, const QRect& well, double value);
    double SliderValueAt(const QRect& well, int x) const;
    QMenu* MakeMenu(const QString& name, const std::vector<MenuItem>& items);
    // The recent songs, numbered, as they are when the menu opens.
    void FillRecentMenu(QMenu& menu);

    CoreState& m_state;
    SettingsStore& m_store;
    Docking& m_docking;
    Skin m_skin;
    QString m_timeStyle = QStringLiteral("CURRENT");
    QString m_time = QStringLiteral("00:00");
    QString m_title, m_artist, m_bitrate, m_hz;
    double m_progress = 0;
    double m_volume = 1.0;
    std::array<int, Skin::kButtons + 1> m_buttonState{};
    std::array<bool, 6> m_lamps{};
    std::set<int> m_lightsOut;
    int m_pressed = 0;
    enum class Drag { None, Window, Progress, Volume } m_drag = Drag::None;
    QPoint m_dragOffset;
    std::map<QString, QMenu*> m_menus;
};
