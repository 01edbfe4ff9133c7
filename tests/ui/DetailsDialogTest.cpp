// The lyrics details dialog and the picture details dialog on the offscreen platform: what they
// show of a song, what OK, Cancel and Clear do, the aspect lock, the picture rows, the picture
// dialog's messages and its preview; and the dialog opened from the editor while a song plays.

#include "core/Colors.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "SessionWindows.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"
#include "ui/editor/DetailsDialog.h"
#include "ui/editor/Editor.h"
#include "ui/editor/PictureDialog.h"
#include "ui/kit/Pickers.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

class DetailsWindow : public testing::Test {
protected:
    DetailsWindow()
    {
        state.Language.LoadTable(false);
        state.Theme = std::make_unique<ThemeClass>(store, ThemeEnvironment{}, state.MonitorList);
        red = Solid("red.png", {160, 90}, Qt::red);
        blue = Solid("blue.png", {90, 90}, Qt::blue);
        LyricItem& header = state.Lyrics.EditLyrics[0];
        header.Artist = QStringLiteral("Traditional");
        header.Title = QStringLiteral("Twinkle");
        header.ForeColor = RGB(10, 20, 30);
        header.ImageLayout = 1;
        state.Lyrics.EditLyrics.push_back(LyricItem{QStringLiteral("Twinkle "), QStringLiteral("Twinkle "), 1.5});
        state.Lyrics.EditPictures = {PictureItem{}, {QStringLiteral("red.png"), 5, {}, {}, 0},
                                     {blue, 70, QStringLiteral("Wipe Side"), QStringLiteral("Left"), 5}};
    }

    QString Solid(const char* name, QSize size, Qt::GlobalColor colour)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        const QString path = dir.filePath(QString::fromLatin1(name));
        image.save(path);
        return path;
    }

    std::unique_ptr<DetailsDialog> Open()
    {
        auto dialog = std::make_unique<DetailsDialog>(state.Lyrics, *state.Theme, state.Language, dialogs, dir.path());
        dialog->show();
        return dialog;
    }

    template <typename T>
    static T* Control(QWidget& dialog, const char* name)
    {
        T* control = dialog.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(control, nullptr) << name;
        return control;
    }

    static void Capture(QWidget& widget, const QString& name)
    {
        const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
        if (!folder.isEmpty())
            widget.grab().save(folder + u'/' + name + QStringLiteral(".png"));
    }

    QTemporaryDir dir;
    MemoryStore store;
    PlayerState state;
    ScriptedDialogs dialogs;
    QString red;
    QString blue;
};

} // namespace

