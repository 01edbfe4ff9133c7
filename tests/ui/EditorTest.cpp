// The lyrics editor on the offscreen platform as a singer meets it: words typed and split,
// tapped in time while the song plays on the manual device, stamps corrected with held keys,
// rows moved, copied and pasted, files opened within their limits, and the lyrics saved into
// the song and played back.

#include "core/Dialogs.h"
#include "core/WindowPosition.h"
#include "editor/EditorFiles.h"
#include "lyrics/LyricsBlock.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "playback/SongSound.h"
#include "SessionWindows.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"
#include "ui/editor/Editor.h"
#include "ui/editor/LyricsTable.h"
#include "ui/editor/TimeSpin.h"
#include "ui/editor/WaveformStrip.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <deque>
#include <map>
#include <gtest/gtest.h>

namespace {

class EditorWindow : public testing::Test {
protected:
    EditorWindow()
    {
        LoadDefaults(state, windows.store);
        device = &StartManualEngine(state);
        song = WriteRampWav(dir.filePath(QStringLiteral("song.wav")), 10 * 48000);
    }

    // The editor as button 14 opens it.
    Editor& OpenEditor()
    {
        editor = std::make_unique<Editor>(state, windows.store, windows, transport, commands, dialogs);
        state.EditorOpen = true;
        editor->Open();
        return *editor;
    }
    void Play(double seconds) { PlayDecoded(*device, state, seconds); }
    double Position() const { return state.Session->get_CurrentPosition(); }
    void Split(const QString& text)
    {
        editor->LyricsBox().setPlainText(text);
        editor->Command(QStringLiteral("MenuSplitWords"));
    }
    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&editor->List(), Qt::Key(key), modifiers);
    }
    QString Cell(int row, int column) const
    {
        return editor->List().model()->index(row - 1, column).data().toString();
    }
    void Picture(const QString& name)
    {
        const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
        if (!folder.isEmpty())
            editor->grab().save(folder + u'/' + name + QStringLiteral(".png"));
    }

    QTemporaryDir dir;
    QString song;
    PlayerState state;
    ManualDevice* device = nullptr;
    Journal journal;
    SessionWindows windows{state, journal};
    FakeSongList list{journal};
    PlayerTransport transport{state, windows, list};
    FakeTray tray;
    ScriptedDialogs dialogs;
    PlayerCommands commands{state, windows, transport, tray, dialogs};
    std::unique_ptr<Editor> editor;
};

} // namespace

TEST_F(EditorWindow, TheKaraokePageTakesATapAtOnceNotAtTheNextTick)
{
    ASSERT_TRUE(transport.OpenSong(song, true));
    state.KaraokeOpen = true;
    OpenEditor();
    Split(QStringLiteral("Amazing grace how sweet"));
    Play(0.6);
    windows.lyric.seen.clear();
    Key(Qt::Key_Space);
    ASSERT_FALSE(windows.lyric.seen.empty()) << "no tick ran, and the page was asked all the same";
    EXPECT_DOUBLE_EQ(windows.lyric.seen.back(), Position());
}

TEST_F(EditorWindow, TypedWordsAreSplitAndTappedInTimeWhileTheSongPlays)
{
    ASSERT_TRUE(transport.OpenSong(song, true));
    OpenEditor();
    EXPECT_EQ(editor->StatusText(), song) << "the song that plays is the editor's file";
    Split(QStringLiteral("Amazing grace how sweet\r\nthe sound"));
    ASSERT_EQ(editor->Document().Count(), 6);
    EXPECT_EQ(Cell(1, 0), "0");
    EXPECT_EQ(Cell(1, 1), "Amazing ");
    EXPECT_EQ(Cell(4, 2), "break");
    EXPECT_EQ(Cell(5, 2), "");
    EXPECT_EQ(editor->Document().Entry(2).LineText, "Amazing grace how sweet ");
    EXPECT_EQ(editor->List().SelectedRow(), 1);
    Picture(QStringLiteral("editor-split"));

    std::vector<double> tapped;
    for (int row = 1; row <= 6; ++row) {
        Play(0.4);
        tapped.push_back(Position());
        Key(row % 2 ? Qt::Key_Space : Qt::Key_QuoteLeft);
        EXPECT_EQ(editor->List().SelectedRow(), std::min(row + 1, 6)) << "the selection walks on, and stays on the last";
    }
    for (int row = 1; row <= 6; ++row) {
        EXPECT_DOUBLE_EQ(editor->Document().Entry(row).Time, tapped[size_t(row - 1)] - kReactionSeconds) << row;
        EXPECT_DOUBLE_EQ(state.Lyrics.PlayLyrics[size_t(row)].Time, tapped[size_t(row - 1)] - kReactionSeconds)
            << "the karaoke display follows each tap at once";
    }
    EXPECT_EQ(Cell(3, 0), editor->Document().TimeText(3));
    EXPECT_DOUBLE_EQ(editor->CorrectBox().value(), std::round((tapped[5] - kReactionSeconds) * 1000) / 1000);

    // A second tap on the last row writes over its time.
    Play(0.5);
    const double later = Position();
    editor->CaptureLine();
    EXPECT_DOUBLE_EQ(editor->Document().Entry(6).Time, later - kReactionSeconds);
    EXPECT_EQ(editor->List().SelectedRow(), 6);
    Picture(QStringLiteral("editor-tapped"));

    // The key left of 1 taps from the text box too; with nothing playing nothing is stamped.
    editor->List().SelectRow(2);
    transport.StopSong();
    transport.CloseSong();
    const double before = editor->Document().Entry(2).Time;
    QTest::keyClick(&editor->LyricsBox(), Qt::Key_QuoteLeft);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(2).Time, before);
    EXPECT_EQ(editor->List().SelectedRow(), 2);
}

