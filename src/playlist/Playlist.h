#pragma once
// The playlist of the run: its rows, the songs being read for it, its files and the list it
// saves by itself at exit. It lives from start to end; its window only shows it.

#include "core/Forms.h"
#include "core/Language.h"
#include "playlist/PlaylistModel.h"
#include "playlist/SongProber.h"

#include <QObject>

class Playlist final : public QObject, public SongList {
    Q_OBJECT
public:
    explicit Playlist(const LanguageTable& language);

    PlaylistModel& Model() { return m_model; }
    const PlaylistModel& Model() const { return m_model; }
    SongProber& Prober() { return m_prober; }

    // SongList
    int ListCount() const override { return m_model.ListCount(); }
    QString ItemPath(int index) const override { return m_model.Row(index).ItemPath; }
    int SelectedIndex() const override { return m_model.SelectedIndex(); }
    void ClearList() override;
    void AddItem(const QString& text, const QString& time, const QString& path) override;
    void AppendFiles(const QStringList& paths) override;
    void SetItemPath(int index, const QString& path) override;
    void SetItemText(int index, const QString& text) override;
    void SetCurrentPlaying(int index) override;
    void MarkMissing(int index, bool missing) override;

    // The list a run saved at exit: trusted, not probed; files gone missing are dropped.
    void LoadSavedList(const QString& path);
    // A playlist file by its name: ".m3u" in any case, else PLS. Its songs replace the list and
    // are read on workers; a file that names no songs leaves the list alone and gives false.
    bool LoadListFile(const QString& path);
    // Saves the rows as M3U, paths relative to the file's folder; ".m3u" is added when missing.
    bool SaveListFile(QString path);
    QString LastSaved() const { return m_lastSaved; }
    // The list at exit, with full paths, into a folder made when missing. A list the user emptied
    // is saved empty; one that was never filled leaves the saved one as it was. A save that fails
    // says so on stderr.
    void SaveAtExit(const QString& path);

    // The commands on the rows: "Rem", "RemAll", "SelAll", "Rev", "SelNone", "SortAsc",
    // "SortDesc", "SortRandom". False for any other key.
    bool RowCommand(const QString& key);

signals:
    // The rows or their marks changed.
    void changed();
    // A row appeared; the list may still be filling.
    void rowAdded(int count);

private:
    void Append(const PlaylistRow& row);

    const LanguageTable& m_language;
    PlaylistModel m_model;
    SongProber m_prober;
    QString m_lastSaved;
    bool m_emptiedByUser = false;
};

// The audio files a list of dropped or chosen paths stands for: files as they are, folders
// by the audio files inside them, in name order.
QStringList AudioFilesIn(const QStringList& paths);