TEST_F(DetailsWindow, TheControlsShowTheSongAndOKWritesItBackFollowingTheSettings)
{
    auto dialog = Open();
    const ThemeClass& theme = *state.Theme;
    EXPECT_EQ(Control<QLineEdit>(*dialog, "xArtist")->text(), "Traditional");
    EXPECT_EQ(dialog->ShownColor(0), ColorFromWin32(RGB(10, 20, 30)));
    EXPECT_EQ(dialog->ShownColor(1), ColorFromWin32(theme.LyricsHighlightColor)) << "-1 shows the setting";
    for (const char* option : {"AL0", "AL1", "AL2"})
        EXPECT_FALSE(Control<QRadioButton>(*dialog, option)->isChecked()) << "the song has no alignment of its own";
    auto* list = Control<QTreeWidget>(*dialog, "KARList");
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->text(0), "00:05");
    EXPECT_EQ(list->topLevelItem(1)->text(0), "01:10");
    EXPECT_EQ(list->topLevelItem(1)->text(2), "Wipe Side, Left");
    EXPECT_TRUE(Control<QRadioButton>(*dialog, "SizeFit")->isChecked());
    EXPECT_FALSE(Control<QSpinBox>(*dialog, "SizeX")->isEnabled()) << "fitted: no size to set";
    Control<QRadioButton>(*dialog, "SizeCustom")->click();
    EXPECT_TRUE(Control<QSpinBox>(*dialog, "SizeX")->isEnabled());
    EXPECT_TRUE(Control<QRadioButton>(*dialog, "ALG1")->isEnabled());
    Capture(*dialog, QStringLiteral("details-general"));
    Control<QTabWidget>(*dialog, "TB")->setCurrentIndex(1);
    Capture(*dialog, QStringLiteral("details-pictures"));

    // The text colour picked back to the setting's, outline 2 picked anew, the text on top.
    dialogs.colors = {ColorFromWin32(theme.LyricsColor), QColor(12, 200, 40)};
    dialog->ChooseColor(0);
    dialog->ChooseColor(3);
    EXPECT_EQ(dialogs.offered.front(), ColorFromWin32(RGB(10, 20, 30)));
    Control<QRadioButton>(*dialog, "AL1")->click();
    Control<QRadioButton>(*dialog, "ALG2")->click();
    Control<QSpinBox>(*dialog, "ImOffsetY")->setValue(-12);
    Control<QLineEdit>(*dialog, "xTitle")->setText(QStringLiteral("Twinkle, Twinkle"));
    Control<QPushButton>(*dialog, "OK")->click();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);

    const LyricItem& header = state.Lyrics.EditLyrics[0];
    EXPECT_EQ(header.ForeColor, -1);
    EXPECT_EQ(header.OutlineColor2, RGB(12, 200, 40));
    EXPECT_EQ(header.HighlightColor, -1);
    EXPECT_EQ(header.Alignment, 1) << "the option at the top places the text at the top";
    EXPECT_EQ(header.Title, "Twinkle, Twinkle");
    EXPECT_EQ(header.ImageLayout, 2);
    EXPECT_EQ(header.ImagePosition, 2);
    EXPECT_EQ(header.ImageOffsetY, -12);
    EXPECT_EQ(state.Lyrics.EditPictures.size(), 3u);
}

TEST_F(DetailsWindow, CancelChangesNothingAndClearLeavesTheLines)
{
    const std::vector<PictureItem> pictures = state.Lyrics.EditPictures;
    {
        auto dialog = Open();
        auto* list = Control<QTreeWidget>(*dialog, "KARList");
        list->setCurrentItem(list->topLevelItem(0));
        Control<QPushButton>(*dialog, "RemPic")->click();
        EXPECT_EQ(list->topLevelItemCount(), 1);
        Control<QPushButton>(*dialog, "bClear")->click();
        Control<QPushButton>(*dialog, "Anuluj")->click();
        EXPECT_EQ(dialog->result(), QDialog::Rejected);
    }
    EXPECT_EQ(state.Lyrics.EditLyrics[0].Artist, "Traditional");
    EXPECT_EQ(state.Lyrics.EditLyrics[0].ForeColor, RGB(10, 20, 30));
    ASSERT_EQ(state.Lyrics.EditPictures.size(), pictures.size());
    EXPECT_EQ(state.Lyrics.EditPictures[1].File, pictures[1].File);

    auto dialog = Open();
    Control<QPushButton>(*dialog, "bClear")->click();
    EXPECT_TRUE(Control<QLineEdit>(*dialog, "xArtist")->text().isEmpty());
    EXPECT_TRUE(Control<QLineEdit>(*dialog, "PicPath")->text().isEmpty());
    EXPECT_EQ(Control<QTreeWidget>(*dialog, "KARList")->topLevelItemCount(), 0);
    EXPECT_EQ(dialog->ShownColor(0), ColorFromWin32(state.Theme->LyricsColor));
    dialog->Accept();
    EXPECT_TRUE(state.Lyrics.EditLyrics[0].Artist.isEmpty());
    EXPECT_EQ(state.Lyrics.EditLyrics[0].ForeColor, -1);
    EXPECT_EQ(state.Lyrics.EditPictures.size(), 1u);
    ASSERT_EQ(state.Lyrics.EditLyrics.size(), 2u);
    EXPECT_EQ(state.Lyrics.EditLyrics[1].Text, "Twinkle ") << "the lines stay";
}