TEST_F(EditorWindow, AHeldPlusKeyCorrectsByGrowingStepsAndMinusStopsAtZero)
{
    OpenEditor();
    Split(QStringLiteral("one two three"));
    // The test is the key repeat: the timer's own ticks would race it.
    editor->CorrectTimer().setInterval(3600 * 1000);
    editor->List().setFocus();

    editor->List().SelectRow(2);
    QTest::keyPress(&editor->List(), Qt::Key_Minus, Qt::KeypadModifier);
    EXPECT_FALSE(editor->CorrectTimer().isActive()) << "a time at 0 is not pushed below it";

    QTest::keyPress(&editor->List(), Qt::Key_Plus, Qt::KeypadModifier);
    ASSERT_TRUE(editor->CorrectTimer().isActive());
    EXPECT_EQ(editor->List().SelectedRow(), 0) << "the row is let go while it is corrected";
    for (int tick = 0; tick < 25; ++tick)
        editor->CorrectionTick();
    QTest::keyRelease(&editor->List(), Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_FALSE(editor->CorrectTimer().isActive());
    EXPECT_EQ(editor->List().SelectedRow(), 2) << "and selected again when the key is up";
    EXPECT_NEAR(editor->Document().Entry(2).Time, 9 * 0.001 + 0.1 + 9 * 0.01 + 6 * 0.1, 1e-9);
    EXPECT_EQ(Cell(2, 0), "00:00,799");
    EXPECT_EQ(editor->CorrectBox().text(), "00:00,799");
    EXPECT_EQ(editor->Document().Entry(1).Time, 0) << "no other row moved";

    // Down from there, then a time typed into the spin in its other forms.
    QTest::keyPress(&editor->List(), Qt::Key_Minus, Qt::KeypadModifier);
    editor->CorrectionTick();
    QTest::keyRelease(&editor->List(), Qt::Key_Minus, Qt::KeypadModifier);
    EXPECT_NEAR(editor->Document().Entry(2).Time, 0.798, 1e-9);
    editor->CorrectBox().findChild<QLineEdit*>()->selectAll();
    QTest::keyClicks(&editor->CorrectBox(), QStringLiteral("01:02.5"));
    QTest::keyClick(&editor->CorrectBox(), Qt::Key_Return);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(2).Time, 62.5);
    EXPECT_EQ(Cell(2, 0), "01:02,500");
}

