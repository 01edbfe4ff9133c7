#pragma once
// The singers' queue: each singer with their songs in the rotation's order, who is next, and
// the commands of the evening: add a singer, pause, move or remove a song and undo the
// removal, and play the next turn.

#include "core/CoreState.h"
#include "core/Forms.h"

#include <QWidget>
#include <functional>

class Docking;
class KaraokeEvening;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
class LibraryDatabase;
class SettingsStore;
class SingerQueue;

class SingersWindow final : public QWidget, public Form {
    Q_OBJECT
public:
    static constexpr const char* kPlaceKey = "singers position";

    SingersWindow(CoreState& state, SingerQueue& queue, KaraokeEvening& evening, LibraryDatabase& database,
                  SettingsStore& store, Docking& docking, QWidget* parent = nullptr);
    ~SingersWindow() override;

    void Show() override;
    void Hide() override { hide(); }
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;

    // The queue as the database holds it, shown again.
    void Refresh();
    QTreeWidget& Tree() { return *m_tree; }
    QTreeWidget& History() { return *m_history; }
    QLabel& NextLabel() { return *m_next; }
    QPushButton& ApproveButton() { return *m_approve; }
    QPushButton& BlockButton() { return *m_block; }
    // The host turns away the guest whose phone asked for the selected song.
    std::function<void(const QString& guestId)> BlockGuest;

private:
    QString Text(const char* key) const;
    void AddSinger();
    void RemoveSelected();
    void PauseSelected();
    void MoveSelected(int steps);
    void UpdateButtons();
    void ShowHistory();
    // The singer (a top row) or song (a row below it) selected; 0 when none.
    qint64 SelectedSinger() const;
    qint64 SelectedSong() const;

    CoreState& m_state;
    SingerQueue& m_queue;
    KaraokeEvening& m_evening;
    LibraryDatabase& m_database;
    SettingsStore& m_store;
    Docking& m_docking;
    QTreeWidget* m_tree;
    QTreeWidget* m_history;
    QLabel* m_now;
    QLabel* m_next;
    QPushButton* m_add;
    QPushButton* m_remove;
    QPushButton* m_pause;
    QPushButton* m_up;
    QPushButton* m_down;
    QPushButton* m_undo;
    QPushButton* m_play;
    QPushButton* m_hold;
    QPushButton* m_approve;
    QPushButton* m_block;
};
