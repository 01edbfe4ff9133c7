// The editor's File and Help menus: lyrics, text and song files in and out, the lyrics tried
// on the song that plays, the pages of the maker's site, and the feedback and about boxes.

#include "core/Dialogs.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/Shell.h"
#include "core/SiteAddresses.h"
#include "editor/EditorFiles.h"
#include "editor/LyricsImport.h"
#include "formats/LyricsFiles.h"
#include "lyrics/LyricsBlock.h"
#include "lyrics/LyricsLoader.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "tags/LyricsEmbedding.h"
#include "tags/MP3Class.h"
#include "ui/editor/Editor.h"
#include "ui/kit/AboutBoxes.h"

#include <QApplication>
#include <QMenu>
#include <QFileInfo>
#include <QStatusBar>
#include <QDir>
#include <QCheckBox>
#include <QPlainTextEdit>
#include <QSaveFile>

namespace {

const QString kTitlePrefix = QStringLiteral("SWV: ");
constexpr int kSavedMessageMs = 8000;

} // namespace

std::optional<Editor::ChosenText> Editor::OpenedText(const char* titleKey, const char* filterKey,
                                                     const QString& patterns, qint64 limit)
{
    const QString path = m_dialogs.OpenFileName(
        kTitlePrefix + Text(titleKey), DialogFilter(m_state.Language.GetRawText(QString::fromLatin1(filterKey)), patterns));
    if (path.isEmpty())
        return std::nullopt;
    if (FileTooLarge(path, limit)) {
        m_dialogs.Critical(m_state.Language.GetText(QStringLiteral("ErrorFilesize")));
        return std::nullopt;
    }
    return ChosenText{path, ReadTextFile(path, m_state.Language.IsPolish)};
}

void Editor::EmptyDocument()
{
    m_lyrics->clear();
    m_filling = true;
    m_break->setChecked(false);
    m_filling = false;
    m_timing.SetCorrect(0, 0);
    ShowCorrect();
}

void Editor::NothingToSave()
{
    m_dialogs.Inform(m_state.Language.GetText(QStringLiteral("MsgSave")));
}

void Editor::MenuSave()
{
    if (m_document.Count() == 0) {
        NothingToSave();
        return;
    }
    if (m_state.EditorFile.isEmpty())
        return;
    // The save runs from the timer, once the menu is gone from the screen.
    m_actionTag = QStringLiteral("SaveMP3");
    m_actionTimer.start();
}

bool Editor::ChangesSettled()
{
    if (m_document.Count() == 0 || !m_document.Modified())
        return true;
    const auto text = [this](const char* key) { return m_state.Language.GetText(QString::fromLatin1(key)); };
    switch (m_dialogs.AskSaveChanges({text("SaveChanges"), text("ButtonSave"), text("ButtonDontSave"), text("ButtonCancel")})) {
    case SaveChoice::Save:
        return m_state.EditorFile.isEmpty() ? SaveAsLyricsFile() : SaveIntoSong();
    case SaveChoice::Discard:
        return true;
    case SaveChoice::Cancel:
        break;
    }
    return false;
}

void Editor::ShowSaved(const QString& path)
{
    m_document.MarkSaved();
    statusBar()->showMessage(Text("SavedTo") + u' ' + QDir::toNativeSeparators(path), kSavedMessageMs);
}

bool Editor::SaveIntoSong()
{
    // A zipped song plays from a copy that goes when it closes, and the zip is never changed:
    // its lyrics go into a lyrics file beside the zip.
    if (const QString zip = m_transport.ZipOfSong(m_state.EditorFile); !zip.isEmpty()) {
        m_dialogs.Inform(Text("ZipSongLyrics"));
        return SaveAsLyricsFile(LyricsPathOf(zip));
    }
    SaveMP3Host host;
    host.MediaOpen = m_state.Session && !m_state.IsMidi;
    host.MidiActive = m_state.IsMidi;
    host.Polish = m_state.Language.IsPolish;
    host.Text = [this](const char* key) { return m_state.Language.GetText(QString::fromLatin1(key)); };
    host.Critical = [this](const QString& text) { m_dialogs.Critical(text); };
    host.Information = [this](const QString& text) { m_dialogs.Inform(text); };
    bool busy = false;
    host.WaitCursor = [&busy](bool on) {
        if (on != busy)
            on ? QApplication::setOverrideCursor(Qt::WaitCursor) : QApplication::restoreOverrideCursor();
        busy = on;
    };
    host.Release = [this](const QString& path, const std::function<void()>& rewrite) {
        m_transport.ReopenAround(path, rewrite);
    };
    const SaveMP3Result result = SaveMP3(m_state.EditorFile, m_state.Lyrics.EditLyrics, m_state.Lyrics.EditPictures, host);
    host.WaitCursor(false);
    if (result != SaveMP3Result::Saved)
        return false;
    ShowSaved(m_state.EditorFile);
    return true;
}