TEST_F(EditorWindow, OffsetsBreaksCopiesAndPastesWorkOnTheSelectedRows)
{
    OpenEditor();
    Split(QStringLiteral("a b\r\nc d"));
    for (int row = 1; row <= 4; ++row)
        editor->Document().SetTime(row, row);
    editor->FillEditorList();

    // Nothing selected: the offset changes nothing.
    editor->List().ClearSelectionOnly();
    editor->OffsetBox().setValue(1.5);
    editor->DoOff();
    EXPECT_EQ(editor->Document().Entry(2).Time, 2);

    editor->List().selectionModel()->select(editor->List().model()->index(1, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
    editor->List().selectionModel()->select(editor->List().model()->index(3, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
    editor->DoOff();
    EXPECT_EQ(editor->Document().Entry(1).Time, 1);
    EXPECT_EQ(editor->Document().Entry(2).Time, 3.5);
    EXPECT_EQ(editor->Document().Entry(3).Time, 3);
    EXPECT_EQ(editor->Document().Entry(4).Time, 5.5);

    // The line-end box on row 1 joins nothing and splits the first line.
    editor->List().SelectRow(1);
    editor->BreakBox().click();
    EXPECT_TRUE(editor->Document().Entry(1).LineEnd);
    EXPECT_EQ(Cell(1, 2), "break");
    EXPECT_EQ(editor->Document().Entry(1).LineText, "a ");
    EXPECT_EQ(editor->Document().Entry(2).LineText, "b ");

    // Copy rows 3 and 4, paste them in front of row 2: texts and breaks, time 0.
    editor->List().setFocus();
    editor->List().SelectRow(3);
    editor->List().selectionModel()->select(editor->List().model()->index(3, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
    Key(Qt::Key_C, Qt::ControlModifier);
    editor->List().SelectRow(2);
    Key(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(editor->Document().Count(), 6);
    EXPECT_EQ(Cell(2, 1), "c ");
    EXPECT_EQ(Cell(3, 1), "d ");
    EXPECT_EQ(Cell(3, 2), "break");
    EXPECT_EQ(Cell(2, 0), "0");
    EXPECT_EQ(Cell(4, 1), "b ");
    EXPECT_EQ(editor->Document().Entry(2).LineText, "c d ") << "line texts are rebuilt after the paste";

    // Insert, add new, delete and the edit in place.
    editor->List().SelectRow(1);
    Key(Qt::Key_Insert);
    EXPECT_EQ(Cell(1, 1), "");
    EXPECT_EQ(Cell(2, 1), "a ");
    EXPECT_DOUBLE_EQ(editor->CorrectBox().value(), 0) << "the new row has no time";
    Key(Qt::Key_Delete);
    EXPECT_EQ(Cell(1, 1), "a ");
    EXPECT_DOUBLE_EQ(editor->CorrectBox().value(), 1) << "the time box shows the row now selected";
    Key(Qt::Key_F12);
    EXPECT_EQ(editor->Document().Count(), 7);
    EXPECT_EQ(editor->List().SelectedRow(), 7);
    Key(Qt::Key_Return);
    auto* box = editor->List().findChild<QLineEdit*>(QStringLiteral("lText"));
    ASSERT_NE(box, nullptr);
    QTest::keyClicks(box, QStringLiteral("end"));
    QTest::keyClick(box, Qt::Key_Return);
    QTRY_COMPARE(editor->Document().Entry(7).Text, "end");

    // Merge gives the text back with its lines.
    editor->Command(QStringLiteral("MenuMergeText"));
    EXPECT_EQ(editor->LyricsBox().toPlainText(), "a \nc d \nb \nc d \nend");
}

TEST_F(EditorWindow, NewAsksAboutChangedRowsAndAboutSavedOnesAsBefore)
{
    OpenEditor();
    Split(QStringLiteral("one two"));
    dialogs.saveChoice = SaveChoice::Cancel;
    editor->Command(QStringLiteral("MenuNew"));
    EXPECT_EQ(dialogs.questions, QStringList{"The lyrics have changed.\r\nSave the changes?"});
    EXPECT_EQ(editor->Document().Count(), 2) << "Cancel keeps the rows";
    EXPECT_EQ(editor->LyricsBox().toPlainText(), "one two");

    dialogs.saveChoice = SaveChoice::Discard;
    editor->Command(QStringLiteral("MenuNew"));
    EXPECT_EQ(editor->Document().Count(), 0);
    EXPECT_EQ(editor->LyricsBox().toPlainText(), "");
    editor->Command(QStringLiteral("MenuNew"));
    EXPECT_EQ(dialogs.questions.size(), 2) << "an empty editor is not asked about";

    editor->Command(QStringLiteral("MenuSave"));
    editor->Command(QStringLiteral("MenuSaveAs"));
    editor->Command(QStringLiteral("MenuTextSave"));
    EXPECT_EQ(dialogs.messages, QStringList(3, QStringLiteral("info: There is nothing to save.")));

    // Rows as they were saved: the old question, and No keeps them.
    Split(QStringLiteral("three four"));
    dialogs.files = {dir.filePath("kept.lrs")};
    editor->Command(QStringLiteral("MenuSaveAs"));
    ASSERT_FALSE(editor->Document().Modified());
    dialogs.yes = false;
    editor->Command(QStringLiteral("MenuNew"));
    EXPECT_EQ(dialogs.questions.last(), "All data inside editor will be lost.\r\nContinue anyway?");
    EXPECT_EQ(editor->Document().Count(), 2);
}

TEST_F(EditorWindow, OtherProgramsLyricsComeInAndGoOutInEveryFormat)
{
    ASSERT_TRUE(transport.OpenSong(song, false));
    OpenEditor();
    const QString ultraStar = dir.filePath("Band - Song.txt");
    WriteFileBytes(ultraStar, "#TITLE:Song\n#ARTIST:Band\n#MP3:song.wav\n#BPM:300\n#GAP:500\n: 0 4 1 Hel\n: 4 4 2 lo \n- 8\n"
                              ": 10 4 3 world\nE\n");
    dialogs.files = {ultraStar};
    editor->Command(QStringLiteral("MenuLyricsImport"));
    ASSERT_EQ(editor->Document().Count(), 3);
    EXPECT_EQ(Cell(1, 1), "Hel");
    EXPECT_EQ(Cell(3, 1), "world");
    EXPECT_EQ(state.Lyrics.EditLyrics[2].Time, 0.7);

    QMenu* exports = editor->Menu(QStringLiteral("MenuLyricsExport"));
    ASSERT_NE(exports, nullptr);
    // Line-timed formats keep the lines, the others every syllable.
    const std::map<QString, std::pair<QString, int>> expected = {{"ExportLrc", {"lrc", 2}},
                                                                 {"ExportEnhancedLrc", {"lrc", 3}},
                                                                 {"ExportUltraStar", {"txt", 3}},
                                                                 {"ExportAss", {"ass", 3}},
                                                                 {"ExportSrt", {"srt", 2}}};
    ASSERT_EQ(exports->actions().size(), 5);
    for (QAction* action : exports->actions()) {
        const QString key = action->data().toString();
        const auto& [suffix, rows] = expected.at(key);
        dialogs.files = {dir.filePath(key)};
        action->trigger();
        const QString out = dir.filePath(key + u'.' + suffix);
        ASSERT_TRUE(QFile::exists(out)) << "the format's own extension: " << out.toStdString();
        dialogs.files = {out};
        editor->Command(QStringLiteral("MenuLyricsImport"));
        EXPECT_EQ(editor->Document().Count(), rows) << key.toStdString();
        EXPECT_NEAR(state.Lyrics.EditLyrics[1].Time, 0.5, 0.01) << key.toStdString();
        dialogs.files = {ultraStar};
        editor->Command(QStringLiteral("MenuLyricsImport"));
    }
    EXPECT_EQ(dialogs.suggestions.first(), dir.filePath("song.lrc")) << "named after the song";
    EXPECT_TRUE(dialogs.messages.isEmpty()) << dialogs.messages.join('\n').toStdString();
}

TEST_F(EditorWindow, ChangedRowsAreNeverLostWithoutTheQuestion)
{
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), dir.path());
    ASSERT_TRUE(transport.OpenSong(mp3, true));
    OpenEditor();
    EXPECT_FALSE(editor->Document().Modified()) << "the song as it was opened";
    EXPECT_TRUE(editor->close()) << "nothing changed: no question";
    EXPECT_TRUE(dialogs.questions.isEmpty());

    OpenEditor();
    Split(QStringLiteral("sing along"));
    dialogs.saveChoice = SaveChoice::Cancel;
    EXPECT_FALSE(editor->close());
    EXPECT_TRUE(state.EditorOpen) << "Cancel keeps the window";
    editor->Command(QStringLiteral("MenuExit"));
    EXPECT_TRUE(state.EditorOpen);
    EXPECT_EQ(dialogs.questions.size(), 2);

    // Another lyrics file: Cancel keeps the rows, Don't save opens it.
    std::vector<LyricItem> other(2);
    other[1].Text = QStringLiteral("other");
    ASSERT_TRUE(SaveLrsFile(dir.filePath("other.lrs"), other, {PictureItem{}}));
    dialogs.files = {dir.filePath("other.lrs")};
    editor->Command(QStringLiteral("MenuLyricsOpen"));
    EXPECT_EQ(editor->Document().Count(), 2);
    EXPECT_EQ(dialogs.files.size(), 1u) << "no file was asked for";

    // Save writes into the song, then the window closes.
    dialogs.saveChoice = SaveChoice::Save;
    EXPECT_TRUE(editor->close());
    EXPECT_FALSE(state.EditorOpen);
    EXPECT_TRUE(ReadFileBytes(mp3).contains("#End Songweaver"));
    EXPECT_TRUE(editor->StatusMessage().contains(QFileInfo(mp3).fileName())) << "the status bar says where";
}

TEST_F(EditorWindow, OpenedFilesAreHeldToTheirLimitsWithTheMessageOf600kB)
{
    OpenEditor();
    // Texts of an exact size; a lyrics file is many syllables, its last one stretched to fit.
    auto text = [this](const QString& name, const QByteArray& head, qint64 size) {
        QByteArray bytes = head + QByteArray(size - head.size(), 'x');
        WriteFileBytes(dir.filePath(name), bytes);
        return dir.filePath(name);
    };
    auto lyrics = [this](const QString& name, qint64 size) {
        const QByteArray head = "#Songweaver\r\n#ARTIST=A\r\n#TITLE=T\r\n";
        // One syllable a line, as a long song has them.
        const QByteArray tail = "\r\n#End Songweaver\r\n";
        QByteArray bytes = head;
        while (bytes.size() + 40 + tail.size() < size)
            bytes += "[1.125]la \r\n";
        bytes += "[2]" + QByteArray(size - bytes.size() - 3 - tail.size(), 'o') + tail;
        WriteFileBytes(dir.filePath(name), bytes);
        return dir.filePath(name);
    };
    dialogs.files = {lyrics("limit.lrs", 300000), lyrics("over.lrs", 300001), text("limit.txt", "words", 500000),
                     text("over.txt", "other", 500001), text("mid.txt", "middle", 400000), lyrics("mid.lrs", 400000)};
    ASSERT_EQ(QFileInfo(dir.filePath("limit.lrs")).size(), 300000);
    ASSERT_EQ(QFileInfo(dir.filePath("over.lrs")).size(), 300001);

    editor->Command(QStringLiteral("MenuLyricsOpen"));
    const int rows = editor->Document().Count();
    EXPECT_GT(rows, 10000);
    EXPECT_EQ(editor->StatusText(), dir.filePath("limit.lrs"));
    editor->Command(QStringLiteral("MenuLyricsOpen"));
    editor->Command(QStringLiteral("MenuTextOpen"));
    EXPECT_TRUE(editor->LyricsBox().toPlainText().startsWith("words"));
    editor->Command(QStringLiteral("MenuTextOpen"));
    EXPECT_TRUE(editor->LyricsBox().toPlainText().startsWith("words"));
    editor->Command(QStringLiteral("MenuTextOpen"));
    EXPECT_TRUE(editor->LyricsBox().toPlainText().startsWith("middle"));
    editor->Command(QStringLiteral("MenuLyricsOpen"));
    EXPECT_EQ(dialogs.messages, QStringList(3, QStringLiteral("critical: The file cannot be greater than 600 kB.")));
    EXPECT_EQ(dialogs.titles.first(), "SWV: Open lyrics");
    EXPECT_EQ(dialogs.filters.first(), "Lyrics files (*.lrs);;All files (*)");
    EXPECT_EQ(dialogs.filters[2], "Text files (*.txt);;All files (*)");

    // A cancelled dialog changes nothing; a damaged block leaves the document as it was.
    editor->Command(QStringLiteral("MenuLyricsOpen"));
    WriteFileBytes(dir.filePath("bad.lrs"), "#Songweaver\r\n#LAYOUT=2\r\n[1]la \r\n#End Songweaver\r\n");
    dialogs.files = {dir.filePath("bad.lrs")};
    dialogs.messages.clear();
    editor->Command(QStringLiteral("MenuLyricsOpen"));
    EXPECT_EQ(dialogs.messages, QStringList{"critical: Lyrics format doesn't seem to be valid.\r\nLine 2: #LAYOUT=2"});
    EXPECT_EQ(editor->Document().Count(), rows);
    EXPECT_EQ(editor->StatusText(), dir.filePath("limit.lrs"));
}

TEST_F(EditorWindow, TextAndLyricsFilesAreSavedUnderTheNamesChosen)
{
    OpenEditor();
    state.EditorFile = dir.filePath("song.mp3");
    Split(QStringLiteral("la la\r\nlo"));
    editor->Document().SetTime(1, 1.25);
    editor->Document().SetTime(3, 61.5);

    dialogs.files = {dir.filePath("words"), dir.filePath("words.text"), dir.filePath("timed")};
    editor->Command(QStringLiteral("MenuTextSave"));
    editor->Command(QStringLiteral("MenuTextSave"));
    EXPECT_EQ(dialogs.titles[0], "SWV:") << "the save-text title has always been the prefix alone";
    EXPECT_EQ(dialogs.suggestions[0], dir.filePath("song.txt"));
    EXPECT_EQ(ReadFileBytes(dir.filePath("words.txt")), "la la\r\nlo\r\n");
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("words.text"))) << "a chosen extension stays";

    editor->Command(QStringLiteral("MenuSaveAs"));
    EXPECT_EQ(dialogs.titles[2], "SWV: Save lyrics");
    const QByteArray saved = ReadFileBytes(dir.filePath("timed.lrs"));
    EXPECT_TRUE(saved.startsWith("#Songweaver"));
    EXPECT_TRUE(saved.contains("[1.25]la [0]la \r\n[61.5]lo")) << saved.toStdString();

    // What was saved opens again as it was.
    dialogs.files = {dir.filePath("timed.lrs")};
    editor->Command(QStringLiteral("MenuLyricsOpen"));
    ASSERT_EQ(editor->Document().Count(), 3);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(3).Time, 61.5);
    EXPECT_TRUE(editor->Document().Entry(2).LineEnd);
}

TEST_F(EditorWindow, ALyricsFileTakesTheSongsArtistAndTitleWhenTheEditorHasNone)
{
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), dir.path());
    ASSERT_TRUE(transport.OpenSong(mp3, false));
    OpenEditor();
    Split(QStringLiteral("la la"));
    dialogs.files = {dir.filePath("tagged.lrs"), dir.filePath("own.lrs")};
    editor->Command(QStringLiteral("MenuSaveAs"));
    const QByteArray tagged = ReadFileBytes(dir.filePath("tagged.lrs"));
    EXPECT_TRUE(tagged.contains("#ARTIST=Artist One\r\n")) << tagged.toStdString();
    EXPECT_TRUE(tagged.contains("#TITLE=Title One\r\n"));

    state.Lyrics.EditLyrics[0].Title = QStringLiteral("My Title");
    editor->Command(QStringLiteral("MenuSaveAs"));
    const QByteArray own = ReadFileBytes(dir.filePath("own.lrs"));
    EXPECT_TRUE(own.contains("#TITLE=My Title\r\n")) << "the editor's own title wins";
    EXPECT_TRUE(own.contains("#ARTIST=Artist One\r\n"));
}

