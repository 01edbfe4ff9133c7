#include "ui/library/LibraryWindow.h"

#include "core/WindowPosition.h"
#include "library/LibraryDatabase.h"
#include "library/LibraryPaths.h"
#include "library/LibraryScanner.h"
#include "library/SearchText.h"
#include "library/SingerQueue.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Docking.h"
#include "ui/kit/Palette.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr int kScanRefreshMs = 1000;

const QStringList& Kinds()
{
    static const QStringList kinds{SongKinds::Audio, SongKinds::Midi,  SongKinds::Disc,
                                   SongKinds::Zip,   SongKinds::Video, SongKinds::UltraStar};
    return kinds;
}

QString Minutes(double seconds)
{
    const int whole = int(seconds + 0.5);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

// The program's own lyrics by its name alone, another program's format as it is named.
QString LyricsSourceText(const QString& source)
{
    return source.startsWith(QStringLiteral("Songweaver")) ? QStringLiteral("Songweaver") : source;
}

// The order a column's header asks for.
LibraryOrder OrderOfColumn(int column)
{
    switch (column) {
    case LibraryModel::Title: return LibraryOrder::Title;
    case LibraryModel::Artist: return LibraryOrder::Artist;
    case LibraryModel::Album: return LibraryOrder::Album;
    case LibraryModel::Length: return LibraryOrder::Length;
    case LibraryModel::Kind: return LibraryOrder::Kind;
    case LibraryModel::Sung: return LibraryOrder::MostSung;
    default: return LibraryOrder::Relevance;
    }
}

} // namespace

QString KindText(const LanguageTable& language, const QString& kind)
{
    static const std::map<QString, QString> keys{
        {SongKinds::Audio, QStringLiteral("KindAudio")}, {SongKinds::Midi, QStringLiteral("KindMidi")},
        {SongKinds::Disc, QStringLiteral("KindDisc")},   {SongKinds::Zip, QStringLiteral("KindZip")},
        {SongKinds::Video, QStringLiteral("KindVideo")}, {SongKinds::UltraStar, QStringLiteral("KindUltraStar")}};
    const auto it = keys.find(kind);
    return it == keys.end() ? kind : language.GetText(it->second);
}

LibraryModel::LibraryModel(const LanguageTable& language, std::function<QString(const QByteArray&)> openable,
                           QObject* parent)
    : QAbstractTableModel(parent), m_language(language), m_openable(std::move(openable))
{
}

void LibraryModel::SetHits(std::vector<LibraryHit> hits)
{
    beginResetModel();
    m_hits = std::move(hits);
    m_page = nullptr;
    m_more = false;
    endResetModel();
}

void LibraryModel::SetPages(std::function<std::vector<LibraryHit>(int offset)> page)
{
    beginResetModel();
    m_page = std::move(page);
    m_hits = m_page(0);
    m_more = m_hits.size() == size_t(kListedPage);
    endResetModel();
}

bool LibraryModel::canFetchMore(const QModelIndex& parent) const
{
    return !parent.isValid() && m_more;
}

void LibraryModel::fetchMore(const QModelIndex& parent)
{
    if (!canFetchMore(parent))
        return;
    std::vector<LibraryHit> more = m_page(int(m_hits.size()));
    m_more = more.size() == size_t(kListedPage);
    if (more.empty())
        return;
    beginInsertRows({}, int(m_hits.size()), int(m_hits.size() + more.size()) - 1);
    m_hits.insert(m_hits.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    endInsertRows();
}

const LibraryHit* LibraryModel::Hit(int row) const
{
    return row >= 0 && row < int(m_hits.size()) ? &m_hits[size_t(row)] : nullptr;
}

int LibraryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_hits.size());
}

int LibraryModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Columns;
}

