// The preferences as a user meets them: settings changed in the dialog reach the settings at
// once and survive a restart, Cancel takes them back, the karaoke reset, the language for the
// next start, the keyboard tab, and the latency test's clicks and light.

#include "core/Colors.h"
#include "core/SettingsStore.h"
#include "playback/PlayerState.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"
#include "ui/kit/Pickers.h"
#include "ui/options/LyricOptions.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QCheckBox>
#include <QThread>
#include <QToolButton>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

struct Preferences : testing::Test {
    Preferences()
    {
        state.Language.LoadTable(false);
        Load();
    }
    void Load() { state.Theme = std::make_unique<ThemeClass>(store, ThemeEnvironment{}, state.MonitorList); }
    template <typename T>
    T* Find(LyricOptions& options, const char* name)
    {
        T* found = options.findChild<T*>(QLatin1String(name));
        EXPECT_TRUE(found) << name;
        return found;
    }
    void Capture(QWidget& widget, const QString& name)
    {
        const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
        if (!folder.isEmpty())
            widget.grab().save(folder + u'/' + name + QStringLiteral(".png"));
    }

    QTemporaryDir dir;
    QSettingsStore store{dir.filePath(QStringLiteral("Songweaver.conf"))};
    PlayerState state;
    ScriptedDialogs dialogs;
};

} // namespace

TEST_F(Preferences, ChangesApplyAtOnceAndSurviveARestart)
{
    int applied = 0;
    {
        LyricOptions options(state, store, dialogs);
        options.Applied = [&applied] { ++applied; };
        options.show();
        Find<QSpinBox>(options, "FontSize")->setValue(36);
        EXPECT_EQ(state.Theme->LyricsFontSize, 36) << "at once, before OK";
        EXPECT_EQ(applied, 1);
        Find<QRadioButton>(options, "DisplayMode0")->click();
        Find<QRadioButton>(options, "Alignment1")->click();
        dialogs.colors.push_back(QColor(10, 20, 30));
        Find<QPushButton>(options, "Background")->click();
        Find<QComboBox>(options, "RecordQuality")->setCurrentIndex(2);
        Find<QRadioButton>(options, "RecordMode1")->click();
        dialogs.files.push_back(QStringLiteral("/music/new"));
        Find<PathPicker>(options, "MusicFolder")->findChild<QToolButton*>()->click();
        Find<QDoubleSpinBox>(options, "TimeOffset")->setValue(0.25);
        Find<QComboBox>(options, "Effect")->setCurrentIndex(1);
        EXPECT_FALSE(state.Theme->EffectDetail.isEmpty()) << "a new effect starts from its first detail";
        ASSERT_TRUE(Find<QCheckBox>(options, "KeepPitch")->isChecked()) << "the key kept, as a fresh install has it";
        Find<QCheckBox>(options, "KeepPitch")->click();
        EXPECT_EQ(applied, 10);
        Find<QPushButton>(options, "OK")->click();
        EXPECT_FALSE(options.isVisible());
    }
    EXPECT_TRUE(store.RegReadString(QStringLiteral("karaoke font size")).isEmpty()) << "written at the end of the run";
    state.Theme->Save();

    Load();
    const ThemeClass& t = *state.Theme;
    EXPECT_EQ(t.LyricsFontSize, 36);
    EXPECT_EQ(t.DisplayMode, 0);
    EXPECT_EQ(t.LyricsAlignment, 1);
    EXPECT_EQ(t.LyricsBackColor, RGB(10, 20, 30));
    EXPECT_EQ(t.RecordQuality, 44100);
    EXPECT_EQ(t.RecordMode, 1);
    EXPECT_EQ(t.MusicPath, "/music/new");
    EXPECT_DOUBLE_EQ(t.LyricsOffset(), 0.25);
    EXPECT_FALSE(t.ImageEffect.isEmpty());
    EXPECT_FALSE(t.KeepPitch);

    LyricOptions again(state, store, dialogs);
    EXPECT_EQ(Find<QSpinBox>(again, "FontSize")->value(), 36) << "the dialog shows what was kept";
    EXPECT_TRUE(Find<QRadioButton>(again, "DisplayMode0")->isChecked());
}