TEST_F(DetailsWindow, TheAspectLockAndTheLastRowRemovedBringTheSettingsPlacing)
{
    state.Lyrics.EditLyrics[0].ImageLayout = 2;
    state.Theme->ImageSize = 1;
    state.Theme->ImageSizeX = 640;
    state.Theme->ImageSizeY = 480;
    auto dialog = Open();
    auto* width = Control<QSpinBox>(*dialog, "SizeX");
    auto* height = Control<QSpinBox>(*dialog, "SizeY");
    EXPECT_EQ(width->value(), 320);
    Control<QCheckBox>(*dialog, "ASP")->setChecked(true);
    width->setValue(640);
    EXPECT_EQ(height->value(), 480);
    height->setValue(240);
    EXPECT_EQ(width->value(), 320);
    Control<QCheckBox>(*dialog, "ASP")->setChecked(false);
    width->setValue(500);
    EXPECT_EQ(height->value(), 240);

    auto* list = Control<QTreeWidget>(*dialog, "KARList");
    for (int i = 0; i < 2; ++i) {
        list->setCurrentItem(list->topLevelItem(0));
        Control<QPushButton>(*dialog, "RemPic")->click();
    }
    EXPECT_EQ(list->topLevelItemCount(), 0);
    EXPECT_TRUE(Control<QRadioButton>(*dialog, "SizeFit")->isChecked());
    EXPECT_EQ(width->value(), 640);
    EXPECT_EQ(height->value(), 480);
    EXPECT_FALSE(width->isEnabled());
}

TEST_F(DetailsWindow, RowsAreAddedAndEditedThroughThePictureDialogAfterThePictureBefore)
{
    auto dialog = Open();
    std::vector<QImage> before;
    dialog->EditPicture = [&](const PictureItem* row, const QImage& previous) -> std::optional<PictureItem> {
        before.push_back(previous);
        if (!row)
            return PictureItem{blue, 125, QStringLiteral("Poker"), QStringLiteral("Horizontal"), 9};
        PictureItem edited = *row;
        edited.Time = 2;
        return edited;
    };
    dialog->AddPicture();
    auto* list = Control<QTreeWidget>(*dialog, "KARList");
    ASSERT_EQ(list->topLevelItemCount(), 3);
    EXPECT_EQ(list->topLevelItem(2)->text(0), "02:05");
    EXPECT_EQ(before.back().pixelColor(5, 5), QColor(Qt::blue)) << "after the picture at 1:10";

    list->setCurrentItem(list->topLevelItem(0));
    dialog->EditSelectedPicture();
    EXPECT_EQ(list->topLevelItem(0)->text(0), "00:02");
    EXPECT_EQ(before.back(), state.Theme->LyricsPicture()) << "nothing before 0:02: the background picture";
    dialog->Accept();
    ASSERT_EQ(state.Lyrics.EditPictures.size(), 4u);
    EXPECT_EQ(state.Lyrics.EditPictures[1].Time, 2);
    EXPECT_EQ(state.Lyrics.EditPictures[3].Effect, "Poker");
}