QVariant LibraryModel::data(const QModelIndex& index, int role) const
{
    const LibraryHit* hit = Hit(index.row());
    if (!hit)
        return {};
    if (role == Qt::ToolTipRole)
        return index.column() == Lyrics ? hit->lyricsSource : ShownPath(hit->path);
    if (role == Qt::TextAlignmentRole && (index.column() == Length || index.column() == Sung))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Title: return hit->title;
    case Artist: return hit->artist;
    case Album: return hit->album;
    case Length: return Minutes(hit->length);
    case Kind: return KindText(m_language, hit->kind);
    case Lyrics: return LyricsSourceText(hit->lyricsSource);
    case Sung: return hit->playCount > 0 ? QString::number(hit->playCount) : QString();
    default: return {};
    }
}

QVariant LibraryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const char* const keys[] = {"ColumnTitle", "ColumnArtist", "ColumnAlbum", "ColumnLength",
                                       "ColumnKind",  "ColumnLyrics", "ColumnSung"};
    return section >= 0 && section < Columns ? m_language.GetText(QLatin1String(keys[section])) : QVariant();
}

Qt::ItemFlags LibraryModel::flags(const QModelIndex& index) const
{
    return QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled;
}

QStringList LibraryModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData* LibraryModel::mimeData(const QModelIndexList& indexes) const
{
    QList<QUrl> urls;
    QList<int> rows;
    for (const QModelIndex& index : indexes) {
        if (!rows.contains(index.row()))
            rows << index.row();
    }
    for (int row : rows) {
        if (const LibraryHit* hit = Hit(row); hit && m_openable) {
            const QString path = m_openable(hit->path);
            if (!path.isEmpty())
                urls << QUrl::fromLocalFile(path);
        }
    }
    auto* mime = new QMimeData;
    mime->setUrls(urls);
    return mime;
}

LibraryWindow::LibraryWindow(CoreState& state, LibraryDatabase& database, LibraryScanner& scanner, SingerQueue& queue,
                             SettingsStore& store, Docking& docking, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_state(state),
      m_database(database),
      m_scanner(scanner),
      m_queue(queue),
      m_store(store),
      m_docking(docking),
      m_model(new LibraryModel(state.Language, [this](const QByteArray& path) { return Openable ? Openable(path) : QString(); }, this)),
      m_search(new QLineEdit),
      m_kind(new QComboBox),
      m_withLyrics(new QCheckBox),
      m_table(new QTableView),
      m_progress(new QProgressBar),
      m_status(new QLabel),
      m_scan(new QPushButton),
      m_cancel(new QPushButton),
      m_unreadable(new QPushButton)
{
    setObjectName(QStringLiteral("LibraryWindow"));
    setPalette(ControlsPalette());
    setAutoFillBackground(true);
    setWindowTitle(Text("SongLibraryTitle"));
    m_search->setObjectName(QStringLiteral("LibrarySearch"));
    m_search->setPlaceholderText(Text("LibrarySearchHint"));
    m_search->setClearButtonEnabled(true);
    m_search->setMinimumWidth(120);
    // A long status shortens instead of widening the window beyond a small screen.
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_table->setMinimumHeight(80);
    m_kind->addItem(Text("KindAll"), QString());
    for (const QString& kind : Kinds())
        m_kind->addItem(KindText(state.Language, kind), kind);
    m_withLyrics->setText(Text("HasLyrics"));

    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setDragEnabled(true);
    m_table->setDragDropMode(QAbstractItemView::DragOnly);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    m_table->horizontalHeader()->setSectionsClickable(true);
    m_table->horizontalHeader()->setSortIndicatorShown(false);
    m_table->horizontalHeader()->setStretchLastSection(false);
    m_table->setAlternatingRowColors(true);
    const int character = m_table->fontMetrics().averageCharWidth();
    for (const auto& [column, characters] : std::initializer_list<std::pair<int, int>>{
             {LibraryModel::Artist, 22}, {LibraryModel::Album, 18}, {LibraryModel::Length, 9},
             {LibraryModel::Kind, 12}, {LibraryModel::Lyrics, 17}, {LibraryModel::Sung, 6}})
        m_table->setColumnWidth(column, characters * character);
    m_table->horizontalHeader()->setSectionResizeMode(LibraryModel::Title, QHeaderView::Stretch);
    m_table->setWordWrap(false);

    m_scan->setText(Text("LibraryScan"));
    m_cancel->setText(Text("Cancel"));
    m_cancel->setEnabled(false);
    m_progress->setVisible(false);
    m_progress->setMaximumWidth(160);
    m_unreadable->setFlat(true);
    m_unreadable->setVisible(false);

    auto* filters = new QHBoxLayout;
    filters->addWidget(m_search, 1);
    filters->addWidget(m_kind);
    filters->addWidget(m_withLyrics);
    auto* foot = new QHBoxLayout;
    foot->addWidget(m_status, 1);
    foot->addWidget(m_unreadable);
    foot->addWidget(m_progress);
    foot->addWidget(m_scan);
    foot->addWidget(m_cancel);
    auto* column = new QVBoxLayout(this);
    column->addLayout(filters);
    column->addWidget(m_table, 1);
    column->addLayout(foot);
    resize(720, 420);

    connect(m_search, &QLineEdit::textChanged, this, &LibraryWindow::Refresh);
    connect(m_kind, &QComboBox::currentIndexChanged, this, &LibraryWindow::Refresh);
    connect(m_withLyrics, &QCheckBox::toggled, this, &LibraryWindow::Refresh);
    connect(m_table->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) {
        const LibraryOrder order = OrderOfColumn(column);
        m_descending = order == m_order && !m_descending;
        m_order = order;
        Refresh();
    });
    connect(m_table, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
        if (const LibraryHit* hit = m_model->Hit(index.row()); hit && Play)
            Play(*hit);
    });
    connect(m_table, &QWidget::customContextMenuRequested, this, &LibraryWindow::ShowMenu);
    connect(m_scan, &QPushButton::clicked, this, &LibraryWindow::StartScan);
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_scanner.Cancel(); });
    connect(m_unreadable, &QPushButton::clicked, this, &LibraryWindow::ShowUnreadable);
    connect(&m_scanner, &LibraryScanner::progress, this, &LibraryWindow::ScanProgress);
    connect(&m_scanner, &LibraryScanner::finished, this, &LibraryWindow::ScanFinished);
    m_docking.Register(this);
    Refresh();
}

