#pragma once
// Every user setting, held in memory for the whole run: loaded once when created, written
// once at the end of the run. Reads and writes in between touch memory only.

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
    // key, default text: the settings of a fresh install, in load order.
    std::vector<std::pair<QString, QString>> DefaultValues() const;
    // Takes back the values of those pairs (as StoredValues gives them) whose key it knows, and
    // applies the picture and "on top" again.
    void Restore(const std::vector<std::pair<QString, QString>>& values);

    // The lyrics font of the settings: face, point size, bold, italic.
    QFont LyricsFontFace() const;

    // The settings; their defaults are in the one table the constructor loads them by.
    bool KaraokeWindow{};
    int32_t RecordDevice{};
    int16_t RecordFolder{};
    int16_t RecordMode{};
    int16_t AudioDevice{};
    int16_t VoiceVolume{};
    int32_t RecordQuality{};
    QString VoiceDirectory;
    bool ShowLyricsTitle{};
    bool LyricsMode{};
    int32_t LyricsBallColor{};
    int16_t LyricsAlignment{};
    QString MusicPath;
    int16_t DisplayMode{};
    int32_t LyricsColor{};
    int32_t LyricsHighlightColor{};
    int32_t LyricsOutlineColor1{};
    int32_t LyricsOutlineColor2{};
    int32_t LyricsOutlineColor3{};
    int32_t LyricsOutlineColor4{};
    QString LyricsFont;
    int16_t LyricsFontSize{};
    bool LyricsFontBold{};
    bool LyricsFontItalic{};
    int32_t LyricsFontCharset{};
    int16_t LyricsOutlineWidth{};
    int32_t LyricsBackColor{};
    bool LyricsShowBall{};
    int16_t LyricsPicLayout{};
    int16_t ImageOffsetX{};
    int16_t ImageOffsetY{};
    int16_t ImageSize{};
    int16_t ImageSizeX{};
    int16_t ImageSizeY{};
    int16_t ImageAlign{};
    QString ImageBorder;
    QString ImageEffect;
    QString EffectDetail;
    int16_t EffectSpeed{};
    bool LyricsFitFont{};
    bool Scroll{};
    // An audio song's tempo knob keeps its key (the stretcher), else changes its rate and key.
    bool KeepPitch{};
    // Karaoke disc graphics scaled smoothly; off, their pixels stay crisp.
    bool CdgSmooth{};
    // The song library's music folders, one a line.
    QString LibraryFolders;
    // The guests' web page: off at first; its port, its PIN (made when first switched on),
    // whether the host approves each song, and how much one guest may ask for.
    bool RemoteOn{};
    int32_t RemotePort{};
    QString RemotePin;
    bool RemoteApprove{};
    int32_t RemoteRequestsPerMinute{};
    int32_t RemoteSongsPerGuest{};
    QString Monitor;
    QString SoundFont;  // the SoundFont of MIDI songs; empty for the one the system installs
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
    QString m_lyricsPicPath;
    QImage m_lyricsPicture;
    QString m_defaultVoiceDirectory;
    QString m_defaultMusicPath;
    QString m_defaultFont;
};