TEST_F(EditorWindow, SavedIntoTheSongThatPlaysTheLyricsStayBeforeTheTagAndPlayBack)
{
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), dir.path());
    const QByteArray tag = ReadFileBytes(mp3).right(128);
    ASSERT_TRUE(tag.startsWith("TAG"));
    ASSERT_TRUE(transport.OpenSong(mp3, true));
    Play(0.3);
    OpenEditor();
    Split(QStringLiteral("sing along"));
    editor->CaptureLine();

    editor->Command(QStringLiteral("MenuSave"));
    QTRY_VERIFY(ReadFileBytes(mp3).contains("#End Songweaver"));
    const QByteArray once = ReadFileBytes(mp3);
    EXPECT_EQ(once.right(128), tag) << "the ID3v1 tag stays last, byte for byte";
    EXPECT_NE(state.Session, nullptr) << "the song plays on after the save";
    EXPECT_EQ(state.Session->GetState(), SongSession::Running);
    EXPECT_TRUE(dialogs.messages.isEmpty()) << dialogs.messages.join(u'|').toStdString();

    // Stamped and saved again: one block, not two.
    Play(0.2);
    editor->List().SelectRow(1);
    editor->CaptureLine();
    editor->Command(QStringLiteral("MenuSave"));
    QTRY_VERIFY(ReadFileBytes(mp3) != once);
    EXPECT_EQ(ReadFileBytes(mp3).count("#Songweaver"), 1);
    EXPECT_EQ(ReadFileBytes(mp3).right(128), tag);

    // The next time the song opens, its words come from the file, not from the editor.
    editor->Command(QStringLiteral("MenuNew"));
    transport.CloseSong();
    state.Lyrics.PlayLyrics.assign(1, LyricItem{});
    ASSERT_TRUE(transport.OpenSong(mp3, false));
    ASSERT_EQ(state.Lyrics.PlayLyrics.size(), 3u);
    EXPECT_EQ(state.Lyrics.PlayLyrics[1].Text, "sing ");
}