LibraryWindow::~LibraryWindow()
{
    m_docking.Unregister(this);
}

QString LibraryWindow::Text(const char* key) const
{
    return m_state.Language.GetText(QLatin1String(key));
}

void LibraryWindow::Show()
{
    show();
    raise();
    activateWindow();
    m_search->setFocus();
}

void LibraryWindow::SetTopMost(bool flag)
{
    ::SetTopMost(*this, flag);
}

void LibraryWindow::Unload()
{
    WriteWindowPosition(m_store, QLatin1String(kPlaceKey), geometry());
    hide();
}

void LibraryWindow::Refresh()
{
    LibraryQuery query;
    query.text = m_search->text();
    query.kind = m_kind->currentData().toString();
    query.withLyricsOnly = m_withLyrics->isChecked();
    query.order = m_order;
    query.descending = m_descending;
    m_sinceRefresh.start();
    if (SearchExpression(query.text).isEmpty()) {
        query.limit = kListedPage;
        m_model->SetPages([this, query](int offset) mutable {
            query.offset = offset;
            return SearchSongs(m_database.Db(), query);
        });
        m_listed = CountListed(m_database.Db(), query);
    } else {
        m_model->SetHits(SearchSongs(m_database.Db(), query));
        m_listed = m_model->rowCount();
    }
    ShowCount();
}

void LibraryWindow::ShowCount()
{
    if (m_scanner.Busy())
        return;
    const LibraryStats stats = CountSongs(m_database.Db());
    m_status->setText(Text("LibraryCount").arg(m_listed).arg(stats.songs));
    m_unreadable->setText(Text("LibraryUnreadable").arg(stats.unreadable));
    m_unreadable->setVisible(stats.unreadable > 0);
}

