#pragma once
// The preferences: every setting a user changes, in six tabs (general, karaoke window, colours,
// pictures, sound and recording, the keyboard). A change applies at once where a window shows
// it; Apply keeps what is set, Cancel takes the settings back to the last Apply or the opening,
// OK keeps them. ThemeClass writes them at the end of the run as always; only the language,
// which applies at the next start, is written at once.

#include <QDialog>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

struct PlayerState;
class Dialogs;
class LatencyClicks;
class QTabWidget;
class QTimer;
class SettingsStore;

class LyricOptions final : public QDialog {
    Q_OBJECT
public:
    enum Tab { General = 0, Karaoke = 1, Colors = 2, Pictures = 3, Sound = 4, Keyboard = 5 };

    LyricOptions(PlayerState& state, SettingsStore& store, Dialogs& dialogs, QWidget* parent = nullptr);
    ~LyricOptions() override;

    void ShowTab(int tab);
    // Called after every change, for the windows that show the settings.
    std::function<void()> Applied;

    void Apply();
    // Cancel, Escape and the window's close: the settings as they were kept.
    void reject() override;
    void done(int result) override;
    // The karaoke window's settings back to those of a fresh install.
    void ResetKaraoke();
    void ToggleLatencyTest();

private:
    QString Text(const char* key) const;
    void Changed();
    void StopLatencyTest();
    void Fill();
    QWidget* BuildGeneral();
    QWidget* BuildKaraoke();
    QWidget* BuildColors();
    QWidget* BuildPictures();
    QWidget* BuildSound();
    QWidget* BuildKeyboard();
    QWidget* BuildRemote();
    QWidget* BuildButtons();

    PlayerState& m_state;
    SettingsStore& m_store;
    Dialogs& m_dialogs;
    std::vector<std::pair<QString, QString>> m_kept;
    QTabWidget* m_tabs;
    // Each control's way to show the settings again after Cancel or a reset.
    std::vector<std::function<void()>> m_fillers;
    bool m_filling = false;
    std::unique_ptr<LatencyClicks> m_latency;
    QTimer* m_lampTimer;
    class Lamp* m_lamp = nullptr;
};
