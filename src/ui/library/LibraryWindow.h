#pragma once
// The song library window: a search box whose results follow each keystroke, the kind and
// "has lyrics" filters, columns that sort, the scan's progress with Cancel, and the songs
// played, added to the playlist (also by dragging) or queued for a singer.

#include "core/CoreState.h"
#include "core/Forms.h"
#include "library/LibrarySongs.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QWidget>
#include <functional>

class Docking;
class LibraryDatabase;
class LibraryScanner;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableView;
class SettingsStore;
class SingerQueue;
struct ScanCounts;

class LibraryModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Title, Artist, Album, Length, Kind, Lyrics, Sung, Columns };

    LibraryModel(const LanguageTable& language, std::function<QString(const QByteArray&)> openable,
                 QObject* parent = nullptr);
    // The hits of a search, all at once.
    void SetHits(std::vector<LibraryHit> hits);
    // A listing of every song, read a page at a time as the view scrolls down: `page` gives
    // the songs from an offset.
    void SetPages(std::function<std::vector<LibraryHit>(int offset)> page);
    const LibraryHit* Hit(int row) const;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

private:
    const LanguageTable& m_language;
    std::function<QString(const QByteArray&)> m_openable;
    std::vector<LibraryHit> m_hits;
    std::function<std::vector<LibraryHit>(int offset)> m_page;
    bool m_more = false;
};

// The language text of a song kind.
QString KindText(const LanguageTable& language, const QString& kind);

class LibraryWindow final : public QWidget, public Form {
    Q_OBJECT
public:
    // The settings key of the window's place.
    static constexpr const char* kPlaceKey = "library position";

    LibraryWindow(CoreState& state, LibraryDatabase& database, LibraryScanner& scanner, SingerQueue& queue,
                  SettingsStore& store, Docking& docking, QWidget* parent = nullptr);
    ~LibraryWindow() override;

    void Show() override;
    void Hide() override { hide(); }
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;

    // What the window's commands reach.
    std::function<void(const LibraryHit& song)> Play;
    std::function<void(const QStringList& paths)> AddToPlaylist;
    std::function<std::vector<QByteArray>()> MusicFolders;
    std::function<QString(const QByteArray& path)> Openable;
    std::function<void()> QueueChanged;

    // The search that the box and the filters ask for, run again.
    void Refresh();
    void StartScan();
    QLineEdit& SearchBox() { return *m_search; }
    QTableView& Table() { return *m_table; }
    LibraryModel& Model() { return *m_model; }
    QLabel& Status() { return *m_status; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString Text(const char* key) const;
    void ScanProgress(int done, int total);
    void ScanFinished(const ScanCounts& counts);
    void ShowCount();
    void ShowMenu(const QPoint& at);
    void QueueFor(qint64 singerId, const LibraryHit& hit);
    void ShowUnreadable();
    std::vector<const LibraryHit*> SelectedHits() const;

    CoreState& m_state;
    LibraryDatabase& m_database;
    LibraryScanner& m_scanner;
    SingerQueue& m_queue;
    SettingsStore& m_store;
    Docking& m_docking;
    LibraryModel* m_model;
    QLineEdit* m_search;
    QComboBox* m_kind;
    QCheckBox* m_withLyrics;
    QTableView* m_table;
    QProgressBar* m_progress;
    QLabel* m_status;
    QPushButton* m_scan;
    QPushButton* m_cancel;
    QPushButton* m_unreadable;
    QElapsedTimer m_sinceRefresh;
    LibraryOrder m_order = LibraryOrder::Relevance;
    bool m_descending = false;
    int m_listed = 0;  // songs the list holds for the search and filters, read or not yet
};