void LibraryWindow::StartScan()
{
    if (!MusicFolders)
        return;
    const std::vector<QByteArray> folders = MusicFolders();
    if (folders.empty()) {
        m_status->setText(Text("LibraryNoFolders"));
        return;
    }
    m_scanner.Scan(folders);
    ScanProgress(0, 0);
}

void LibraryWindow::ScanProgress(int done, int total)
{
    m_progress->setVisible(true);
    m_progress->setRange(0, std::max(total, 0));
    m_progress->setValue(done);
    m_cancel->setEnabled(true);
    m_scan->setEnabled(false);
    m_status->setText(total > 0 ? Text("LibraryScanning").arg(done).arg(total) : Text("LibraryLooking"));
    // New songs show up as the batches are written, the list read again once a second at most.
    if (done > 0 && (!m_sinceRefresh.isValid() || m_sinceRefresh.elapsed() >= kScanRefreshMs))
        Refresh();
}

void LibraryWindow::ScanFinished(const ScanCounts& counts)
{
    m_progress->setVisible(m_scanner.Busy());
    m_cancel->setEnabled(m_scanner.Busy());
    m_scan->setEnabled(!m_scanner.Busy());
    Refresh();
    if (counts.failed)
        m_status->setText(Text("LibraryWriteFailed"));
}

std::vector<const LibraryHit*> LibraryWindow::SelectedHits() const
{
    std::vector<const LibraryHit*> hits;
    for (const QModelIndex& index : m_table->selectionModel()->selectedRows()) {
        if (const LibraryHit* hit = m_model->Hit(index.row()))
            hits.push_back(hit);
    }
    return hits;
}

void LibraryWindow::ShowMenu(const QPoint& at)
{
    const std::vector<const LibraryHit*> hits = SelectedHits();
    if (hits.empty() || !Openable)
        return;
    const LibraryHit first = *hits.front();
    QMenu menu(this);
    menu.addAction(Text("LibraryPlay"), this, [this, first] {
        if (Play)
            Play(first);
    });
    menu.addAction(Text("LibraryAddToList"), this, [this, hits] {
        QStringList paths;
        for (const LibraryHit* hit : hits)
            paths << Openable(hit->path);
        if (AddToPlaylist)
            AddToPlaylist(paths);
    });
    QMenu* queueFor = menu.addMenu(Text("LibraryQueueFor"));
    for (const Singer& singer : m_queue.Singers())
        queueFor->addAction(singer.name, this, [this, id = singer.id, first] { QueueFor(id, first); });
    queueFor->addSeparator();
    queueFor->addAction(Text("NewSinger"), this, [this, first] {
        const QString name = QInputDialog::getText(this, Text("NewSinger"), Text("SingerName"));
        if (const auto id = m_queue.AddSinger(name))
            QueueFor(*id, first);
    });
    menu.exec(m_table->viewport()->mapToGlobal(at));
}

void LibraryWindow::QueueFor(qint64 singerId, const LibraryHit& hit)
{
    m_queue.Enqueue(singerId, hit.path, hit.title, hit.artist);
    if (QueueChanged)
        QueueChanged();
}

void LibraryWindow::ShowUnreadable()
{
    QStringList lines;
    for (const auto& [path, reason] : UnreadableFiles(m_database.Db()))
        lines << ShownPath(path) + QStringLiteral("\n    ") + m_state.Language.GetText(reason);
    QMessageBox box(QMessageBox::Information, Text("LibraryUnreadableTitle"),
                    Text("LibraryUnreadableText"), QMessageBox::Ok, this);
    box.setDetailedText(lines.join(u'\n'));
    box.exec();
}

void LibraryWindow::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && Play) {
        const std::vector<const LibraryHit*> hits = SelectedHits();
        if (const LibraryHit* hit = hits.empty() ? m_model->Hit(0) : hits.front())
            Play(*hit);
        return;
    }
    if (event->key() == Qt::Key_Down && m_search->hasFocus()) {
        m_table->setFocus();
        m_table->selectRow(0);
        return;
    }
    QWidget::keyPressEvent(event);
}
