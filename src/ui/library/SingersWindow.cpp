#include "ui/library/SingersWindow.h"

#include "core/WindowPosition.h"
#include "library/KaraokeEvening.h"
#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "library/SingerQueue.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Docking.h"
#include "ui/kit/Palette.h"

#include <QDateTime>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

enum Role { IdRole = Qt::UserRole, IsSingerRole, GuestRole, PendingRole };

// The latest plays the history page lists.
constexpr int kHistoryShown = 200;

} // namespace

SingersWindow::SingersWindow(CoreState& state, SingerQueue& queue, KaraokeEvening& evening,
                             LibraryDatabase& database, SettingsStore& store, Docking& docking, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_state(state),
      m_queue(queue),
      m_evening(evening),
      m_database(database),
      m_store(store),
      m_docking(docking),
      m_tree(new QTreeWidget),
      m_history(new QTreeWidget),
      m_now(new QLabel),
      m_next(new QLabel),
      m_add(new QPushButton(Text("AddSinger"))),
      m_remove(new QPushButton(Text("QueueRemove"))),
      m_pause(new QPushButton(Text("PauseSinger"))),
      m_up(new QPushButton(Text("QueueUp"))),
      m_down(new QPushButton(Text("QueueDown"))),
      m_undo(new QPushButton(Text("QueueUndo"))),
      m_play(new QPushButton(Text("PlayNextSinger"))),
      m_hold(new QPushButton(Text("HoldCountdown"))),
      m_approve(new QPushButton(Text("SingersApprove"))),
      m_block(new QPushButton(Text("RemoteBlock")))
{
    setObjectName(QStringLiteral("SingersWindow"));
    setPalette(ControlsPalette());
    setAutoFillBackground(true);
    setWindowTitle(Text("SingersTitle"));
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({Text("ColumnSinger"), Text("ColumnKey")});
    m_tree->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_tree->header()->setStretchLastSection(false);
    m_tree->setRootIsDecorated(true);
    m_next->setWordWrap(true);
    m_now->setWordWrap(true);
    // Names come from guests' phones.
    m_next->setTextFormat(Qt::PlainText);
    m_now->setTextFormat(Qt::PlainText);
    QFont bold = m_next->font();
    bold.setBold(true);
    m_next->setFont(bold);
    m_play->setDefault(true);
    m_tree->setMinimumHeight(60);
    m_now->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_next->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto* buttons = new QGridLayout;
    buttons->addWidget(m_add, 0, 0);
    buttons->addWidget(m_pause, 0, 1);
    buttons->addWidget(m_remove, 0, 2);
    buttons->addWidget(m_up, 1, 0);
    buttons->addWidget(m_down, 1, 1);
    buttons->addWidget(m_undo, 1, 2);
    buttons->addWidget(m_approve, 2, 0);
    buttons->addWidget(m_block, 2, 1, 1, 2);
    m_history->setColumnCount(3);
    m_history->setHeaderLabels({Text("ColumnSungAt"), Text("ColumnSinger"), Text("ColumnTitle")});
    m_history->setRootIsDecorated(false);
    m_history->header()->setStretchLastSection(true);
    auto* queuePage = new QWidget;
    auto* queueColumn = new QVBoxLayout(queuePage);
    queueColumn->addWidget(m_tree, 1);
    queueColumn->addLayout(buttons);
    auto* turn = new QHBoxLayout;
    turn->addWidget(m_play, 1);
    turn->addWidget(m_hold);
    queueColumn->addLayout(turn);
    auto* pages = new QTabWidget;
    pages->addTab(queuePage, Text("QueueTab"));
    pages->addTab(m_history, Text("HistoryTab"));
    connect(pages, &QTabWidget::currentChanged, this, [this](int page) {
        if (page == 1)
            ShowHistory();
    });
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_now);
    column->addWidget(m_next);
    column->addWidget(pages, 1);
    resize(400, 460);

    connect(m_add, &QPushButton::clicked, this, &SingersWindow::AddSinger);
    connect(m_remove, &QPushButton::clicked, this, &SingersWindow::RemoveSelected);
    connect(m_pause, &QPushButton::clicked, this, &SingersWindow::PauseSelected);
    connect(m_up, &QPushButton::clicked, this, [this] { MoveSelected(-1); });
    connect(m_down, &QPushButton::clicked, this, [this] { MoveSelected(1); });
    connect(m_undo, &QPushButton::clicked, this, [this] {
        m_queue.UndoRemove();
        Refresh();
    });
    connect(m_approve, &QPushButton::clicked, this, [this] {
        m_queue.Approve(SelectedSong());
        Refresh();
    });
    connect(m_block, &QPushButton::clicked, this, [this] {
        const QTreeWidgetItem* item = m_tree->currentItem();
        if (item && BlockGuest)
            BlockGuest(item->data(0, GuestRole).toString());
        Refresh();
    });
    connect(m_play, &QPushButton::clicked, this, [this] { m_evening.PlayNext(); });
    connect(m_hold, &QPushButton::clicked, this, [this] { m_evening.HoldCountdown(); });
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, &SingersWindow::UpdateButtons);
    connect(&m_evening, &KaraokeEvening::changed, this, &SingersWindow::Refresh);
    connect(&m_evening, &KaraokeEvening::changed, this, [this, pages] {
        if (pages->currentIndex() == 1)
            ShowHistory();
    });
    m_docking.Register(this);
    Refresh();
}

