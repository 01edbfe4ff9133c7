#pragma once
// The main window: time digits, song name, progress and volume, the transport lamps.

#include "core/Forms.h"

#include <QWidget>
#include <array>

struct AppState;
class QLabel;
class QMenu;
class QSlider;
class SettingsStore;
class Docking;

class PlayerWindow final : public QWidget, public PlayerForm {
    Q_OBJECT
public:
    PlayerWindow(AppState& state, SettingsStore& store, Docking& docking);

    void Show() override;
    void Hide() override;
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
    void SetProgress(double fraction) override;
    void SetVolumeSlider(double value) override;
    void Light(int index, int state) override;
    void SetButton(int index, int state) override;

    // The song name shown over the digits.
    void SetSongName(const QString& name);
    // The volume slider, 0 to 1.
    double VolumeValue() const;

signals:
    void closeRequested();
    // The user dragged the progress slider to this fraction of the song.
    void progressMoved(double fraction);
    void volumeMoved(double value);

protected:
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QString Text(const char* key) const;

    AppState& m_state;
    SettingsStore& m_store;
    Docking& m_docking;
    QString m_timeStyle = QStringLiteral("CURRENT");
    QLabel* m_song = nullptr;
    QLabel* m_digits = nullptr;
    QLabel* m_muted = nullptr;
    QSlider* m_progress = nullptr;
    QSlider* m_volume = nullptr;
    std::array<QLabel*, 6> m_lamps{};
    QMenu* m_menu = nullptr;
};
