#include "core/Colors.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

ThemeEnvironment TwoMonitors()
{
    ThemeEnvironment env;
    env.monitors = {{QStringLiteral("Monitor 1 (primary)"), 0, 0, 1920, 1080, true},
                    {QStringLiteral("Monitor 2"), 1920, 0, 3840, 1080, false}};
    env.fontFamilies = {QStringLiteral("DejaVu Sans"), QStringLiteral("Tahoma"), QStringLiteral("Arial")};
    env.dataFolder = QStringLiteral("/data");
    env.musicFolder = QStringLiteral("/music");
    return env;
}

struct Loaded {
    std::vector<MonitorRecord> monitors;
    ThemeClass theme;
    explicit Loaded(SettingsStore& store, const ThemeEnvironment& env = TwoMonitors()) : theme(store, env, monitors) {}
};

} // namespace

TEST(ThemeClass, FirstRunGivesEveryDefault)
{
    MemoryStore store;
    Loaded loaded(store);
    const ThemeClass& t = loaded.theme;

    EXPECT_TRUE(t.KaraokeWindow);
    EXPECT_EQ(t.LyricsOffset(), 0);
    EXPECT_EQ(t.RecordDevice, 4099);
    EXPECT_EQ(t.RecordFolder, 1);
    EXPECT_EQ(t.RecordMode, 2);
    EXPECT_EQ(t.AudioDevice, 0);
    EXPECT_EQ(t.VoiceVolume, 33);
    EXPECT_EQ(t.RecordQuality, 22050);
    EXPECT_EQ(t.VoiceDirectory, "/data/Voice");
    EXPECT_TRUE(t.ShowLyricsTitle);
    EXPECT_FALSE(t.LyricsMode);
    EXPECT_EQ(t.LyricsBallColor, 255);
    EXPECT_EQ(t.LyricsAlignment, 2);
    EXPECT_EQ(t.MusicPath, "/music");
    EXPECT_EQ(t.DisplayMode, 3);
    EXPECT_EQ(t.LyricsColor, 125 + 140 * 256 + 189 * 65536);
    EXPECT_EQ(t.LyricsHighlightColor, 206 + 221 * 256 + 253 * 65536);
    EXPECT_EQ(t.LyricsOutlineColor1, 0);
    EXPECT_EQ(t.LyricsOutlineColor4, 0);
    EXPECT_EQ(t.LyricsFont, "Arial");  // Impact is not installed; Arial comes before Tahoma
    EXPECT_EQ(t.LyricsFontSize, 20);
    EXPECT_FALSE(t.LyricsFontBold);
    EXPECT_FALSE(t.LyricsFontItalic);
    EXPECT_EQ(t.LyricsFontCharset, 238);
    EXPECT_EQ(t.SoundFont, "") << "the system's General MIDI SoundFont";
    EXPECT_EQ(t.LyricsOutlineWidth, 2);
    EXPECT_EQ(t.LyricsBackColor, 65 + 78 * 256 + 123 * 65536);
    EXPECT_EQ(t.LyricsPicPath(), "default");
    EXPECT_FALSE(t.LyricsPicture().isNull());
    EXPECT_FALSE(t.LyricsShowBall);
    EXPECT_EQ(t.LyricsPicLayout, 2);
    EXPECT_EQ(t.ImageSize, 1);
    EXPECT_EQ(t.ImageSizeX, 640);
    EXPECT_EQ(t.ImageSizeY, 480);
    EXPECT_EQ(t.ImageAlign, 0);
    EXPECT_EQ(t.ImageBorder, "None");
    EXPECT_EQ(t.ImageEffect, "");
    EXPECT_EQ(t.EffectSpeed, 5);
    EXPECT_FALSE(t.OnTop());
    EXPECT_TRUE(t.LyricsFitFont);
    EXPECT_TRUE(t.Scroll);
    EXPECT_EQ(t.Monitor, "Monitor 1 (primary)");
    EXPECT_EQ(loaded.monitors.size(), 2u);
    EXPECT_TRUE(store.writes.isEmpty()) << "loading must not write";
}

TEST(ThemeClass, FontDefaultFallsBackInItsOrder)
{
    MemoryStore store;
    ThemeEnvironment env = TwoMonitors();
    env.fontFamilies = {QStringLiteral("Tahoma"), QStringLiteral("arial")};
    EXPECT_EQ(Loaded(store, env).theme.LyricsFont, "Tahoma") << "the name is compared with its case";
    env.fontFamilies = {QStringLiteral("DejaVu Sans")};
    EXPECT_EQ(Loaded(store, env).theme.LyricsFont, "Times New Roman");
    env.fontFamilies = {QStringLiteral("Arial"), QStringLiteral("Impact")};
    EXPECT_EQ(Loaded(store, env).theme.LyricsFont, "Impact");
}