TEST_F(EditorWindow, SavedTwiceIntoAKarFileBothBlocksStay)
{
    const QString kar = CopyFixture(MediaFixture("song.kar"), dir.path());
    ASSERT_TRUE(transport.OpenSong(kar, false));
    OpenEditor();
    ASSERT_EQ(editor->StatusText(), kar);
    Split(QStringLiteral("first words"));
    editor->Command(QStringLiteral("MenuSave"));
    QTRY_COMPARE(ReadFileBytes(kar).count("#End Songweaver"), 1);
    Split(QStringLiteral("second words"));
    editor->Command(QStringLiteral("MenuSave"));
    QTRY_COMPARE(ReadFileBytes(kar).count("#End Songweaver"), 2);
    EXPECT_TRUE(ReadFileBytes(kar).startsWith("MThd")) << "the MIDI data is untouched";
}

TEST_F(EditorWindow, OpenedInMidSongItTakesTheSongsLyricsAndARowChosenSeeksThere)
{
    const QString lrs = dir.filePath("song.lrs");
    WriteFileBytes(lrs, "#Songweaver\r\n#ARTIST=A\r\n#TITLE=T\r\n[1]one [4.5]two \r\n[7.25]three \r\n"
                        "#End Songweaver\r\n");
    ASSERT_TRUE(transport.OpenSong(song, true));
    Play(0.5);
    OpenEditor();
    ASSERT_EQ(editor->Document().Count(), 3);
    EXPECT_EQ(Cell(2, 0), "00:04,500");
    EXPECT_EQ(editor->LyricsBox().toPlainText(), "one two \nthree ");

    editor->List().SelectRow(2);
    QTest::mouseClick(editor->List().viewport(), Qt::LeftButton, {},
                      editor->List().visualRect(editor->List().model()->index(1, 1)).center());
    EXPECT_NEAR(Position(), 4.5, 0.05);
    EXPECT_DOUBLE_EQ(editor->CorrectBox().value(), 4.5);
    Picture(QStringLiteral("editor-midsong"));

    // Another song in the player: rows are no longer its own, and choosing one seeks nothing.
    const QString other = WriteRampWav(dir.filePath("other.wav"), 48000 * 10);
    ASSERT_TRUE(transport.OpenSong(other, true));
    editor->List().SelectRow(3);
    QTest::keyClick(&editor->List(), Qt::Key_Down);
    EXPECT_LT(Position(), 1.0);
}

