#include "ui/playlist/UserList.h"

#include "core/Dialogs.h"
#include "core/KeyTable.h"
#include "core/WindowPosition.h"
#include "playback/PlayerTransport.h"
#include "tags/MP3Class.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Docking.h"
#include "ui/kit/Palette.h"

#include <QContextMenuEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QSizeGrip>

namespace {

constexpr int kCaption = 22;
constexpr int kFoot = 28;
constexpr int kMargin = 8;
// The foot buttons stand at these x offsets; the last is 30 wide, the others 27.
constexpr std::array<int, 5> kFootX{36, 82, 128, 174, 286};
const char* const kFootCaptions[5] = {"Add", "Rem", "Sort", "List", "Info"};

} // namespace

UserList::UserList(CoreState& state, Playlist& playlist, SettingsStore& store, Docking& docking,
                   PlayerTransport& transport, Dialogs& dialogs)
    : m_state(state), m_playlist(playlist), m_store(store), m_docking(docking), m_transport(transport),
      m_dialogs(dialogs)
{
    setObjectName(QStringLiteral("UserList"));
    setWindowTitle(QStringLiteral("Songweaver Playlist"));
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(340, 160);
    resize(360, 300);

    m_list = new FlatList(m_playlist.Model(), this);
    connect(m_list, &FlatList::rowActivated, this, [this](int row) { m_transport.fnChangeSong(row); });
    connect(&m_playlist, &Playlist::changed, m_list, &FlatList::Refresh);
    auto* grip = new QSizeGrip(this);
    grip->setObjectName(QStringLiteral("grip"));

    MakeMenu(QStringLiteral("Bt1"), {{"AddSongs", "AddSongs"}, {"AddFolder", "AddFolder"}});
    MakeMenu(QStringLiteral("Bt4"), {{"SortAsc", "SortAsc"}, {"SortDesc", "SortDesc"}, {"SortRandom", "SortRandom"}});
    MakeMenu(QStringLiteral("Bt5"), {{"ListSave", "SavePlaylist"}, {"ListLoad", "LoadPlaylist"}});
    MakeMenu(QStringLiteral("MNU"), {{"Play", "Play"}, {"Info", "FileInfo"}, {nullptr, nullptr}, {"AddSongs", "AddSongs"},
                                     {"AddFolder", "AddFolder"}, {nullptr, nullptr}, {"Rem", "Remove"},
                                     {"RemAll", "RemoveAll"}, {nullptr, nullptr}, {"SelAll", "SelectAll"},
                                     {"Rev", "SelectReverse"}, {"SelNone", "SelectNone"}, {nullptr, nullptr},
                                     {"SortAsc", "SortAsc"}, {"SortDesc", "SortDesc"}, {"SortRandom", "SortRandom"},
                                     {nullptr, nullptr}, {"ListSave", "SavePlaylist"}, {"ListLoad", "LoadPlaylist"},
                                     {nullptr, nullptr}, {"Close", "Close"}});
}

UserList::~UserList() = default;

QString UserList::Text(const char* key) const
{
    return DisplayText(m_state.Language.GetText(QString::fromLatin1(key)));
}

QMenu* UserList::MakeMenu(const QString& name, const std::vector<MenuItem>& items)
{
    QMenu* menu = BuildKeyedMenu(this, name, items,
                                 {[this](const char* key) { return Text(key); },
                                  [this](const QString& key) { Command(key); }, {}});
    m_menus[name] = menu;
    return menu;
}

QMenu* UserList::Menu(const QString& name) const
{
    const auto it = m_menus.find(name);
    return it == m_menus.end() ? nullptr : it->second;
}

// ---- The form -------------------------------------------------------------------------------

void UserList::Show()
{
    m_docking.Register(this);
    show();
}

void UserList::Hide()
{
    hide();
}

void UserList::SetTopMost(bool flag)
{
    ::SetTopMost(*this, flag);
}

void UserList::Unload()
{
    WriteWindowPosition(m_store, QStringLiteral("userlist position"), geometry());
    m_docking.Unregister(this);
    hide();
}

// ---- Dialogs -------------------------------------------------------------------------------------

void UserList::fnAddSong()
{
    const QStringList files = m_dialogs.OpenFileNames(
        QStringLiteral("SWV: ") + Text("DialogAddFiles"), m_state.Theme ? m_state.Theme->MusicPath : QString(),
        DialogFilter(m_state.Language.GetRawText(QStringLiteral("FilterOpenAudio")), PlayerSongPatterns()));
    m_playlist.AppendFiles(files);
}

void UserList::fnAddFolder()
{
    const QString folder =
        m_dialogs.ChooseFolder(QStringLiteral("SWV: ") + Text("AddFolder"), m_state.Theme ? m_state.Theme->MusicPath : QString());
    if (!folder.isEmpty())
        m_playlist.AppendFiles({folder});
}

QString UserList::PlaylistFilter(const QString& patterns) const
{
    return DialogFilter(m_state.Language.GetRawText(QStringLiteral("FilterPlaylist")), patterns);
}

void UserList::fnListLoad()
{
    const QString path =
        m_dialogs.OpenFileName(QStringLiteral("SWV: ") + Text("LoadPlaylist"), PlaylistFilter(QStringLiteral("*.m3u;*.pls")));
    if (path.isEmpty() || !QFileInfo(path).isFile())
        return;
    hide();
    const bool loaded = m_playlist.LoadListFile(path);
    show();
    if (!loaded)
        m_dialogs.Inform(MessageNamingFile(Text("PlaylistNoSongs"), path));
}