TEST(ThemeClass, ValuesSurviveARestartInTheirEncodings)
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("Songweaver.conf"));
    {
        QSettingsStore store(ini);
        Loaded loaded(store);
        ThemeClass& t = loaded.theme;
        t.KaraokeWindow = false;
        t.SetLyricsOffset(-0.25);
        t.RecordQuality = 44100;
        t.LyricsOutlineColor1 = RGB(1, 2, 3);
        t.LyricsOutlineColor3 = 255;
        t.LyricsFont = QStringLiteral("DejaVu Serif");
        t.LyricsFontBold = true;
        t.ImageEffect = QStringLiteral("Fade, slow");
        t.Monitor = QStringLiteral("Monitor 2");
        t.VoiceDirectory = QStringLiteral("/home/ala/Głosy");
        t.Save();
    }

    QSettingsStore raw(ini);
    EXPECT_EQ(raw.RegReadString(QStringLiteral("karaoke window")), "0");
    EXPECT_EQ(raw.RegReadString(QStringLiteral("karaoke font bold")), "1");
    EXPECT_EQ(raw.RegReadString(QStringLiteral("karaoke outline color")), QStringLiteral("%1,0,255,0").arg(RGB(1, 2, 3)));
    EXPECT_EQ(raw.RegReadString(QStringLiteral("karaoke offset")), "-0.25");
    EXPECT_EQ(raw.RegReadString(QStringLiteral("karaoke background picture")), "default");

    Loaded again(raw);
    const ThemeClass& t = again.theme;
    EXPECT_FALSE(t.KaraokeWindow);
    EXPECT_DOUBLE_EQ(t.LyricsOffset(), -0.25);
    EXPECT_EQ(t.RecordQuality, 44100);
    EXPECT_EQ(t.LyricsOutlineColor1, RGB(1, 2, 3));
    EXPECT_EQ(t.LyricsOutlineColor2, 0);
    EXPECT_EQ(t.LyricsOutlineColor3, 255);
    EXPECT_EQ(t.LyricsFont, "DejaVu Serif");
    EXPECT_TRUE(t.LyricsFontBold);
    EXPECT_EQ(t.ImageEffect, "Fade, slow");
    EXPECT_EQ(t.Monitor, "Monitor 2");
    EXPECT_EQ(t.VoiceDirectory, "/home/ala/Głosy");
}

TEST(ThemeClass, ReadsStoredTextsTheWayTheyWereMeant)
{
    MemoryStore store;
    store.values = {{QStringLiteral("karaoke offset"), QStringLiteral("0,35")},
                    {QStringLiteral("karaoke window"), QStringLiteral("0")},
                    {QStringLiteral("karaoke mode"), QStringLiteral("-1")},
                    {QStringLiteral("karaoke ball"), QStringLiteral("1")},
                    {QStringLiteral("scroll title"), QStringLiteral("yes")},
                    {QStringLiteral("karaoke font size"), QStringLiteral("28pt")},
                    {QStringLiteral("voice volume"), QStringLiteral("99999")},
                    {QStringLiteral("karaoke outline color"), QStringLiteral("5,6")},
                    {QStringLiteral("effect speed"), QString()}};
    Loaded loaded(store);
    const ThemeClass& t = loaded.theme;
    EXPECT_DOUBLE_EQ(t.LyricsOffset(), 0.35) << "a decimal comma, as a Polish locale writes it";
    EXPECT_FALSE(t.KaraokeWindow);
    EXPECT_TRUE(t.LyricsMode);
    EXPECT_TRUE(t.LyricsShowBall);
    EXPECT_FALSE(t.Scroll) << "a text that is no number reads 0";
    EXPECT_EQ(t.LyricsFontSize, 28);
    EXPECT_EQ(t.VoiceVolume, 32767);
    EXPECT_EQ(t.LyricsOutlineColor1, 5);
    EXPECT_EQ(t.LyricsOutlineColor2, 6);
    EXPECT_EQ(t.LyricsOutlineColor3, 0);
    EXPECT_EQ(t.EffectSpeed, 5) << "an empty value takes the default";
}

TEST(ThemeClass, MissingPictureAndMonitorFallBack)
{
    QTemporaryDir dir;
    const QString picture = dir.filePath(QStringLiteral("stage.png"));
    QImage image(32, 16, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(picture));

    MemoryStore store;
    store.values[QStringLiteral("karaoke background picture")] = picture;
    store.values[QStringLiteral("fullscreen monitor")] = QStringLiteral("Monitor 2");
    {
        Loaded loaded(store);
        EXPECT_EQ(loaded.theme.LyricsPicPath(), picture);
        EXPECT_EQ(loaded.theme.LyricsPicture().size(), QSize(32, 16));
        EXPECT_EQ(loaded.theme.Monitor, "Monitor 2");
    }

    QFile::remove(picture);
    ThemeEnvironment oneMonitor = TwoMonitors();
    oneMonitor.monitors.pop_back();
    oneMonitor.monitors[0].name = QStringLiteral("Monitor 1");
    Loaded loaded(store, oneMonitor);
    EXPECT_EQ(loaded.theme.LyricsPicPath(), "default");
    EXPECT_EQ(loaded.theme.LyricsPicture(), ThemeClass::DefaultPicture());
    EXPECT_EQ(loaded.theme.Monitor, "Monitor 1") << "a monitor no longer attached gives the first one";

    loaded.theme.SetLyricsPicPath(dir.filePath(QStringLiteral("not-a-picture.png")));
    EXPECT_EQ(loaded.theme.LyricsPicPath(), "default");
}