TEST_F(EditorWindow, TheMenusStandInTheirPlacesAndTheWindowKeepsItsSize)
{
    OpenEditor();
    auto keys = [this](const char* menu) {
        QStringList found;
        for (QAction* action : editor->Menu(QString::fromLatin1(menu))->actions())
            found << (action->isSeparator() ? QStringLiteral("-") : action->data().toString());
        return found;
    };
    EXPECT_EQ(keys("MenuFile"), (QStringList{"MenuNew", "MenuFileOpen", "MenuLyricsOpen", "MenuLyricsImport", "MenuLyricsExport", "-",
                                             "MenuSave", "MenuSaveAs", "-", "MenuTextOpen", "MenuTextSave", "-",
                                             "MenuPrint", "MenuUpdate", "-", "MenuExit"}));
    EXPECT_EQ(keys("MenuEdit"), (QStringList{"MenuUndo", "MenuRedo", "-", "MenuCut", "MenuCopy", "MenuPaste",
                                             "MenuDelete", "MenuSelectAll", "MenuRemoveAll"}));
    EXPECT_EQ(keys("MenuKaraoke"), (QStringList{"MenuDetails", "-", "MenuSplitText", "MenuSplitWords", "LyricsLanguage",
                                                "MenuMergeText", "-", "MenuHeldTaps", "MenuSnapOnsets", "-", "MenuInsert",
                                                "MenuAddNew", "-", "MenuClear"}));
    EXPECT_EQ(editor->List().model()->headerData(2, Qt::Horizontal).toString(), "Line break");

    editor->resize(300, 200);
    EXPECT_GE(editor->width(), 567);
    EXPECT_GE(editor->height(), 320);
    editor->move(40, 50);
    editor->close();
    EXPECT_FALSE(state.EditorOpen);
    const auto kept = ReadWindowPosition(windows.store, QStringLiteral("editor position"));
    ASSERT_TRUE(kept);
    EXPECT_EQ(*kept, editor->geometry());

    // Opened again, it stands where it was left.
    editor->move(300, 300);
    editor->Open();
    EXPECT_EQ(editor->pos(), QPoint(40, 50));
}