void UserList::fnListSave()
{
    if (m_playlist.ListCount() == 0)
        return;
    const QString path = m_dialogs.SaveFileName(QStringLiteral("SWV: ") + Text("SavePlaylist"), m_playlist.LastSaved(),
                                                PlaylistFilter(QStringLiteral("*.m3u")));
    if (!path.isEmpty())
        m_playlist.SaveListFile(path);
}

// ---- Commands and keys -------------------------------------------------------------------------------

void UserList::Command(const QString& key)
{
    if (m_playlist.RowCommand(key))
        return;
    if (key == u"Close") {
        Hide();
        m_state.PlaylistOpen = false;
    } else if (key == u"Play") {
        m_transport.fnChangeSong(m_playlist.SelectedIndex());
    } else if (key == u"Listsave") {
        // The menu's item is keyed "ListSave", so this row of the table is never reached.
        fnListSave();
    } else if (key == u"ListLoad") {
        fnListLoad();
    } else if (key == u"AddSongs") {
        fnAddSong();
    } else if (key == u"AddFolder") {
        fnAddFolder();
    } else if (key == u"Info" && ShowInfo) {
        ShowInfo();
    }
}

bool UserList::KeyDown(int key, Qt::KeyboardModifiers modifiers)
{
    const KeyBinding* binding = FindKey(KeyWindow::Playlist, key, modifiers);
    if (!binding)
        return false;
    switch (binding->command) {
    case KeyCommand::FileInfo:
        Command(QStringLiteral("Info"));
        break;
    case KeyCommand::RemoveRows:
        Command(QStringLiteral("Rem"));
        break;
    case KeyCommand::Previous:
        m_transport.WSTECZ();
        break;
    case KeyCommand::Play:
        m_transport.PlaySong();
        break;
    case KeyCommand::Pause:
        m_transport.PauseSong();
        break;
    case KeyCommand::Stop:
        m_transport.StopSong();
        break;
    case KeyCommand::Next:
        m_transport.DALEJ();
        break;
    default:
        return m_transport.ChangeSound(binding->command);
    }
    return true;
}

void UserList::keyPressEvent(QKeyEvent* event)
{
    if (!KeyDown(event->key(), event->modifiers()))
        QWidget::keyPressEvent(event);
}

// ---- Skin and mouse ---------------------------------------------------------------------------------

QRect UserList::FootButton(int index) const
{
    return QRect(kFootX[size_t(index)], height() - kFoot + 4, index == 4 ? 30 : 27, 19);
}

void UserList::resizeEvent(QResizeEvent*)
{
    m_list->setGeometry(kMargin + 2, kCaption + 2, width() - 2 * kMargin - 4, height() - kCaption - kFoot - 4);
    if (auto* grip = findChild<QSizeGrip*>(QStringLiteral("grip")))
        grip->setGeometry(width() - 16, height() - 16, 14, 14);
}

void UserList::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintWindowBody(painter, rect());
    PaintCaption(painter, QRectF(19, 0, width() - 60, kCaption), Text("UserList"));
    PaintCloseButton(painter, QPointF(width() - 18, 11));
    PaintWell(painter, QRectF(kMargin, kCaption, width() - 2 * kMargin, height() - kCaption - kFoot));

    QFont foot = font();
    foot.setPixelSize(10);
    foot.setBold(true);
    painter.setFont(foot);
    for (int i = 0; i < 5; ++i) {
        const QRect box = FootButton(i);
        PaintButtonFace(painter, box, 5, false);
        painter.setPen(Palette::ButtonText);
        painter.drawText(box, Qt::AlignCenter, QString::fromLatin1(kFootCaptions[i]));
    }
}

void UserList::mousePressEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    if (event->button() != Qt::LeftButton)
        return;
    for (int i = 0; i < 5; ++i) {
        if (!FootButton(i).contains(at))
            continue;
        switch (i) {
        case 0: Menu(QStringLiteral("Bt1"))->popup(mapToGlobal(FootButton(i).topLeft())); break;
        case 1: Command(QStringLiteral("Rem")); break;
        case 2: Menu(QStringLiteral("Bt4"))->popup(mapToGlobal(FootButton(i).topLeft())); break;
        case 3: Menu(QStringLiteral("Bt5"))->popup(mapToGlobal(FootButton(i).topLeft())); break;
        default: Command(QStringLiteral("Info")); break;
        }
        return;
    }
    if (QRectF(width() - 24, 5, 12, 12).contains(at)) {
        Command(QStringLiteral("Close"));
        return;
    }
    m_dragging = true;
    m_dragOffset = event->globalPosition().toPoint() - pos();
}

void UserList::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragging)
        move(event->globalPosition().toPoint() - m_dragOffset);
}

void UserList::mouseReleaseEvent(QMouseEvent*)
{
    m_dragging = false;
}

void UserList::contextMenuEvent(QContextMenuEvent* event)
{
    Menu(QStringLiteral("MNU"))->popup(event->globalPos());
}

void UserList::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void UserList::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            paths << url.toLocalFile();
    m_playlist.AppendFiles(paths);
    event->acceptProposedAction();
}