TEST(ThemeClass, SettersWithEffects)
{
    MemoryStore store;
    Loaded loaded(store);
    ThemeClass& t = loaded.theme;

    t.SetLyricsOffset(0.12349);
    EXPECT_DOUBLE_EQ(t.LyricsOffset(), 0.123);
    t.SetLyricsOffset(-1.0006);
    EXPECT_DOUBLE_EQ(t.LyricsOffset(), -1.001);

    std::vector<bool> applied;
    t.ApplyOnTop = [&applied](bool flag) { applied.push_back(flag); };
    t.SetOnTop(true);
    EXPECT_TRUE(t.OnTop());
    EXPECT_EQ(applied, std::vector<bool>{true});
}

TEST(ThemeClass, SaveWritesEveryKeyOnceOnTopFirstRecordDeviceLast)
{
    MemoryStore store;
    Loaded loaded(store);
    loaded.theme.Save();

    ASSERT_EQ(store.writes.size(), 52);
    EXPECT_EQ(store.writes.first(), "on top");
    EXPECT_EQ(store.writes.last(), "record device");
    EXPECT_EQ(QSet<QString>(store.writes.begin(), store.writes.end()).size(), 52);
    EXPECT_EQ(store.values[QStringLiteral("library folders")], "/music") << "the library starts at the music folder";
    EXPECT_EQ(store.values[QStringLiteral("cdg smooth")], "0") << "disc graphics keep their pixels crisp at first";
    EXPECT_EQ(store.values[QStringLiteral("keep pitch")], "1") << "an audio song's tempo keeps its key at first";
    EXPECT_EQ(store.values[QStringLiteral("karaoke font color")], QString::number(RGB(125, 140, 189)));
    EXPECT_EQ(store.values[QStringLiteral("karaoke outline color")], "0,0,0,0");
    EXPECT_EQ(store.values[QStringLiteral("fit font to window")], "1");

    const auto stored = loaded.theme.StoredValues();
    EXPECT_EQ(stored.front().first, "karaoke window");
    EXPECT_EQ(stored[2].first, "record device");
    EXPECT_EQ(stored.back().first, "remote songs per guest");
}

TEST(ThemeClass, RestoreTakesBackASnapshotAndTheDefaultsOfAFreshInstall)
{
    MemoryStore store;
    Loaded loaded(store);
    ThemeClass& t = loaded.theme;
    bool onTop = false;
    t.ApplyOnTop = [&onTop](bool flag) { onTop = flag; };
    const auto snapshot = t.StoredValues();

    t.LyricsFontSize = 48;
    t.LyricsOutlineColor2 = 77;
    t.SetLyricsOffset(1.5);
    t.SetOnTop(true);
    t.SetLyricsPicPath(QStringLiteral("/no/such/picture.png"));
    t.Restore(snapshot);
    EXPECT_EQ(t.LyricsFontSize, 20);
    EXPECT_EQ(t.LyricsOutlineColor2, 0);
    EXPECT_DOUBLE_EQ(t.LyricsOffset(), 0);
    EXPECT_FALSE(t.OnTop());
    EXPECT_FALSE(onTop) << "\"on top\" is applied again";
    EXPECT_EQ(t.LyricsPicPath(), "default");
    EXPECT_FALSE(t.LyricsPicture().isNull());
    EXPECT_TRUE(store.writes.isEmpty()) << "nothing is written before the end of the run";

    t.DisplayMode = 0;
    t.LyricsColor = 1;
    t.Restore({{QStringLiteral("karaoke display mode"), QStringLiteral("2")}, {QStringLiteral("no such key"), "9"}});
    EXPECT_EQ(t.DisplayMode, 2);
    EXPECT_EQ(t.LyricsColor, 1) << "a value missing from the pairs stays";

    const auto defaults = t.DefaultValues();
    ASSERT_EQ(defaults.size(), snapshot.size());
    t.Restore(defaults);
    EXPECT_EQ(t.DisplayMode, 3);
    EXPECT_EQ(t.LyricsColor, RGB(125, 140, 189));
    EXPECT_EQ(t.LyricsFont, "Arial") << "the first installed of the default fonts";
    EXPECT_EQ(t.VoiceDirectory, "/data/Voice");
}
