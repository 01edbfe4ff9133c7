#pragma once
// The lyrics editor window: the list of timed entries, the free text beside it, the time spin,
// the offset and the line-end box, the capture button, the tool bar and the File, Edit,
// Karaoke and Help menus. A tap of Space in the list, or of the key left of 1 anywhere, stamps
// the selected row while the song plays; held numeric + and - correct it.

#include "core/Forms.h"
#include "editor/EditorDocument.h"
#include "editor/EditorHistory.h"
#include "editor/EditorTiming.h"

#include "ui/editor/WaveformStrip.h"

#include <QMainWindow>
#include <QTimer>
#include <map>

class Dialogs;
class LyricsList;
class LyricsTableModel;
class PlayerCommands;
class PlayerTransport;
class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class SettingsStore;
class TimeSpin;
struct PlayerState;

class Editor final : public QMainWindow, public EditorForm {
    Q_OBJECT
public:
    Editor(PlayerState& state, SettingsStore& store, FormProvider& forms, PlayerTransport& transport,
           PlayerCommands& commands, Dialogs& dialogs);
    ~Editor() override;

    void Show() override;
    void Hide() override { hide(); }
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;
    void Open() override;
    bool CloseByUser() override { return close(); }

    // A menu item or button by the key of its caption ("MenuSave", "MenuSplitText", ...).
    void Command(const QString& key);
    // "MenuFile", "MenuEdit", "MenuKaraoke", "MenuHelp".
    QMenu* Menu(const QString& key) const;

    // Stamps the selected row with the song's position less the reaction, and walks on.
    void CaptureLine();
    // A held correction of the selected row starts; the timer's ticks move it.
    void CorrectUp();
    void CorrectDown();
    // The arrow keys of the time spin: 38 up, 40 down.
    void GetKey(int keyCode);
    // One repeat of the held key.
    void CorrectionTick();
    // The key is up: the correction stops and its row is selected again.
    void EndCorrection();
    // The selected rows move by the offset box's seconds.
    void DoOff();
    // The entries as text in the text box.
    void fnMoveTime();
    // The list anew from the document, the first row selected.
    void FillEditorList();
    // The status bar names the file the lyrics belong to.
    void MeasureLab();

    EditorDocument& Document() { return m_document; }
    LyricsList& List() { return *m_list; }
    QPlainTextEdit& LyricsBox() { return *m_lyrics; }
    TimeSpin& CorrectBox() { return *m_correct; }
    QDoubleSpinBox& OffsetBox() { return *m_offset; }
    QCheckBox& BreakBox() { return *m_break; }
    QTimer& CorrectTimer() { return m_correctTimer; }
    QString StatusText() const;
    // What the status bar says for a while, after a save.
    QString StatusMessage() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // The lyrics in the editor are those of the song that plays.
    bool EditsSongThatPlays() const;
    QString Text(const char* key) const;
    void BuildWindow();
    QWidget* BuildTimingBar();
    void BuildMenus();
    void BuildToolBar();
    void ApplyLanguage();
    void WatchKeys();

    // The list's keys: timing, rows and the clipboard of rows.
    bool ListKeyDown(QKeyEvent* event);
    bool ListKeyUp(QKeyEvent* event);
    bool StartCorrection(bool up);
    void RowChosen();
    void BreakClicked(bool checked);
    void CorrectEdited(double seconds);
    void ShowCorrect();
    void ShowRowState(int row);
    // The second panel: the selected row of how many.
    void ShowRowCount();

