#pragma once
// The commands of swtool that read songs and their files; each returns the exit code.

#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "lyrics/LyricsLoader.h"
#include "tags/MP3Class.h"

#include <QStringList>

struct LyricsState;

// A song read as the player reads it: the user's settings and language, and the song's tags.
struct PlayerReading {
    explicit PlayerReading(const QString& file);
    LyricsEnvironment Environment();

    QSettingsStore store;
    std::vector<MonitorRecord> monitors;
    ThemeClass theme;
    LanguageTable language;
    MP3Class song;
};

// swtool lyrics FILE [--editor | --import] [--write OUT]
int PrintLyrics(const QStringList& args);
// swtool cdg FILE.cdg --at SECONDS -o OUT.png
int PrintCdgScreen(const QStringList& args);
// swtool convert IN --to lrs|lrc|elrc|ultrastar|ass|srt [-o OUT]
int ConvertLyrics(const QStringList& args);
// swtool midi FILE [--wav OUT.wav [--seconds N] [--transpose S] [--tempo F] [--mute CH]...]
int PrintMidi(const QStringList& args);
// swtool split TEXTFILE [--syllables [--lang CODE]]: the rows Split makes of a text.
int PrintSplit(const QStringList& args);
// swtool onsets SONG: where sounds start in the song, as Snap to onsets finds them.
int PrintOnsets(const QStringList& args);
// swtool merge LYRICS: the text Merge makes of a song's (or a ".lrs" file's) lyrics.
int PrintMerge(const QStringList& args);
// swtool embed SONG LYRICS.lrs: the lyrics stored in the song as the editor's Save stores them.
int EmbedLyrics(const QStringList& args);
// swtool tags FILE [--set FIELD=VALUE]... [--ape]: the information dialog's save.
int SaveTags(const QStringList& args);
// swtool play SONG --wav OUT.wav [--key S] [--tempo F] [--vocals-off] [--from SECONDS] [--seconds N]
int PlaySongToWav(const QStringList& args);
// swtool probe FILE
int PrintProbe(const QStringList& args);
// swtool render SONG --at SECONDS ... | --video DIR --fps N --from A --to B
int RenderFrames(const QStringList& args);

// The lyrics the player shows for a song (or a ".lrs" file itself); the message when there are none.
QString LoadPlayerLyrics(LyricsState& lyrics, const QString& file, const LyricsEnvironment& env);
// swtool voice SONG --take TAKE.wav --at SECONDS: the take placed into the song's voice file.
int PlaceVoiceTake(const QStringList& args);
// swtool playlist FILE.m3u|FILE.pls [--saved]
int PrintPlaylist(const QStringList& args);
// swtool print LYRICS [--html OUT.htm] [--pdf OUT.pdf]: the printed page with the saved settings.
int PrintPages(const QStringList& args);

// swtool library scan DIR... | search QUERY [--limit N] | stats, each [--db PATH]
int LibraryCommand(const QStringList& args);

// The message on the error stream; exit code 1.
int Fail(const QString& message);

// The block text the editor would open: a ".lrs" file whole, else the block inside the song.
QString EditorText(const QString& path, bool polish);
// A lyrics file by its name, as the player takes it for one.
bool IsLrsFile(const QString& path);
