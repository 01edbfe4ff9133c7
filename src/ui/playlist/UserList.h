#pragma once
// The playlist window: the list control over the playlist, its menus, the five foot buttons,
// the keys, and drag and drop of files and folders.

#include "core/CoreState.h"
#include "core/Forms.h"
#include "playlist/Playlist.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/KeyedMenu.h"
#include "ui/playlist/FlatList.h"

#include <QWidget>
#include <functional>
#include <map>

class Dialogs;
class Docking;
class PlayerTransport;
class QMenu;
class SettingsStore;

class UserList final : public QWidget, public PlaylistForm {
    Q_OBJECT
public:
    UserList(CoreState& state, Playlist& playlist, SettingsStore& store, Docking& docking, PlayerTransport& transport,
             Dialogs& dialogs);
    ~UserList() override;

    void Show() override;
    void Hide() override;
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;
    QRect Geometry() const override { return geometry(); }
    void SetGeometry(const QRect& geometry) override { PlaceOnScreen(*this, geometry); }
    void MoveTo(QPoint topLeft) override { PlaceOnScreen(*this, QRect(topLeft, size())); }

    // The dialogs of the window's commands.
    void fnAddSong();
    // The songs of a folder and of the folders in it, as dropping the folder adds them.
    void fnAddFolder();
    void fnListLoad();
    void fnListSave();

    // The player's information command for the selected row.
    std::function<void()> ShowInfo;

    void Command(const QString& key);
    bool KeyDown(int key, Qt::KeyboardModifiers modifiers);
    FlatList& List() { return *m_list; }
    QMenu* Menu(const QString& name) const;
    // The five foot buttons: "Add", "Rem", "Sort", "List", "Info".
    QRect FootButton(int index) const;

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
    QString PlaylistFilter(const QString& patterns) const;
    QMenu* MakeMenu(const QString& name, const std::vector<MenuItem>& items);

    CoreState& m_state;
    Playlist& m_playlist;
    SettingsStore& m_store;
    Docking& m_docking;
    PlayerTransport& m_transport;
    Dialogs& m_dialogs;
    FlatList* m_list = nullptr;
    std::map<QString, QMenu*> m_menus;
    QPoint m_dragOffset;
    bool m_dragging = false;
};
