// The editor's print dialog as a user meets it: the saved choices shown, the page previewed on
// its sheets, the choices kept by OK and forgotten by Cancel.

#include "core/Language.h"
#include "core/Shell.h"
#include "lyrics/LyricsData.h"
#include "playback/PlayerState.h"
#include "print/PrintSettings.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"
#include "ui/kit/Palette.h"
#include "ui/options/LyricOptions.h"
#include "ui/print/Printer.h"

#include <QApplication>
#include <QFile>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QCheckBox>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

std::vector<LyricItem> Song()
{
    std::vector<LyricItem> lyrics(1);
    lyrics[0].Title = QStringLiteral("Star");
    lyrics[0].Artist = QStringLiteral("Jane");
    for (const char* line : {"Twinkle twinkle", "little star"}) {
        LyricItem item;
        item.Text = item.LineText = QString::fromLatin1(line);
        item.LineEnd = true;
        lyrics.push_back(item);
    }
    lyrics.back().LineEnd = false;
    return lyrics;
}

struct PrintDialog : testing::Test {
    PrintDialog() { language.LoadTable(false); }
    void Capture(QWidget& widget, const char* name)
    {
        const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
        if (!folder.isEmpty())
            widget.grab().save(folder + u'/' + QLatin1String(name) + QStringLiteral(".png"));
    }
    MemoryStore store;
    LanguageTable language;
    ScriptedDialogs dialogs;
    std::vector<LyricItem> lyrics = Song();
};

} // namespace

TEST_F(PrintDialog, OkKeepsTheChoicesAndCancelForgetsThem)
{
    PrintSettings saved;
    saved.Alignment = QStringLiteral("Left");
    saved.Save(store);
    {
        Printer printer(lyrics, store, language, dialogs);
        printer.show();
        Capture(printer, "printer");
        EXPECT_TRUE(printer.findChild<QRadioButton*>("PrintLeft")->isChecked());
        EXPECT_TRUE(printer.findChild<QCheckBox*>("pTitle")->isChecked());
        printer.findChild<QRadioButton*>("PrintRight")->click();
        printer.findChild<QCheckBox*>("pTitle")->click();
        dialogs.colors.push_back(QColor(0, 0, 255));
        printer.findChild<QPushButton*>("LyricsColor")->click();
        QFont font(QStringLiteral("DejaVu Serif"));
        font.setPointSize(18);
        font.setBold(true);
        dialogs.fonts.push_back(font);
        printer.findChild<QPushButton*>("LyricsFont")->click();
        ASSERT_EQ(dialogs.offeredFonts.size(), 1u);
        EXPECT_EQ(dialogs.offeredFonts[0].family(), "Arial") << "the picker starts from the saved font";

        store.writes.clear();
        printer.findChild<QPushButton*>("Anuluj")->click();
        EXPECT_TRUE(store.writes.isEmpty());
        EXPECT_EQ(PrintSettings::Load(store).Alignment, "Left");
    }

    Printer printer(lyrics, store, language, dialogs);
    printer.findChild<QRadioButton*>("PrintCenter")->click();
    dialogs.colors.push_back(QColor(0, 0, 255));
    printer.findChild<QPushButton*>("TitleColor")->click();
    dialogs.fonts.push_back(QFont(QStringLiteral("DejaVu Serif"), 18));
    printer.findChild<QPushButton*>("LyricsFont")->click();
    printer.findChild<QPushButton*>("bAccept")->click();
    const PrintSettings kept = PrintSettings::Load(store);
    EXPECT_EQ(kept.Alignment, "Center");
    EXPECT_EQ(kept.TitleColor, 0xFF0000) << "blue as a Win32 colour";
    EXPECT_EQ(kept.LyricsFontName, "DejaVu Serif");
    EXPECT_EQ(kept.LyricsFontSize, 18);
    EXPECT_EQ(store.values.value("PRT/Alignment"), "Center");
}

TEST_F(PrintDialog, PreviewLaysOutTheWrittenPageOnItsSheets)
{
    Printer printer(lyrics, store, language, dialogs);
    printer.findChild<QRadioButton*>("PrintRight")->click();
    int pages = -1;
    QTimer::singleShot(0, [&pages, this] {
        auto* preview = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        if (!preview)
            return;
        if (auto* widget = preview->findChild<QPrintPreviewWidget*>()) {
            widget->updatePreview();
            pages = widget->pageCount();
        }
        Capture(*preview, "print-preview");
        preview->reject();
    });
    printer.Preview();
    EXPECT_EQ(pages, 1);

    QFile page(GetTempFolder() + QStringLiteral("Preview.htm"));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QByteArray bytes = page.readAll();
    EXPECT_TRUE(bytes.contains("<P align=right>\r\n")) << "the choices of the dialog, not yet kept";
    EXPECT_TRUE(bytes.contains("Twinkle twinkle<br>\r\nlittle star<br>\r\n"));
    EXPECT_EQ(printer.PreparePage(QStringLiteral("SWVLyrics")), QString::fromLatin1(bytes));
    EXPECT_TRUE(QFile::exists(GetTempFolder() + QStringLiteral("SWVLyrics.htm"))) << "printing writes its own page";
}

TEST_F(PrintDialog, ThePrintAndPreferencesDialogsWearTheProgramsColours)
{
    Printer printer(lyrics, store, language, dialogs);
    EXPECT_EQ(printer.palette().color(QPalette::Window), ControlsPalette().color(QPalette::Window));
    EXPECT_EQ(printer.palette().color(QPalette::ButtonText), ControlsPalette().color(QPalette::ButtonText));

    PlayerState state;
    state.Language.LoadTable(false);
    state.Theme = std::make_unique<ThemeClass>(store, ThemeEnvironment{}, state.MonitorList);
    LyricOptions options(state, store, dialogs);
    EXPECT_EQ(options.palette().color(QPalette::Window), ControlsPalette().color(QPalette::Window));
    EXPECT_EQ(options.palette().color(QPalette::Text), ControlsPalette().color(QPalette::Text));
}
