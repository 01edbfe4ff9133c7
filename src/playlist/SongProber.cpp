#include "playlist/SongProber.h"

#include "cdg/CdgSong.h"
#include "tags/MP3Class.h"

#include <QFileInfo>
#include <QMetaObject>

std::optional<SongFacts> ProbeSong(const QString& path, bool polish)
{
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    // A zipped MP3+G song is named by the tags of the audio it holds, a CD+G file by its audio's.
    std::unique_ptr<ZipSong> zip = IsZipName(path) ? ZipSong::Open(path) : nullptr;
    const QString audio = zip ? zip->Audio() : IsCdgName(path) ? AudioOfCdgFile(path) : path;
    MP3Class song(polish);
    song.SetFilename(audio.isEmpty() ? path : audio);
    song.ReadFile();
    return SongFacts{song.Artist(), song.Title(), song.Length()};
}

SongProber::SongProber(const LanguageTable& language, QObject* parent) : QObject(parent), m_language(language)
{
    m_pool.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
}

SongProber::~SongProber()
{
    Cancel();
    m_pool.waitForDone();
}

void SongProber::Enqueue(std::vector<PlaylistRow> rows, bool probe)
{
    const int generation = *m_generation;
    const bool polish = m_language.IsPolish;
    size_t first = 0;
    {
        std::lock_guard lock(m_mutex);
        first = m_slots.size();
        for (PlaylistRow& row : rows)
            m_slots.push_back({std::move(row), !probe});
    }
    if (!probe) {
        QMetaObject::invokeMethod(this, [this] { Deliver(); }, Qt::QueuedConnection);
        return;
    }
    for (size_t i = first; i < first + rows.size(); ++i) {
        QString path;
        {
            std::lock_guard lock(m_mutex);
            path = m_slots[i].row.ItemPath;
        }
        auto current = m_generation;
        m_pool.start([this, i, path, generation, current, polish] {
            const auto facts = ProbeSong(path, polish);
            if (*current != generation)
                return;
            {
                std::lock_guard lock(m_mutex);
                if (*current != generation || i >= m_slots.size())
                    return;
                if (facts)
                    ApplySongFacts(m_slots[i].row, *facts);
                m_slots[i].done = true;
            }
            QMetaObject::invokeMethod(this, [this] { Deliver(); }, Qt::QueuedConnection);
        });
    }
}

void SongProber::Deliver()
{
    std::vector<PlaylistRow> ready;
    bool drained = false;
    {
        std::lock_guard lock(m_mutex);
        while (m_next < m_slots.size() && m_slots[m_next].done)
            ready.push_back(m_slots[m_next++].row);
        if (m_next == m_slots.size() && !m_slots.empty()) {
            m_slots.clear();
            m_next = 0;
            drained = true;
        }
    }
    for (const PlaylistRow& row : ready)
        emit rowReady(row);
    if (drained)
        emit idle();
}

void SongProber::Cancel()
{
    ++*m_generation;
    std::lock_guard lock(m_mutex);
    m_slots.clear();
    m_next = 0;
}

bool SongProber::Busy() const
{
    std::lock_guard lock(m_mutex);
    return !m_slots.empty();
}