TEST_F(Preferences, CancelTakesBackWhatApplyDidNotKeep)
{
    LyricOptions options(state, store, dialogs);
    int applied = 0;
    options.Applied = [&applied] { ++applied; };
    options.show();
    Find<QSpinBox>(options, "OutlineWidth")->setValue(5);
    Find<QPushButton>(options, "Apply")->click();
    Find<QSpinBox>(options, "OutlineWidth")->setValue(7);
    Find<QRadioButton>(options, "LyricsMode1")->click();
    applied = 0;
    Find<QPushButton>(options, "Cancel")->click();
    EXPECT_EQ(state.Theme->LyricsOutlineWidth, 5) << "back to the last Apply";
    EXPECT_FALSE(state.Theme->LyricsMode);
    EXPECT_EQ(applied, 1) << "the windows show the settings taken back";
    EXPECT_EQ(Find<QSpinBox>(options, "OutlineWidth")->value(), 5);
}

TEST_F(Preferences, ResetGivesTheKaraokeWindowItsDefaultsAndLeavesTheRest)
{
    state.Theme->LyricsFontSize = 50;
    state.Theme->LyricsColor = 1;
    state.Theme->DisplayMode = 0;
    state.Theme->RecordQuality = 11025;
    LyricOptions options(state, store, dialogs);
    Find<QPushButton>(options, "ResetDefault")->click();
    EXPECT_EQ(state.Theme->LyricsFontSize, 20);
    EXPECT_EQ(state.Theme->LyricsColor, RGB(125, 140, 189));
    EXPECT_EQ(state.Theme->DisplayMode, 3);
    EXPECT_EQ(state.Theme->RecordQuality, 11025) << "recording is not the karaoke window's";
    EXPECT_EQ(Find<QSpinBox>(options, "FontSize")->value(), 20);
}

TEST_F(Preferences, TheLanguageIsWrittenForTheNextStartAndTheTabsOpenAsAsked)
{
    LyricOptions options(state, store, dialogs);
    Find<QComboBox>(options, "Language")->setCurrentIndex(1);
    EXPECT_EQ(QSettingsStore(dir.filePath(QStringLiteral("Songweaver.conf"))).RegReadString("language"), "pl");
    EXPECT_FALSE(state.Language.IsPolish) << "this run keeps its language";

    options.ShowTab(LyricOptions::Keyboard);
    EXPECT_EQ(Find<QTabWidget>(options, "")->currentIndex(), 5);
    EXPECT_EQ(state.PreferencesTab, 5);
    const auto* tree = Find<QTreeWidget>(options, "Shortcuts");
    QStringList keys;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        keys << tree->topLevelItem(i)->text(0) + u'=' + tree->topLevelItem(i)->text(1);
    EXPECT_TRUE(keys.contains("Ctrl+P=Preferences"));
    EXPECT_TRUE(keys.contains("Space=Capture time"));
    EXPECT_TRUE(keys.contains("F12=Add new line"));
    options.show();
    for (int tab = 0; tab < 6; ++tab) {
        options.ShowTab(tab);
        Capture(options, QStringLiteral("preferences-%1").arg(tab));
    }
}

TEST_F(Preferences, TheLatencyTestClicksAndStopsWithTheDialog)
{
    ManualDevice& device = StartManualEngine(state);
    {
        LyricOptions options(state, store, dialogs);
        options.show();
        Find<QPushButton>(options, "LatencyTest")->click();
        ASSERT_TRUE(dialogs.messages.isEmpty()) << dialogs.messages.join(", ").toStdString();
        for (int i = 0; i < 200; ++i) {
            QThread::msleep(2);
            device.Step(480);
        }
        float loudest = 0;
        for (int i = 0; i < 100; ++i)
            for (float sample : device.Step(480))
                loudest = std::max(loudest, std::abs(sample));
        EXPECT_GT(loudest, 0.3f) << "the clicks reach the output";
        Find<QPushButton>(options, "Cancel")->click();
    }
    float after = 0;
    for (int i = 0; i < 100; ++i)
        for (float sample : device.Step(480))
            after = std::max(after, std::abs(sample));
    EXPECT_EQ(after, 0.0f);
}
