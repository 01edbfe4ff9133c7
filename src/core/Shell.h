#pragma once
// The program's place on the desktop: the ".lrs" file type, the default player for MP3,
// the temporary folder and child processes.

#include <QString>
#include <QStringList>

// The freedesktop folders the file type lives in.
struct ShellFolders {
    QString dataHome;     // $XDG_DATA_HOME, where the user's MIME types and desktop entries go
    QString configHome;   // $XDG_CONFIG_HOME, where mimeapps.list chooses default programs
    QStringList dataDirs; // $XDG_DATA_DIRS, the system's MIME types

    static ShellFolders FromSystem();
};

constexpr const char* kDesktopEntryName = "songweaver.desktop";
constexpr const char* kLyricsMimeType = "text/x-songweaver-lyrics";

// Registers the extension (".lrs") under the content type text for the user: a MIME type,
// a desktop entry starting programPath, and this program as its default. A type that some
// MIME package already gives the extension is left alone. Returns true when it registered.
bool RegisterFileType(const QString& extension, const QString& contentType, const QString& programPath,
                      const ShellFolders& folders = ShellFolders::FromSystem());

// True when the MIME database of the folders knows a type for files with this extension.
bool ExtensionHasMimeType(const QString& extension, const ShellFolders& folders);

// True when this program is the user's default for MP3 files.
bool Mp3ContentTypeIsOurs(const ShellFolders& folders = ShellFolders::FromSystem());

// The temporary folder, ending in "/".
QString GetTempFolder();

// Runs a command line and waits for it; the exit code, or -1 when it could not run.
int RunAndWait(const QString& commandLine);