    // Edit and Karaoke menu commands.
    void MenuNew();
    // The text box into rows: a syllable a row by the lyrics language's dictionary (words when
    // it has none, which is said), or a word a row.
    void SplitText();
    void SplitWords();
    void SplitRows(const Hyphenator* syllables);
    // Karaoke > Language of the lyrics: the languages with a dictionary, the chosen one checked.
    void AddLanguageMenu(QMenu& karaoke, QAction* before);
    void InsertRow();
    void AddNewRow();
    void DeleteRows();
    void CopyRows();
    void CutRows();
    void PasteRows();
    void RemoveAll();
    void EditMenuCommand(const QString& key);
    void TextEdited(int row, const QString& text);
    // The waveform follows the song the editor times: its peaks (from a worker, cached), the
    // rows' marks and the playhead.
    void FollowSong();
    void LoadWaveform(const QString& song);
    // Karaoke > Held taps: a press stamps a syllable's start, the release its length.
    bool HeldTaps() const;
    void CaptureReleased();
    // Karaoke > Snap to onsets: the selected stamps to the nearest onset within 80 ms.
    void SnapToOnsets();
    // A mark let go on the waveform: its row's stamp, one step of Undo.
    void StampDragged(int row, double seconds);
    // After a change to the document: a step of Undo named by the change's caption key.
    void Recorded(const char* change);
    // Edit > Undo and Redo say what they take back or do again, and are off when there is none.
    void ShowUndoState();
    void Undo();
    void Redo();
    // The song at half, three quarters or its own speed, its key kept.
    void PlayAt(double tempo, const char* key);
    void PlayAtHalf();
    void PlayAtThreeQuarters();
    void PlayAtFull();
    // The rows were added, removed or replaced: the list again, and the display when a song is open.
    void RowsReplaced(int selectRow);
    // The karaoke display takes the document while a song is open; after new rows it lays them out anew.
    void ShowOnDisplay(bool newRows);

    // The details dialog on the document's header and pictures; what it sets shows at once.
    void MenuDetails();

    // File and Help menu commands.
    void MenuSave();
    bool SaveIntoSong();
    void MenuSaveAs();
    // A .lrs file of the rows, named in the dialog, which starts at `suggested` (else beside the
    // song).
    bool SaveAsLyricsFile(QString suggested = {});
    void ShowSaved(const QString& path);
    // Changed rows are saved, dropped or kept as the user answers; false when the user cancels.
    bool ChangesSettled();
    void MenuUpdate();
    void MenuFileOpen();
    void MenuLyricsOpen();
    void MenuLyricsImport();
    // File > Export: the rows as LRC, enhanced LRC, UltraStar, ASS or SRT, by the item's key.
    void AddExportMenu(QMenu& file, QAction* before);
    void ExportLyrics(const QString& key);
    void MenuTextOpen();
    void MenuTextSave();
    void MenuVersion();
    void MenuTutorial();
    void MenuSupport();
    void MenuAbout();
    // The print dialog, modal, on the document as it stands.
    void MenuPrint();
    struct ChosenText {
        QString path;
        QString text;
    };
    // A file the user chose and its text; nothing when the dialog was cancelled or the file refused.
    std::optional<ChosenText> OpenedText(const char* titleKey, const char* filterKey, const QString& patterns,
                                         qint64 limit);
    // The document anew from the editor's arrays: the list, and the text box.
    void EmptyDocument();
    // The information box of a command with nothing to save.
    void NothingToSave();

    PlayerState& m_state;
    SettingsStore& m_store;
    FormProvider& m_forms;
    PlayerTransport& m_transport;
    PlayerCommands& m_commands;
    Dialogs& m_dialogs;
    EditorDocument m_document;
    EditorHistory m_history;
    EditorTiming m_timing;

    LyricsTableModel* m_model = nullptr;
    LyricsList* m_list = nullptr;
    QPlainTextEdit* m_lyrics = nullptr;
    QLabel* m_lyricsHeading = nullptr;
    TimeSpin* m_correct = nullptr;
    QDoubleSpinBox* m_offset = nullptr;
    QPushButton* m_doOff = nullptr;
    QCheckBox* m_break = nullptr;
    QPushButton* m_details = nullptr;
    QPushButton* m_capture = nullptr;
    QLabel* m_fileLabel = nullptr;
    QLabel* m_countLabel = nullptr;
    std::map<QString, QMenu*> m_menus;
    std::map<QString, QAction*> m_actions;
    QTimer m_correctTimer;
    QTimer m_waveTimer;
    WaveformStrip* m_wave = nullptr;
    QString m_waveSong;  // whose peaks the waveform shows or awaits
    std::optional<std::vector<double>> m_onsets;  // of m_waveSong, once found
    int m_heldRow = 0;  // stamped by the tap key that is still down
    QTimer m_actionTimer;
    QString m_actionTag;
    QString m_lyricsLanguage;  // of the syllable split
    bool m_filling = false;
};
