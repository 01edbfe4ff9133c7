#include "playlist/Playlist.h"

#include "tags/MP3Class.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTextStream>

QStringList AudioFilesIn(const QStringList& paths)
{
    QStringList files;
    for (const QString& path : paths) {
        const QFileInfo info(path);
        if (info.isDir()) {
            QStringList found;
            QDirIterator it(path, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString file = it.next();
                if (IsFolderSongName(file))
                    found << file;
            }
            found.sort(Qt::CaseInsensitive);
            files << found;
        } else if (info.isFile()) {
            files << info.absoluteFilePath();
        }
    }
    return files;
}

Playlist::Playlist(const LanguageTable& language) : m_language(language), m_prober(language)
{
    connect(&m_prober, &SongProber::rowReady, this, &Playlist::Append);
}

void Playlist::Append(const PlaylistRow& row)
{
    m_model.AddItem(row);
    emit changed();
    emit rowAdded(m_model.ListCount());
}

void Playlist::ClearList()
{
    m_prober.Cancel();
    m_model.Clear();
    emit changed();
}

void Playlist::AddItem(const QString& text, const QString& time, const QString& path)
{
    Append({text, time, path});
}

void Playlist::AppendFiles(const QStringList& paths)
{
    std::vector<PlaylistRow> rows;
    for (const QString& file : AudioFilesIn(paths))
        rows.push_back({QFileInfo(file).completeBaseName(), {}, file});
    m_prober.Enqueue(std::move(rows), true);
}

void Playlist::SetItemPath(int index, const QString& path)
{
    m_model.SetItemPath(index, path);
}

void Playlist::SetItemText(int index, const QString& text)
{
    if (index < 0 || index >= ListCount())
        return;
    m_model.SetItemText(index, text);
    emit changed();
}

void Playlist::SetCurrentPlaying(int index)
{
    m_model.SetCurrentPlaying(index);
    emit changed();
}

void Playlist::MarkMissing(int index, bool missing)
{
    if (index < 0 || index >= m_model.ListCount() || m_model.Missing(index) == missing)
        return;
    m_model.SetMissing(index, missing);
    emit changed();
}

void Playlist::LoadSavedList(const QString& path)
{
    ReadSavedList(ReadListLines(path, m_language.IsPolish), QFileInfo(path).absolutePath(),
                  [this](const PlaylistRow& row) { m_model.AddItem(row); });
    emit changed();
    emit rowAdded(m_model.ListCount());
}

bool Playlist::LoadListFile(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return false;
    const QStringList lines = ReadListLines(path, m_language.IsPolish);
    const QString folder = QFileInfo(path).absolutePath();
    std::vector<PlaylistRow> rows;
    auto collect = [&rows](const PlaylistRow& row) { rows.push_back(row); };
    if (path.right(3).toLower() == u"m3u")
        ReadM3U(lines, folder, {}, collect);
    else
        ReadPls(lines, folder, {}, collect);
    if (rows.empty())
        return false;
    ClearList();
    m_prober.Enqueue(std::move(rows), true);
    return true;
}

bool Playlist::SaveListFile(QString path)
{
    if (m_model.ListCount() == 0)
        return false;
    if (!path.endsWith(QLatin1String(".m3u"), Qt::CaseInsensitive))
        path += QStringLiteral(".m3u");
    m_lastSaved = path;
    return WriteListFile(path, WriteM3U(m_model.Rows(), QFileInfo(path).absolutePath()));
}

void Playlist::SaveAtExit(const QString& path)
{
    m_prober.Cancel();
    if (m_model.ListCount() == 0 && !m_emptiedByUser)
        return;
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder) || !WriteListFile(path, WriteM3U(m_model.Rows())))
        QTextStream(stderr) << "Songweaver: the playlist could not be saved as " << path << "\n";
}

bool Playlist::RowCommand(const QString& key)
{
    if (key == u"Rem")
        m_model.RemoveSelected();
    else if (key == u"RemAll")
        ClearList();
    else if (key == u"SelAll")
        m_model.SelectAll();
    else if (key == u"Rev")
        m_model.ReverseSelection();
    else if (key == u"SelNone")
        m_model.SelectNone();
    else if (key == u"SortAsc")
        m_model.SortFlatList(true);
    else if (key == u"SortDesc")
        m_model.SortFlatList(false);
    else if (key == u"SortRandom")
        m_model.SortRandom([] { return QRandomGenerator::global()->generateDouble(); });
    else
        return false;
    if (key == u"Rem" || key == u"RemAll")
        m_emptiedByUser = m_model.ListCount() == 0;
    emit changed();
    return true;
}
