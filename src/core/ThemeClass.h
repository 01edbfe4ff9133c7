#pragma once
// Every user setting, held in memory for the whole run: loaded once when created, written
// once at the end of the run. Reads and writes in between touch memory only.

#include "core/Colors.h"
#include "core/Monitors.h"

#include <QFont>
#include <QImage>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

class SettingsStore;

// What the defaults depend on, gathered from the running system or given by a test.
struct ThemeEnvironment {
    std::vector<MonitorRecord> monitors;
    QStringList fontFamilies;
    QString dataFolder;   // the per-user data folder of written files
    QString musicFolder;  // the user's music folder

    static ThemeEnvironment FromSystem();
};

class ThemeClass {
public:
    // Loads every setting; fills monitorList with the monitors of the environment.
    ThemeClass(SettingsStore& store, const ThemeEnvironment& environment,
               std::vector<MonitorRecord>& monitorList);
    ~ThemeClass();
    ThemeClass(const ThemeClass&) = delete;
    ThemeClass& operator=(const ThemeClass&) = delete;

    // Writes every setting, "on top" first and "record device" last.
    void Save();

    // key, stored text: every setting in load order, in the encoding it is stored with.
    std::vector<std::pair<QString, QString>> StoredValues() const;

    // The lyrics font of the settings: face, point size, bold, italic.
    QFont LyricsFontFace() const;

    bool KaraokeWindow = true;
    int32_t RecordDevice = 4099;
    int16_t RecordFolder = 1;
    int16_t RecordMode = 2;
    int16_t AudioDevice = 0;
    int16_t VoiceVolume = 33;
    int32_t RecordQuality = 22050;
    QString VoiceDirectory;
    bool ShowLyricsTitle = true;
    bool LyricsMode = false;
    int32_t LyricsBallColor = 255;
    int16_t LyricsAlignment = 2;
    QString MusicPath;
    int16_t DisplayMode = 3;
    int32_t LyricsColor = RGB(125, 140, 189);
    int32_t LyricsHighlightColor = RGB(206, 221, 253);
    int32_t LyricsOutlineColor1 = 0;
    int32_t LyricsOutlineColor2 = 0;
    int32_t LyricsOutlineColor3 = 0;
    int32_t LyricsOutlineColor4 = 0;
    QString LyricsFont;
    int16_t LyricsFontSize = 20;
    bool LyricsFontBold = false;
    bool LyricsFontItalic = false;
    int32_t LyricsFontCharset = 238;
    int16_t LyricsOutlineWidth = 2;
    int32_t LyricsBackColor = RGB(65, 78, 123);
    bool LyricsShowBall = false;
    int16_t LyricsPicLayout = 2;
    int16_t ImageOffsetX = 0;
    int16_t ImageOffsetY = 0;
    int16_t ImageSize = 1;
    int16_t ImageSizeX = 640;
    int16_t ImageSizeY = 480;
    int16_t ImageAlign = 0;
    QString ImageBorder = QStringLiteral("None");
    QString ImageEffect;
    QString EffectDetail;
    int16_t EffectSpeed = 5;
    bool LyricsFitFont = true;
    bool Scroll = true;
    QString Monitor = QStringLiteral("Monitor 1 (primary)");
    // Not persisted.
    QString LyricsPath;

    double LyricsOffset() const { return m_lyricsOffset; }
    // Rounds to three decimal places.
    void SetLyricsOffset(double seconds);

    bool OnTop() const { return m_onTop; }
    // Applies at once through the handler the application installs.
    void SetOnTop(bool flag);
    std::function<void(bool)> ApplyOnTop;

    const QString& LyricsPicPath() const { return m_lyricsPicPath; }
    const QImage& LyricsPicture() const { return m_lyricsPicture; }
    // A path that is empty, missing or not a picture gives the built-in picture and "default".
    void SetLyricsPicPath(const QString& path);

    // The built-in karaoke background.
    static QImage DefaultPicture();

private:
    struct Setting;
    // Every setting in load order, bound to its member.
    std::vector<Setting> Settings();
    static QString DefaultFont(const QStringList& installed);
    void Load(const ThemeEnvironment& environment);

    SettingsStore& m_store;
    std::vector<MonitorRecord>& m_monitorList;
    double m_lyricsOffset = 0;
    bool m_onTop = false;
    QString m_lyricsPicPath = QStringLiteral("default");
    QImage m_lyricsPicture;
    QString m_defaultVoiceDirectory;
    QString m_defaultMusicPath;
    QString m_defaultFont;
};