TEST_F(EditorWindow, TheMenusShowTheirKeysAndTheKeysRunThemAnywhereInTheWindow)
{
    OpenEditor();
    const auto shown = [this](const char* menu, const char* item) {
        for (QAction* action : editor->Menu(QString::fromLatin1(menu))->actions())
            if (action->data().toString() == QLatin1String(item))
                return action->text().section(u'\t', 1);
        return QString();
    };
    EXPECT_EQ(shown("MenuFile", "MenuNew"), "Ctrl+N");
    EXPECT_EQ(shown("MenuFile", "MenuSave"), "Ctrl+S");
    EXPECT_EQ(shown("MenuFile", "MenuSaveAs"), "Ctrl+Shift+S");
    EXPECT_EQ(shown("MenuEdit", "MenuCopy"), "Ctrl+C");
    EXPECT_EQ(shown("MenuEdit", "MenuDelete"), "Delete");
    EXPECT_EQ(shown("MenuKaraoke", "MenuAddNew"), "F12");
    EXPECT_EQ(shown("MenuFile", "MenuUpdate"), "") << "a command without a key shows none";

    Split(QStringLiteral("la la"));
    dialogs.files = {dir.filePath("keyed.lrs")};
    QTest::keyClick(&editor->LyricsBox(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("keyed.lrs"))) << "Save as from the text box";
    dialogs.saveChoice = SaveChoice::Discard;
    QTest::keyClick(&editor->List(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(editor->Document().Count(), 0) << "New from the list";
}

TEST_F(EditorWindow, AFirstOpeningStandsBesideThePlayerNotOverIt)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    windows.player.move(screen.right() - windows.player.width(), screen.bottom() - windows.player.height());
    OpenEditor();
    EXPECT_FALSE(editor->frameGeometry().intersects(windows.player.geometry()));
    EXPECT_TRUE(screen.contains(editor->frameGeometry()));
}

TEST_F(EditorWindow, TheVersionCheckIsAPageThatPostsTheVersionToTheAddressOfTheSettings)
{
    OpenEditor();
    QCoreApplication::setApplicationVersion(QStringLiteral("2.5.1"));
    windows.store.RegWriteString(QStringLiteral("version address"), QStringLiteral("https://example.org/version.php"));
    editor->Command(QStringLiteral("MenuVersion"));
    ASSERT_EQ(dialogs.browsed.size(), 1);
    EXPECT_TRUE(dialogs.browsed[0].endsWith("/swv-check.html"));
    const QByteArray page = ReadFileBytes(dialogs.browsed[0]);
    EXPECT_TRUE(page.startsWith("<form name=go method=post action=https://example.org/version.php>\r\n"
                                "<input type=hidden name=board value=2.5.1>\r\n</form>\r\n"));
    EXPECT_TRUE(page.contains("document.go.submit();"));
    QFile::remove(dialogs.browsed[0]);
    QCoreApplication::setApplicationVersion(QString());
}

TEST_F(EditorWindow, SyllablesComeFromTheLyricsLanguagesDictionary)
{
    OpenEditor();
    QMenu* languages = editor->Menu(QStringLiteral("LyricsLanguage"));
    ASSERT_TRUE(languages);
    QStringList offered, checked;
    for (QAction* action : languages->actions()) {
        offered << action->data().toString();
        if (action->isChecked())
            checked << action->data().toString();
    }
    EXPECT_TRUE(offered.contains("en") && offered.contains("pl"));
    EXPECT_EQ(checked, QStringList{"en"}) << "the interface's language at first";

    editor->LyricsBox().setPlainText(QStringLiteral("Wonderful day"));
    editor->Command(QStringLiteral("MenuSplitText"));
    EXPECT_EQ(editor->Document().Count(), 4);
    EXPECT_EQ(editor->Document().Entry(3).Text, "ful ");

    for (QAction* action : languages->actions())
        if (action->data().toString() == u"pl")
            action->trigger();
    editor->LyricsBox().setPlainText(QStringLiteral("Wlazł kotek"));
    editor->Command(QStringLiteral("MenuSplitText"));
    EXPECT_EQ(editor->Document().Count(), 3) << "Wlazł ko-tek";
    EXPECT_TRUE(dialogs.messages.isEmpty());

    qputenv("SONGWEAVER_HYPHEN_DIR", dir.path().toUtf8());
    editor->Command(QStringLiteral("MenuSplitText"));
    qunsetenv("SONGWEAVER_HYPHEN_DIR");
    EXPECT_EQ(editor->Document().Count(), 2) << "words, when the language has no dictionary";
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_TRUE(dialogs.messages[0].contains("No syllable dictionary is installed for this language"));
}

TEST_F(EditorWindow, UndoAndRedoTakeBackEachChangeAndSayWhatItWas)
{
    transport.OpenFromCommandLine(song);
    OpenEditor();
    QAction* undo = nullptr;
    for (QAction* action : editor->Menu(QStringLiteral("MenuEdit"))->actions())
        if (action->data().toString() == u"MenuUndo")
            undo = action;
    ASSERT_TRUE(undo);
    EXPECT_FALSE(undo->isEnabled()) << "nothing to undo in a document just opened";
    EXPECT_EQ(undo->text(), "&Undo\tCtrl+Z");

    Split(QStringLiteral("One two three"));
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text(), "&Undo split text into words\tCtrl+Z");
    Play(0.6);
    Key(Qt::Key_Space);
    Play(0.4);
    Key(Qt::Key_Space);
    EXPECT_EQ(undo->text(), "&Undo capture\tCtrl+Z");
    const double first = editor->Document().Entry(1).Time;
    ASSERT_GT(editor->Document().Entry(2).Time, 0);

    // A held correction is one step however many ticks it ran.
    editor->CorrectTimer().setInterval(3600 * 1000);
    editor->List().setFocus();
    editor->List().SelectRow(1);
    QTest::keyPress(&editor->List(), Qt::Key_Plus, Qt::KeypadModifier);
    for (int tick = 0; tick < 12; ++tick)
        editor->CorrectionTick();
    QTest::keyRelease(&editor->List(), Qt::Key_Plus, Qt::KeypadModifier);
    ASSERT_NE(editor->Document().Entry(1).Time, first);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(1).Time, first) << "one undo takes the whole correction back";

    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor->Document().Entry(2).Time, 0) << "then the second tap";
    QTest::keyClick(&editor->LyricsBox(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_GT(editor->Document().Entry(2).Time, 0) << "redone from anywhere in the window";
    Key(Qt::Key_Z, Qt::ControlModifier);
    Key(Qt::Key_Z, Qt::ControlModifier);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor->Document().Count(), 0) << "back to the document as opened";
    Key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(editor->Document().Count(), 3);

    dialogs.files = {dir.filePath("kept.lrs")};
    editor->Command(QStringLiteral("MenuSaveAs"));
    EXPECT_TRUE(undo->isEnabled()) << "saving keeps the steps";
}

TEST_F(EditorWindow, AFastVerseTappedAtHalfSpeedLandsOnTheSameSongSeconds)
{
    transport.OpenFromCommandLine(song);
    OpenEditor();
    Split(QStringLiteral("one two three"));
    Key(Qt::Key_F6);
    EXPECT_DOUBLE_EQ(KnobTempo(state), 0.5);
    EXPECT_TRUE(editor->findChild<QAction*>(QStringLiteral("Speed50"))->isChecked());

    // Each syllable is tapped a quarter of the singer's second after it is heard.
    Play(0.5);  // the change is heard within a tenth of a second
    const double heard = Position();
    Play(0.25);
    EXPECT_NEAR(Position() - heard, 0.125, 0.011) << "half the song's time passes";
    Key(Qt::Key_Space);
    EXPECT_NEAR(editor->Document().Entry(1).Time, heard, 0.011);

    editor->findChild<QAction*>(QStringLiteral("Speed100"))->trigger();
    EXPECT_DOUBLE_EQ(KnobTempo(state), 1.0);
    Play(0.3);  // the change is heard within a tenth of a second
    const double again = Position();
    Play(0.25);
    Key(Qt::Key_Space);
    EXPECT_NEAR(editor->Document().Entry(2).Time, again, 0.011);

    Key(Qt::Key_F7);
    EXPECT_NEAR(KnobTempo(state), 0.75, 0.01) << "the knob's nearest step";
}

