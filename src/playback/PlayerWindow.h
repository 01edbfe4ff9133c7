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

// The text cut one character at a time from its end, with "...", until it fits the width.
QString FitLabelText(const QString& text, const QFont& font, int width);

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

    // Artist and title, each cut with "..." to fit 180 pixels (title at 13, artist at 11 points).
    void PutLabels(const QString& artist, const QString& title);
    QString TitleLabel() const;
    QString ArtistLabel() const;
    // " Kb/s" and " Hz" texts of the song, empty when unknown.
    void SetQualityLabels(const QString& bitrate, const QString& sampleRate);
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
    QLabel* m_title = nullptr;
    QLabel* m_artist = nullptr;
    QLabel* m_bitrate = nullptr;
    QLabel* m_hz = nullptr;
    QLabel* m_digits = nullptr;
    QLabel* m_muted = nullptr;
    QSlider* m_progress = nullptr;
    QSlider* m_volume = nullptr;
    std::array<QLabel*, 6> m_lamps{};
    QMenu* m_menu = nullptr;
};