TEST_F(DetailsWindow, ThePictureDialogOffersTheTableChecksTheFileAndPreviewsTheTransition)
{
    state.Theme->ImageEffect = QStringLiteral("Wipe Blinds");
    state.Theme->EffectDetail = QStringLiteral("Vertical");
    state.Theme->EffectSpeed = 10;
    QImage before(50, 50, QImage::Format_RGB32);
    before.fill(Qt::red);
    PictureDialog dialog(nullptr, before, *state.Theme, state.Language, dialogs, dir.path());
    dialog.show();
    EXPECT_EQ(dialog.Effect().EffectBox().count(), 24);
    EXPECT_EQ(dialog.Effect().EffectBox().currentText(), "Wipe Blinds") << "a new row starts from the settings";
    EXPECT_EQ(dialog.Effect().DetailBox().currentText(), "Vertical");
    EXPECT_EQ(dialog.Effect().SpeedBox().value(), 10);
    dialog.Effect().EffectBox().setCurrentIndex(0);
    EXPECT_EQ(dialog.Effect().DetailBox().currentText(), "No details");
    EXPECT_FALSE(dialog.Effect().DetailBox().isEnabled());
    dialog.Effect().EffectBox().setCurrentText(QStringLiteral("Custom Checkboard"));
    EXPECT_EQ(dialog.Effect().DetailBox().count(), 4);

    dialog.Accept();
    dialog.FileBox().setText(QStringLiteral("nothing-here.png"));
    dialog.Accept();
    QFile broken(dir.filePath(QStringLiteral("broken.jpg")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("not a picture at all");
    broken.close();
    dialog.FileBox().setText(broken.fileName());
    dialog.Accept();
    EXPECT_EQ(dialogs.messages, (QStringList{"critical: Picture file doesn't exist.", "critical: Picture file doesn't exist.",
                                             "critical: Incorrect picture file format."}));
    EXPECT_NE(dialog.result(), QDialog::Accepted);

    dialog.FileBox().setText(QStringLiteral("blue.png"));  // beside the lyrics
    dialog.TimeBox().setValue(42);
    dialog.Effect().DetailBox().setCurrentText(QStringLiteral("Bottom"));
    dialog.Effect().SpeedBox().setValue(10);
    dialog.Preview();
    EXPECT_TRUE(dialog.PreviewBox().Running());
    Capture(dialog, QStringLiteral("picture-details"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.PreviewBox().Running(); }, 5000));
    const QImage& shown = dialog.PreviewBox().Shown();
    EXPECT_EQ(shown.pixelColor(shown.width() / 2, shown.height() / 2), QColor(Qt::blue)) << "ends on the new picture";
    EXPECT_EQ(shown.pixelColor(2, 2), QColor(Qt::black)) << "fitted, keeping its shape";

    dialog.Accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const PictureItem picture = dialog.Picture();
    EXPECT_EQ(picture.File, "blue.png");
    EXPECT_EQ(picture.Time, 42);
    EXPECT_EQ(picture.Effect, "Custom Checkboard");
    EXPECT_EQ(picture.Detail, "Bottom");
    EXPECT_EQ(picture.Speed, 10);
}

TEST_F(DetailsWindow, AcceptedFromTheEditorWhileTheSongPlaysTheDisplayTakesItAtOnce)
{
    Journal journal;
    SessionWindows windows{state, journal};
    StartManualEngine(state);
    const QString song = WriteRampWav(dir.filePath(QStringLiteral("song.wav")), 4 * 48000);
    FakeSongList list{journal};
    PlayerTransport transport{state, windows, list};
    FakeTray tray;
    PlayerCommands commands{state, windows, transport, tray, dialogs};
    ASSERT_TRUE(transport.OpenSong(song, true));
    Editor editor(state, store, windows, transport, commands, dialogs);
    state.EditorOpen = true;
    editor.Open();
    state.Lyrics.EditPictures = {PictureItem{}, {QStringLiteral("red.png"), 1, {}, {}, 0}};

    QTimer::singleShot(0, [&] {
        auto* details = qobject_cast<DetailsDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(details, nullptr);
        details->findChild<QLineEdit*>(QStringLiteral("xArtist"))->setText(QStringLiteral("Jane Taylor"));
        details->Accept();
    });
    editor.Command(QStringLiteral("MenuDetails"));
    EXPECT_EQ(state.Lyrics.EditLyrics[0].Artist, "Jane Taylor");
    EXPECT_EQ(state.Lyrics.PlayLyrics[0].Artist, "Jane Taylor");
    ASSERT_EQ(state.Lyrics.PlayPictures.size(), 2u);
    EXPECT_EQ(state.Lyrics.PlayPictures[1].File, red) << "named from the song's folder";
    EXPECT_EQ(state.Lyrics.PictureTimes.size(), 2u);
    EXPECT_TRUE(state.Lyrics.LyricsTitleText.startsWith(QStringLiteral("Jane Taylor|")));
}
