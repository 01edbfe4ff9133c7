#pragma once
// The playlist window: the list control, its menus, the five foot buttons, the keys, drag and
// drop of files and folders, the playlist files, and the list it saves by itself at exit.

#include "core/Forms.h"
#include "playlist/FlatList.h"
#include "playlist/PlaylistModel.h"
#include "playlist/SongProber.h"
#include "widgets/KeyedMenu.h"

#include <QWidget>
#include <functional>
#include <map>

struct AppState;
class Docking;
class PlayerTransport;
class QMenu;
class SettingsStore;

class UserList final : public QWidget, public PlaylistForm {
    Q_OBJECT
public:
    UserList(AppState& state, SettingsStore& store, Docking& docking, PlayerTransport& transport,
             QString savedListPath);
    ~UserList() override;

    void Show() override;
    void Hide() override;
    void SetTopMost(bool flag) override;
    void Unload() override;

    void SetGeometry(const QRect& geometry) override { setGeometry(geometry); }
    void MoveTo(QPoint topLeft) override { move(topLeft); }
    int ListCount() const override { return m_model.ListCount(); }
    QString ItemPath(int index) const override { return m_model.Row(index).ItemPath; }
    // The list saved at exit: trusted, not probed; files gone missing are dropped.
    void LoadPlaylist(const QString& path) override;
    int SelectedIndex() const override { return m_model.SelectedIndex(); }
    void fnChangeSong(int index) override;
    void ClearList() override;
    void AddItem(const QString& text, const QString& time, const QString& path) override;
    void SetItemPath(int index, const QString& path) override { m_model.SetItemPath(index, path); }
    void SetCurrentPlaying(int index) override;

    // A playlist file by its name: ".m3u" in any case, else PLS. Songs are probed on workers.
    void LoadListFile(const QString& path);
    // Files (and the audio files inside folders) appended after probing, in order.
    void AddFiles(const QStringList& paths);
    // The dialogs of the window's commands.
    void fnAddSong();
    void fnListLoad();
    void fnListSave();
    // Saves the rows as M3U, paths relative to the file's folder; ".m3u" is added when missing.
    bool SaveListFile(QString path);

    void Command(const QString& key);
    bool KeyDown(int key, Qt::KeyboardModifiers modifiers);
    PlaylistModel& Model() { return m_model; }
    FlatList& List() { return *m_list; }
    SongProber& Prober() { return m_prober; }
    QMenu* Menu(const QString& name) const;
    // The five foot buttons: "Add", "Rem", "Sort", "List", "Info".
    QRect FootButton(int index) const;

signals:
    // A row appeared; the list may still be filling.
    void rowAdded(int count);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QString Text(const char* key) const;
    QMenu* MakeMenu(const QString& name, const std::vector<MenuItem>& items);
    void Append(const PlaylistRow& row);
    void ShowFileInfo();

    AppState& m_state;
    SettingsStore& m_store;
    Docking& m_docking;
    PlayerTransport& m_transport;
    QString m_savedListPath;
    QString m_lastSaved;
    PlaylistModel m_model;
    SongProber m_prober;
    FlatList* m_list = nullptr;
    std::map<QString, QMenu*> m_menus;
    QPoint m_dragOffset;
    bool m_dragging = false;
};