SingersWindow::~SingersWindow()
{
    m_docking.Unregister(this);
}

QString SingersWindow::Text(const char* key) const
{
    return m_state.Language.GetText(QLatin1String(key));
}

void SingersWindow::Unload()
{
    WriteWindowPosition(m_store, QLatin1String(kPlaceKey), geometry());
    hide();
}

void SingersWindow::ShowHistory()
{
    m_history->clear();
    for (const HistoryRow& row : PlayHistory(m_database.Db(), kHistoryShown)) {
        const QString song = row.artist.isEmpty() ? row.title : row.artist + QStringLiteral(" - ") + row.title;
        new QTreeWidgetItem(m_history, {QLocale().toString(QDateTime::fromSecsSinceEpoch(row.when), QLocale::ShortFormat),
                                        row.singer, song});
    }
    m_history->resizeColumnToContents(0);
}

void SingersWindow::Show()
{
    Refresh();
    show();
    raise();
    activateWindow();
}

void SingersWindow::SetTopMost(bool flag)
{
    ::SetTopMost(*this, flag);
}

void SingersWindow::Refresh()
{
    const qint64 singer = SelectedSinger();
    const qint64 song = SelectedSong();
    m_tree->clear();
    QTreeWidgetItem* reselect = nullptr;
    for (const Singer& s : m_queue.Singers()) {
        auto* row = new QTreeWidgetItem(m_tree, {s.paused ? s.name + u' ' + Text("SingerPaused") : s.name});
        row->setData(0, IdRole, s.id);
        row->setData(0, IsSingerRole, true);
        if (s.id == singer && song == 0)
            reselect = row;
        for (const QueuedSong& queued : m_queue.SongsOf(s.id)) {
            QString name = queued.artist.isEmpty() ? queued.title : queued.artist + QStringLiteral(" - ") + queued.title;
            if (!queued.guest.isEmpty())
                name += QStringLiteral(" (%1)").arg(queued.pending ? Text("SingersPending") : Text("SingersRequest").arg(s.name));
            auto* child = new QTreeWidgetItem(row, {name, queued.semitones == 0 ? QString() : QStringLiteral("%1%2").arg(queued.semitones > 0 ? "+" : "").arg(queued.semitones)});
            child->setData(0, IdRole, queued.id);
            child->setData(0, IsSingerRole, false);
            child->setToolTip(0, name);
            child->setData(0, GuestRole, queued.guest);
            child->setData(0, PendingRole, queued.pending);
            if (queued.pending) {
                QFont waiting = child->font(0);
                waiting.setItalic(true);
                child->setFont(0, waiting);
                child->setForeground(0, palette().placeholderText());
            }
            if (queued.id == song)
                reselect = child;
        }
        row->setExpanded(true);
    }
    if (reselect)
        m_tree->setCurrentItem(reselect);
    const auto& current = m_evening.Current();
    m_now->setText(current ? Text("NowSinging").arg(current->singer.name, current->song.title) : QString());
    m_now->setVisible(current.has_value());
    const QString next = m_evening.NextText();
    m_next->setText(next.isEmpty() ? Text("NobodyWaits")
                    : m_evening.CountingDown() ? next + u' ' + Text("StartsIn").arg(m_evening.SecondsLeft())
                                               : next);
    m_play->setEnabled(!next.isEmpty());
    m_hold->setVisible(m_evening.CountingDown());
    UpdateButtons();
}

qint64 SingersWindow::SelectedSinger() const
{
    const QTreeWidgetItem* item = m_tree->currentItem();
    if (!item)
        return 0;
    if (!item->data(0, IsSingerRole).toBool())
        item = item->parent();
    return item ? item->data(0, IdRole).toLongLong() : 0;
}

qint64 SingersWindow::SelectedSong() const
{
    const QTreeWidgetItem* item = m_tree->currentItem();
    return item && !item->data(0, IsSingerRole).toBool() ? item->data(0, IdRole).toLongLong() : 0;
}

void SingersWindow::UpdateButtons()
{
    const bool song = SelectedSong() != 0;
    m_remove->setEnabled(SelectedSinger() != 0);
    m_pause->setEnabled(SelectedSinger() != 0 && !song);
    m_up->setEnabled(song);
    m_down->setEnabled(song);
    m_undo->setEnabled(m_queue.CanUndoRemove());
    const QTreeWidgetItem* item = song ? m_tree->currentItem() : nullptr;
    m_approve->setEnabled(item && item->data(0, PendingRole).toBool());
    m_block->setEnabled(item && !item->data(0, GuestRole).toString().isEmpty() && BlockGuest);
}

void SingersWindow::AddSinger()
{
    const QString name = QInputDialog::getText(this, Text("AddSinger"), Text("SingerName"));
    if (!name.trimmed().isEmpty())
        m_queue.AddSinger(name);
    Refresh();
}

void SingersWindow::RemoveSelected()
{
    if (const qint64 song = SelectedSong())
        m_queue.Remove(song);
    else if (const qint64 singer = SelectedSinger())
        m_queue.RemoveSinger(singer);
    Refresh();
}

void SingersWindow::PauseSelected()
{
    const qint64 id = SelectedSinger();
    for (const Singer& singer : m_queue.Singers()) {
        if (singer.id == id)
            m_queue.SetPaused(id, !singer.paused);
    }
    Refresh();
}

void SingersWindow::MoveSelected(int steps)
{
    if (const qint64 song = SelectedSong())
        m_queue.Move(song, steps);
    Refresh();
}