void Editor::MenuSaveAs()
{
    if (m_document.Count() == 0) {
        NothingToSave();
        return;
    }
    SaveAsLyricsFile();
}

bool Editor::SaveAsLyricsFile(QString suggested)
{
    if (suggested.isEmpty() && !m_state.EditorFile.isEmpty())
        suggested = LyricsPathOf(m_state.EditorFile);
    const QString chosen = m_dialogs.SaveFileName(kTitlePrefix + Text("DialogSaveLyrics"), suggested,
                                                  DialogFilter(m_state.Language.GetRawText(QStringLiteral("FilterOpenLyrics")), QStringLiteral("*.lrs")));
    if (chosen.isEmpty())
        return false;
    const QString path = NameWithExtension(chosen, QStringLiteral("lrs"));
    std::vector<LyricItem> lyrics = m_state.Lyrics.EditLyrics;
    const bool untitled = lyrics[0].Artist.isEmpty() || lyrics[0].Title.isEmpty();
    if (untitled && !m_state.EditorFile.isEmpty() && QFileInfo(m_state.EditorFile).isFile()) {
        MP3Class song(m_state.Language.IsPolish);
        song.SetFilename(m_state.EditorFile);
        song.ReadFile();
        TakeTitleFromTags(lyrics[0], song);
    }
    if (!SaveLrsFile(path, lyrics, m_state.Lyrics.EditPictures)) {
        m_dialogs.Critical(m_state.Language.GetText(QStringLiteral("ErrorWriteFile")));
        return false;
    }
    ShowSaved(path);
    return true;
}

void Editor::MenuUpdate()
{
    m_state.Lyrics.PlayLyrics = m_state.Lyrics.EditLyrics;
    m_state.Lyrics.PlayPictures = m_state.Lyrics.EditPictures;
    FinishShownLyrics(m_state.Lyrics, m_transport.LyricsEnvironmentOfSong());
    m_state.EditorFile = m_state.CurrentFile;
    MeasureLab();
    if (KaraokeForm* lyric = m_forms.Lyric(); lyric && m_state.KaraokeOpen)
        lyric->ChangeLyrics();
}

void Editor::MenuFileOpen()
{
    if (!ChangesSettled() || !m_commands.ChooseAndOpenFiles() || !m_state.SongOpen())
        return;
    EmptyDocument();
    m_state.EditorFile = m_state.CurrentInfo ? m_state.CurrentInfo->Filename() : m_state.CurrentFile;
    m_state.Lyrics.EditLyrics = m_state.Lyrics.PlayLyrics;
    m_state.Lyrics.EditPictures = m_state.Lyrics.PlayPictures;
    m_document.Copy({});  // the rows kept for Paste belong to the old document
    m_document.MarkSaved();
    FillEditorList();
}

void Editor::MenuLyricsOpen()
{
    if (!ChangesSettled())
        return;
    const auto chosen = OpenedText("DialogOpenLyrics", "FilterOpenLyrics", QStringLiteral("*.lrs"), kLyricsFileLimit);
    const auto critical = [this](const QString& message) { m_dialogs.Critical(message); };
    if (!chosen || !ParseEditorLyrics(m_state.Lyrics, chosen->text, critical))
        return;
    m_state.EditorFile = chosen->path;
    ShowOnDisplay(true);
    FillEditorList();
    m_document.MarkSaved();
}

void Editor::MenuLyricsImport()
{
    if (!ChangesSettled())
        return;
    const QString path = m_dialogs.OpenFileName(
        kTitlePrefix + Text("DialogImportKaraoke"),
        DialogFilter(m_state.Language.GetRawText(QStringLiteral("FilterImportKaraoke")),
                     SongPatterns() + QStringLiteral(";*.lrc;*.txt;*.ass;*.ssa;*.srt")));
    if (path.isEmpty())
        return;
    ImportLyrics(m_state.Lyrics, m_state.Midi, m_state.CurrentInfo.get(), path, m_state.Language.IsPolish);
    EmptyDocument();
    ShowOnDisplay(true);
    FillEditorList();
    m_document.MarkSaved();
}