TEST_F(EditorWindow, AStampDraggedOnTheWaveformStaysBetweenItsNeighboursAndUndoes)
{
    // A tone that swells and fades, so the waveform has a shape to show.
    const QString tone = dir.filePath(QStringLiteral("tone.wav"));
    ASSERT_TRUE(RunProgram("sox", {"-n", "-r", "48000", "-c", "2", tone, "synth", "10", "sine", "300", "tremolo", "0.7", "90"}));
    transport.OpenFromCommandLine(tone);
    OpenEditor();
    Split(QStringLiteral("one two three"));
    Play(1.0);
    Key(Qt::Key_Space);
    Play(1.0);
    Key(Qt::Key_Space);
    Play(1.0);
    Key(Qt::Key_Space);
    auto* wave = editor->findChild<WaveformStrip*>(QStringLiteral("Waveform"));
    ASSERT_TRUE(wave);
    wave->resize(1000, 80);
    ASSERT_TRUE(QTest::qWaitFor([wave] { return wave->HasPeaks(); }, 10000)) << "the song's peaks come from the worker";
    QTest::qWait(100);  // the marks at the waveform's next frame
    EXPECT_NEAR(wave->VisibleSeconds(), 10.0, 0.01) << "a short song shows whole";

    const double first = editor->Document().Entry(1).Time, second = editor->Document().Entry(2).Time,
                 third = editor->Document().Entry(3).Time;
    const auto drag = [wave](double from, double to) {
        QTest::mousePress(wave, Qt::LeftButton, {}, QPoint(wave->XOf(from), 40));
        QTest::mouseMove(wave, QPoint(wave->XOf(to), 40));
        QTest::mouseRelease(wave, Qt::LeftButton, {}, QPoint(wave->XOf(to), 40));
    };
    drag(second, second + 0.3);
    EXPECT_NEAR(editor->Document().Entry(2).Time, second + 0.3, 0.011);
    drag(editor->Document().Entry(2).Time, third + 2.0);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(2).Time, third) << "never past the row below";
    EXPECT_EQ(editor->Document().Entry(1).Time, first) << "no other row moved";

    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NEAR(editor->Document().Entry(2).Time, second + 0.3, 0.011) << "each drag is one step";
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(2).Time, second);

    // A click away from the marks plays the song from there.
    Picture(QStringLiteral("editor-waveform"));
    const QImage plain = wave->grab().toImage();
    wave->SetVoiceBand(true);
    EXPECT_NE(wave->grab().toImage(), plain) << "the voice band shows over the wave";
    Picture(QStringLiteral("editor-waveform-voice"));
    QTest::mouseClick(wave, Qt::LeftButton, {}, QPoint(wave->XOf(6.0), 40));
    EXPECT_NEAR(Position(), 6.0, 0.05);
}

TEST_F(EditorWindow, SnapToOnsetsMovesTheSelectedStampsAndOneUndoTakesItBack)
{
    const QString bursts = dir.filePath(QStringLiteral("bursts.wav"));
    ASSERT_TRUE(RunProgram("sox", {"-n", "-r", "48000", "-c", "2", bursts, "synth", "1", "sine", "0", ":", "synth", "0.3",
                                   "sine", "440", ":", "synth", "0.7", "sine", "0", ":", "synth", "0.3", "sine", "660",
                                   ":", "synth", "1", "sine", "0"}));
    transport.OpenFromCommandLine(bursts);
    OpenEditor();
    Split(QStringLiteral("one two"));
    Play(1.30);  // heard at 1.05, tapped a quarter second later
    Key(Qt::Key_Space);
    Play(1.0);   // heard at 2.05
    Key(Qt::Key_Space);
    const double first = editor->Document().Entry(1).Time, second = editor->Document().Entry(2).Time;
    ASSERT_NEAR(first, 1.05, 0.02);

    QTest::qWait(50);  // the waveform takes up the song
    editor->List().selectAll();
    editor->Command(QStringLiteral("MenuSnapOnsets"));
    EXPECT_NEAR(editor->Document().Entry(1).Time, 1.0, 0.03);
    EXPECT_NEAR(editor->Document().Entry(2).Time, 2.0, 0.03);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(editor->Document().Entry(1).Time, first) << "one undo takes the whole snap back";
    EXPECT_DOUBLE_EQ(editor->Document().Entry(2).Time, second);
}

TEST_F(EditorWindow, HeldTapsMarkEachSyllablesStartAndLengthAsOneStep)
{
    transport.OpenFromCommandLine(song);
    OpenEditor();
    Split(QStringLiteral("long note"));
    QAction* held = nullptr;
    for (QAction* action : editor->Menu(QStringLiteral("MenuKaraoke"))->actions())
        if (action->data().toString() == u"MenuHeldTaps")
            held = action;
    ASSERT_TRUE(held && held->isCheckable());
    held->trigger();

    Play(1.0);
    const double pressed = Position();
    QTest::keyPress(&editor->List(), Qt::Key_Space);
    Play(0.6);
    QTest::keyRelease(&editor->List(), Qt::Key_Space);
    EXPECT_NEAR(editor->Document().Entry(1).Time, pressed - 0.25, 0.011);
    EXPECT_NEAR(editor->Document().Entry(1).Length, 0.6, 0.021);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor->Document().Entry(1).Time, 0) << "the start and the length are one step";
    EXPECT_EQ(editor->Document().Entry(1).Length, 0);

    held->trigger();
    Key(Qt::Key_Space);
    EXPECT_EQ(editor->Document().Entry(1).Length, 0) << "a plain tap measures nothing";
}
