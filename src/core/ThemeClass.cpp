#include "core/ThemeClass.h"

#include "core/Colors.h"
#include "core/Numbers.h"
#include "core/SettingsStore.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QStandardPaths>
#include <QImageReader>
#include <algorithm>
#include <cmath>

struct ThemeClass::Setting {
    QString key;
    QString defaultText;
    std::function<void(const QString&)> decode;
    std::function<QString()> encode;
};

namespace {

QString EncodeBool(bool value) { return value ? QStringLiteral("1") : QStringLiteral("0"); }
bool DecodeBool(const QString& text) { return NumericValue(text) != 0; }

QString EncodeReal(double value)
{
    return QString::number(value, 'g', 15);
}

double DecodeReal(QString text)
{
    return NumericValue(text.replace(u',', u'.'));
}

} // namespace

ThemeEnvironment ThemeEnvironment::FromSystem()
{
    ThemeEnvironment env;
    env.monitors = EnumerateMonitors();
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        env.fontFamilies = QFontDatabase::families();
    env.dataFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    env.musicFolder = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
    return env;
}

ThemeClass::ThemeClass(SettingsStore& store, const ThemeEnvironment& environment,
                       std::vector<MonitorRecord>& monitorList)
    : m_store(store), m_monitorList(monitorList)
{
    Load(environment);
}

ThemeClass::~ThemeClass() = default;

std::vector<ThemeClass::Setting> ThemeClass::Settings()
{
    auto boolean = [](const char* key, bool& field, bool def) {
        return Setting{QString::fromLatin1(key), EncodeBool(def),
                       [&field](const QString& t) { field = DecodeBool(t); },
                       [&field] { return EncodeBool(field); }};
    };
    auto int16 = [](const char* key, int16_t& field, int def) {
        return Setting{QString::fromLatin1(key), QString::number(def),
                       [&field](const QString& t) { field = ToInt16(NumericValue(t)); },
                       [&field] { return QString::number(field); }};
    };
    auto int32 = [](const char* key, int32_t& field, int32_t def) {
        return Setting{QString::fromLatin1(key), QString::number(def),
                       [&field](const QString& t) { field = ToInt32(NumericValue(t)); },
                       [&field] { return QString::number(field); }};
    };
    auto text = [](const char* key, QString& field, const QString& def) {
        return Setting{QString::fromLatin1(key), def,
                       [&field](const QString& t) { field = t; },
                       [&field] { return field; }};
    };
    auto real = [](const char* key, double& field, double def) {
        return Setting{QString::fromLatin1(key), EncodeReal(def),
                       [&field](const QString& t) { field = DecodeReal(t); },
                       [&field] { return EncodeReal(field); }};
    };
    int32_t* outline[] = {&LyricsOutlineColor1, &LyricsOutlineColor2, &LyricsOutlineColor3,
                          &LyricsOutlineColor4};
    auto outlineColours = Setting{
        QStringLiteral("karaoke outline color"), QStringLiteral("0,0,0,0"),
        [outline](const QString& t) {
            const QStringList parts = t.split(u',');
            for (int i = 0; i < 4; ++i)
                *outline[i] = i < parts.size() ? ToInt32(NumericValue(parts[i])) : 0;
        },
        [outline] {
            return QStringLiteral("%1,%2,%3,%4").arg(*outline[0]).arg(*outline[1]).arg(*outline[2]).arg(*outline[3]);
        }};

    return {
        boolean("karaoke window", KaraokeWindow, true),
        real("karaoke offset", m_lyricsOffset, 0),
        int32("record device", RecordDevice, 4099),
        int16("rec folder", RecordFolder, 1),
        int16("rec mode", RecordMode, 2),
        int16("audio device", AudioDevice, 0),
        int16("voice volume", VoiceVolume, 33),
        int32("rec quality", RecordQuality, 22050),
        text("rec directory", VoiceDirectory, m_defaultVoiceDirectory),
        boolean("show lyrics title", ShowLyricsTitle, true),
        boolean("karaoke mode", LyricsMode, false),
        int32("karaoke ball color", LyricsBallColor, 255),
        int16("karaoke alignment", LyricsAlignment, 2),
        text("music files path", MusicPath, m_defaultMusicPath),
        int16("karaoke display mode", DisplayMode, 3),
        int32("karaoke font color", LyricsColor, RGB(125, 140, 189)),
        int32("karaoke highlight color", LyricsHighlightColor, RGB(206, 221, 253)),
        outlineColours,
        text("karaoke font name", LyricsFont, m_defaultFont),
        int16("karaoke font size", LyricsFontSize, 20),
        boolean("karaoke font bold", LyricsFontBold, false),
        boolean("karaoke font italic", LyricsFontItalic, false),
        int32("karaoke font charset", LyricsFontCharset, 238),
        int16("karaoke outline width", LyricsOutlineWidth, 2),
        int32("karaoke background color", LyricsBackColor, RGB(65, 78, 123)),
        text("karaoke background picture", m_lyricsPicPath, QStringLiteral("default")),
        boolean("karaoke ball", LyricsShowBall, false),
        int16("background picture layout", LyricsPicLayout, 2),
        int16("image offset X", ImageOffsetX, 0),
        int16("image offset Y", ImageOffsetY, 0),
        int16("image size", ImageSize, 1),
        int16("image size X", ImageSizeX, 640),
        int16("image size Y", ImageSizeY, 480),
        int16("image alignment", ImageAlign, 0),
        text("image border", ImageBorder, QStringLiteral("None")),
        text("image effect", ImageEffect, QString()),
        text("effect detail", EffectDetail, QString()),
        int16("effect speed", EffectSpeed, 5),
        boolean("on top", m_onTop, false),
        boolean("fit font to window", LyricsFitFont, true),
        boolean("scroll title", Scroll, true),
        text("fullscreen monitor", Monitor, QStringLiteral("Monitor 1 (primary)")),
        text("sound font", SoundFont, QString()),
        boolean("keep pitch", KeepPitch, true),
        boolean("cdg smooth", CdgSmooth, false),
        text("library folders", LibraryFolders, m_defaultMusicPath),
        boolean("remote on", RemoteOn, false),
        int32("remote port", RemotePort, 8777),
        text("remote pin", RemotePin, QString()),
        boolean("remote approve", RemoteApprove, false),
        int32("remote requests per minute", RemoteRequestsPerMinute, 10),
        int32("remote songs per guest", RemoteSongsPerGuest, 3),
    };
}

