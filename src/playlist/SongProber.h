#pragma once
// Probing songs for the playlist without freezing its window: the files are read on worker
// threads, and the rows come back on the interface thread one by one, in the order they were
// queued.

#include "core/Language.h"
#include "playlist/PlaylistFiles.h"

#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <memory>
#include <mutex>

// The playlist's view of a song file through MP3Class; nothing when the file is missing.
std::optional<SongFacts> ProbeSong(const QString& path, bool polish);

class SongProber final : public QObject {
    Q_OBJECT
public:
    // Songs are read in the code page of the language that is loaded when they are queued.
    explicit SongProber(const LanguageTable& language, QObject* parent = nullptr);
    ~SongProber() override;

    // Rows to hand back in order; with `probe`, each existing file's tags and length replace
    // the row's text and time first.
    void Enqueue(std::vector<PlaylistRow> rows, bool probe);
    // Forgets every row not yet handed back.
    void Cancel();
    bool Busy() const;

signals:
    void rowReady(const PlaylistRow& row);
    void idle();

private:
    struct Slot {
        PlaylistRow row;
        bool done = false;
    };
    void Deliver();

    const LanguageTable& m_language;
    QThreadPool m_pool;
    mutable std::mutex m_mutex;
    std::vector<Slot> m_slots;
    size_t m_next = 0;
    std::shared_ptr<std::atomic<int>> m_generation = std::make_shared<std::atomic<int>>(0);
};