namespace {

struct ExportKind {
    const char* key;
    LyricsFormat format;
    const char* name;
    const char* pattern;
};

constexpr ExportKind kExports[] = {
    {"ExportLrc", LyricsFormat::Lrc, "LRC", "lrc"},
    {"ExportEnhancedLrc", LyricsFormat::EnhancedLrc, "Enhanced LRC", "lrc"},
    {"ExportUltraStar", LyricsFormat::UltraStar, "UltraStar", "txt"},
    {"ExportAss", LyricsFormat::Ass, "ASS", "ass"},
    {"ExportSrt", LyricsFormat::Srt, "SRT", "srt"},
};

} // namespace

void Editor::AddExportMenu(QMenu& file, QAction* before)
{
    auto* exports = new QMenu(Text("MenuLyricsExport"), &file);
    exports->setObjectName(QStringLiteral("MenuLyricsExport"));
    for (const ExportKind& kind : kExports) {
        QAction* action = exports->addAction(QString::fromLatin1(kind.name) + QStringLiteral("..."));
        const QString key = QString::fromLatin1(kind.key);
        action->setData(key);
        connect(action, &QAction::triggered, this, [this, key] { ExportLyrics(key); });
    }
    file.insertMenu(before, exports)->setData(exports->objectName());
    m_menus[exports->objectName()] = exports;
}

void Editor::ExportLyrics(const QString& key)
{
    const auto kind = std::find_if(std::begin(kExports), std::end(kExports), [&](const ExportKind& k) { return key == QLatin1String(k.key); });
    if (kind == std::end(kExports))
        return;
    if (m_document.Count() == 0) {
        NothingToSave();
        return;
    }
    const QString suffix = QString::fromLatin1(kind->pattern);
    const QString suggested = m_state.EditorFile.isEmpty()
                                  ? QString()
                                  : QFileInfo(m_state.EditorFile).absoluteDir().filePath(QFileInfo(m_state.EditorFile).completeBaseName() + u'.' + suffix);
    const QString chosen = m_dialogs.SaveFileName(kTitlePrefix + Text("DialogExportLyrics"), suggested,
                                                  DialogFilter(QString::fromLatin1(kind->name), QStringLiteral("*.") + suffix));
    if (chosen.isEmpty())
        return;
    const QString path = NameWithExtension(chosen, suffix);
    const QFont font = m_state.Theme->LyricsFontFace();
    if (!WriteTimedLyricsFile(path, kind->format, m_state.Lyrics.EditLyrics, m_state.EditorFile, font.family(), font.pointSize())) {
        m_dialogs.Critical(m_state.Language.GetText(QStringLiteral("ErrorWriteFile")));
        return;
    }
    ShowSaved(path);
}

void Editor::MenuTextOpen()
{
    if (const auto chosen = OpenedText("DialogOpenText", "FilterText", QStringLiteral("*.txt"), kTextFileLimit))
        m_lyrics->setPlainText(chosen->text);
}

void Editor::MenuTextSave()
{
    const QString text = m_lyrics->toPlainText();
    if (text.isEmpty()) {
        NothingToSave();
        return;
    }
    // This title has always been the prefix alone: its key is not in the language tables.
    const QString chosen = m_dialogs.SaveFileName(
        QStringLiteral("SWV:") + Text("DialogSaveTezt"), DefaultTextName(m_state.EditorFile),
        DialogFilter(m_state.Language.GetRawText(QStringLiteral("FilterText")), QStringLiteral("*.txt")));
    if (chosen.isEmpty())
        return;
    if (!WriteTextFile(NameWithExtension(chosen, QStringLiteral("txt")), QString(text).replace(u'\n', QStringLiteral("\r\n"))))
        m_dialogs.Critical(m_state.Language.GetText(QStringLiteral("ErrorWriteFile")));
}

void Editor::MenuVersion()
{
    const QString page = GetTempFolder() + QStringLiteral("swv-check.html");
    QSaveFile file(page);
    const QString version = QCoreApplication::applicationVersion();
    const QByteArray html =
        VersionCheckPage(VersionAddress(m_store), version).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(html) != html.size() || !file.commit())
        return;
    m_dialogs.Browse(page);
}

void Editor::MenuTutorial()
{
    m_dialogs.Browse(TutorialAddress(m_store, m_state.Language.IsPolish));
}

void Editor::MenuSupport()
{
    FeedbackBox box(m_state.Language, m_store, [this](const QString& address) { m_dialogs.Browse(address); }, this);
    box.exec();
}

void Editor::MenuAbout()
{
    AboutBox box(m_state.Language, m_store, [this](const QString& address) { m_dialogs.Browse(address); }, this);
    box.exec();
}
