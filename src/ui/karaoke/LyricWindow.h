#pragma once
// The karaoke window: shows the page of KaraokeView, runs the end-of-song timer, offers the
// window's menu, goes full screen on the chosen monitor and remembers its framed place.

#include "core/CoreState.h"
#include "core/Forms.h"
#include "karaoke/KaraokeView.h"

#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>

class QMenu;
class QPainter;
class SettingsStore;
struct MidiFigures;

class LyricWindow final : public QWidget, public KaraokeForm {
    Q_OBJECT
public:
    LyricWindow(CoreState& state, LyricsState& lyrics, SettingsStore& store, const SongClock& song);
    ~LyricWindow() override;

    void Show() override;
    // Where the window goes when it has no place of its own yet: beside the windows `taken`
    // covers, whole on their screen.
    void OpenBeside(const QRect& taken);
    void Hide() override;
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;

    void IsPlaying(double& position) override;
    void ClearLyrics() override;
    void GetLastPos() override;
    void ChangeLyrics() override;
    void ClearNewLyrics() override;
    void FadeLyrics(int16_t& mode) override;
    void FitLyrics() override;

    KaraokeView& View() { return m_view; }
    void ToggleFullScreen();
    // A QR code in the corner with a line above it, where guests' phones ask for songs; a null
    // image takes both away.
    void ShowInvitation(const QImage& code, const QString& caption);
    const QImage& Invitation() const { return m_invitation; }
    const QString& InvitationCaption() const { return m_invitationCaption; }
    // The settings changed in the preferences: the page shows them at once.
    void ApplySettings() { m_view.ApplySettings(); }
    // The window's menu runs one of its commands by key ("Fullscreen", "FitText", "Play", ...).
    void RunCommand(const QString& key);
    // The transport commands of the menu: "Previous", "Play", "Pause", "Stop", "Next", "Options".
    std::function<void(const QString& key)> PlayerCommand;
    // The MIDI song's figures, whose verses the menu offers; none before the player gives them.
    const MidiFigures* Midi = nullptr;
    // The window's menu as a right click shows it; the caller owns it.
    QMenu* BuildMenu();
    // The key and tempo menu inside it.
    QMenu* BuildSubmenu(const QString& key);

signals:
    void closedByUser();
    // A key the window does not answer itself, for the player's key table.
    void keyPressed(int key, Qt::KeyboardModifiers modifiers);
    // A syllable was lit by the tick, at this song position (the offset taken off).
    void syllableLit(int index, double position);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void PaintInvitation(QPainter& painter) const;
    void PlaceBesideWithFrame();
    void Rebuild();
    QScreen* ChosenScreen() const;

    CoreState& m_state;
    LyricsState& m_lyrics;
    SettingsStore& m_store;
    KaraokeView m_view;
    QImage m_invitation;
    QString m_invitationCaption;
    QTimer m_lastTimer;
    QTimer m_transitionTimer;
    QRect m_framedGeometry;
    bool m_placed = false;
    // The windows the first place stands beside, until the window has shown with its frame.
    std::optional<QRect> m_besideArea;
};