QString ThemeClass::DefaultFont(const QStringList& installed)
{
    for (const char* name : {"Impact", "Arial", "Tahoma"})
        if (installed.contains(QString::fromLatin1(name)))
            return QString::fromLatin1(name);
    return QStringLiteral("Times New Roman");
}

void ThemeClass::Load(const ThemeEnvironment& environment)
{
    m_monitorList = environment.monitors;
    m_defaultVoiceDirectory = environment.dataFolder + QStringLiteral("/Voice");
    m_defaultMusicPath = environment.musicFolder;
    m_defaultFont = DefaultFont(environment.fontFamilies);

    for (const Setting& setting : Settings()) {
        const QString stored = m_store.RegReadString(setting.key);
        setting.decode(stored.isEmpty() ? setting.defaultText : stored);
    }

    SetLyricsPicPath(m_lyricsPicPath);

    const bool attached = std::any_of(m_monitorList.begin(), m_monitorList.end(),
                                      [this](const MonitorRecord& m) { return m.name == Monitor; });
    if (!attached && !m_monitorList.empty())
        Monitor = m_monitorList.front().name;
}

void ThemeClass::Save()
{
    // "on top" leads and "record device" closes the written order.
    std::vector<Setting> settings = Settings();
    auto byKey = [&settings](const char* key) {
        return std::find_if(settings.begin(), settings.end(),
                            [key](const Setting& s) { return s.key == QLatin1String(key); });
    };
    std::rotate(settings.begin(), byKey("on top"), byKey("on top") + 1);
    auto recordDevice = byKey("record device");
    std::rotate(recordDevice, recordDevice + 1, settings.end());

    for (const Setting& setting : settings)
        m_store.RegWriteString(setting.key, setting.encode());
    m_store.Sync();
}

std::vector<std::pair<QString, QString>> ThemeClass::StoredValues() const
{
    std::vector<std::pair<QString, QString>> values;
    for (const Setting& setting : const_cast<ThemeClass*>(this)->Settings())
        values.emplace_back(setting.key, setting.encode());
    return values;
}

std::vector<std::pair<QString, QString>> ThemeClass::DefaultValues() const
{
    std::vector<std::pair<QString, QString>> values;
    for (const Setting& setting : const_cast<ThemeClass*>(this)->Settings())
        values.emplace_back(setting.key, setting.defaultText);
    return values;
}

void ThemeClass::Restore(const std::vector<std::pair<QString, QString>>& values)
{
    for (const Setting& setting : Settings())
        for (const auto& [key, text] : values)
            if (key == setting.key)
                setting.decode(text);
    SetLyricsPicPath(m_lyricsPicPath);
    if (ApplyOnTop)
        ApplyOnTop(m_onTop);
}

void ThemeClass::SetLyricsOffset(double seconds)
{
    m_lyricsOffset = std::round(seconds * 1000.0) / 1000.0;
}

void ThemeClass::SetOnTop(bool flag)
{
    m_onTop = flag;
    if (ApplyOnTop)
        ApplyOnTop(flag);
}

void ThemeClass::SetLyricsPicPath(const QString& path)
{
    QImage picture;
    if (!path.isEmpty() && path != QLatin1String("default") && QFileInfo(path).isFile())
        picture.load(path);
    if (picture.isNull()) {
        m_lyricsPicPath = QStringLiteral("default");
        m_lyricsPicture = DefaultPicture();
    } else {
        m_lyricsPicPath = path;
        m_lyricsPicture = picture;
    }
}

QImage ThemeClass::DefaultPicture()
{
    static const QImage picture = [] {
        // Read through Qt's SVG image plugin, so the settings link no SVG library.
        QImageReader reader(QStringLiteral(":/skin/karaoke-background.svg"));
        QImage image(reader.size().isValid() ? reader.size() : QSize(1920, 1080), QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.drawImage(0, 0, reader.read());
        return image;
    }();
    return picture;
}

QFont ThemeClass::LyricsFontFace() const
{
    QFont font(LyricsFont);
    font.setPointSize(std::max<int>(1, LyricsFontSize));
    font.setBold(LyricsFontBold);
    font.setItalic(LyricsFontItalic);
    return font;
}
