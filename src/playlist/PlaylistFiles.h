#pragma once
// The playlist's rows and its files: M3U, plain or with "#EXTINF" lines (read and written), PLS (read),
// and the list saved by itself at exit, an M3U file that is trusted without probing.

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

struct PlaylistRow {
    QString ItemString;  // the text shown, normally "Artist - Title"
    QString ItemTime;    // "mm:ss", may be empty
    QString ItemPath;    // the full path of the file
};

// What probing a song tells the list; nothing for a file that is not there.
struct SongFacts {
    QString Artist;
    QString Title;
    double Length = 0;
};
using SongProbe = std::function<std::optional<SongFacts>(const QString& path)>;

// "mm:ss" of a number of seconds read as a 16-bit integer.
QString FormatListSeconds(const QString& seconds);
// "mm:ss" read as the two characters on the left times 60 plus the two on the right, as a
// decimal text: "100:10" reads as 610.
QString ListTimeToSeconds(const QString& time);

// The row text and time from a probed song: its tags win over what the list file said.
void ApplySongFacts(PlaylistRow& row, const SongFacts& facts);

// The path a list line names: "\" and "/" both separate folders; a relative path is taken
// from the playlist's folder.
QString ListEntryPath(const QString& line, const QString& playlistFolder);

// M3U text, CR LF lines. With a folder, paths in that folder are written as bare file names;
// without one, full paths. Rows with neither time nor text, or without a path, are left out.
QString WriteM3U(const std::vector<PlaylistRow>& rows, const QString& relativeTo = {});

// The rows of an M3U text: its path lines, each with the "#EXTINF" line before it when there is
// one; each row is handed to `add` as it is read. The probe replaces time and text of files that
// exist. Reading stops at an "#EXTINF" line it cannot parse.
void ReadM3U(const QStringList& lines, const QString& playlistFolder, const SongProbe& probe,
             const std::function<void(const PlaylistRow&)>& add);
// The auto-saved list: no probing, and files that have gone missing are dropped.
void ReadSavedList(const QStringList& lines, const QString& playlistFolder,
                   const std::function<void(const PlaylistRow&)>& add);
// PLS: the FileN entries in the order of N, with their TitleN and LengthN when there are some.
void ReadPls(const QStringList& lines, const QString& playlistFolder, const SongProbe& probe,
             const std::function<void(const PlaylistRow&)>& add);

// The lines of a list file, decoded as lyrics files are.
QStringList ReadListLines(const QString& path, bool polish);
// Writes the text as UTF-8 through a temporary file; false when it could not be written.
bool WriteListFile(const QString& path, const QString& text);
