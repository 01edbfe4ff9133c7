// swtool render: the karaoke window's frame at a song position, or a run of frames, drawn by the
// window's own code on the offscreen platform. The ticks run from 0 every 10 ms, as in the player,
// so the page is the one a listener sees at that moment.

#include "app/SwtoolCommands.h"
#include "cdg/CdgSong.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "karaoke/KaraokeView.h"
#include "lyrics/LyricsLoader.h"
#include "tags/MP3Class.h"
#include "video/VideoStream.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <cmath>

namespace {

constexpr double kTick = 0.010;
constexpr double kLastTimerSeconds = 8.0;

struct RenderOptions {
    QString song;
    double at = -1;
    QSize size{1280, 720};
    int mode = -1;
    qreal scale = 1.0;
    bool fullScreen = false;
    QString output;
    QString videoDir;
    double fps = 0;
    double from = 0;
    double to = -1;
};

bool ReadNumber(QStringList& args, double& value)
{
    bool ok = false;
    value = args.isEmpty() ? 0 : args.takeFirst().toDouble(&ok);
    return ok;
}

bool ReadOptions(QStringList args, RenderOptions& o)
{
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        double number = 0;
        if (arg == u"--at" && ReadNumber(args, number) && number >= 0)
            o.at = number;
        else if (arg == u"--size" && !args.isEmpty()) {
            const QStringList wh = args.takeFirst().split(u'x');
            if (wh.size() != 2 || wh[0].toInt() < 16 || wh[1].toInt() < 16)
                return false;
            o.size = QSize(wh[0].toInt(), wh[1].toInt());
        } else if (arg == u"--mode" && ReadNumber(args, number) && number >= 0 && number <= 3)
            o.mode = int(number);
        else if (arg == u"--scale" && ReadNumber(args, number) && number >= 1 && number <= 4)
            o.scale = number;
        else if (arg == u"--fullscreen")
            o.fullScreen = true;
        else if (arg == u"-o" && !args.isEmpty())
            o.output = args.takeFirst();
        else if (arg == u"--video" && !args.isEmpty())
            o.videoDir = args.takeFirst();
        else if (arg == u"--fps" && ReadNumber(args, number) && number > 0 && number <= 120)
            o.fps = number;
        else if (arg == u"--from" && ReadNumber(args, number) && number >= 0)
            o.from = number;
        else if (arg == u"--to" && ReadNumber(args, number) && number >= 0)
            o.to = number;
        else if (!arg.startsWith(u'-') && o.song.isEmpty())
            o.song = arg;
        else
            return false;
    }
    const bool still = o.at >= 0 && !o.output.isEmpty() && o.videoDir.isEmpty();
    const bool video = !o.videoDir.isEmpty() && o.fps > 0 && o.to >= o.from && o.at < 0 && o.output.isEmpty();
    return !o.song.isEmpty() && (still || video);
}

// The song position the window reads: whatever time the renderer has reached.
class RenderClock final : public SongClock {
public:
    bool HasSong() const override { return true; }
    double Position() const override { return Now; }
    double Now = 0;
};

// Plays the ticks from 0 to `until`, with the end-of-song timer the window would run and the
// frames of any transition due at each tick, and hands every tick to `atTick`.
void RunTicks(KaraokeView& view, RenderClock& clock, double until, const std::function<void(double)>& atTick)
{
    double timerStarted = -1;
    view.LastTimerSwitch = [&](bool enabled) {
        if (!enabled)
            timerStarted = -1;
        else if (timerStarted < 0)
            timerStarted = clock.Now;
    };
    view.Clock = [&clock] { return clock.Now * 1000.0; };
    const long long ticks = std::llround(until / kTick);
    for (long long i = 0; i <= ticks; ++i) {
        clock.Now = double(i) * kTick;
        view.StepTransition();
        double position = clock.Now;
        view.Tick(position);
        if (timerStarted >= 0 && clock.Now - timerStarted >= kLastTimerSeconds) {
            view.Restore();
            timerStarted = -1;
        }
        atTick(clock.Now);
    }
}

// The window's picture at a song second; a video song's frame is waited for, so a slow machine
// renders the same frames.
QImage Shown(const KaraokeView& view, const LyricsState& lyrics, double seconds)
{
    if (!lyrics.Video)
        return view.Frame();
    lyrics.Video->SettleAt(seconds);
    return view.Composed();
}

} // namespace

int RenderFrames(const QStringList& args)
{
    RenderOptions o;
    if (!ReadOptions(args, o))
        return 2;
    if (!QFileInfo(o.song).isFile())
        return Fail(QStringLiteral("File not found: %1").arg(o.song));

    PlayerReading reading(o.song);
    ThemeClass& theme = reading.theme;
    if (o.mode >= 0)
        theme.DisplayMode = int16_t(o.mode);

    // The song as the player opens it: the audio of a CD+G file, the pair a zip holds.
    std::unique_ptr<ZipSong> zip;
    const QString song = AudioOfKaraokeFile(o.song, zip);
    if (song.isEmpty())
        return Fail(QStringLiteral("No karaoke song in %1").arg(o.song));
    LyricsState lyrics;
    const LyricsEnvironment env = reading.Environment();
    // A disc's graphics stand for the words a song of it has not; a video plays under them.
    lyrics.Graphics = ReadCdgFile(CdgFileOf(song));
    if (auto video = std::make_shared<VideoStream>(song); !lyrics.Graphics && !video->Failed())
        lyrics.Video = std::move(video);
    if (const QString error = LoadPlayerLyrics(lyrics, song, env);
        !error.isEmpty() && !lyrics.Graphics && !lyrics.Video)
        return Fail(error);
    RenderClock clock;
    KaraokeView view(lyrics, theme, clock);
    view.ResizeMe(o.size, o.scale, o.fullScreen);
    if (theme.LyricsFitFont)
        view.FitLyrics();
    view.ChangeLyrics();

    if (o.videoDir.isEmpty()) {
        RunTicks(view, clock, o.at, [](double) {});
        if (!Shown(view, lyrics, o.at).save(o.output))
            return Fail(QStringLiteral("Cannot write %1").arg(o.output));
        return 0;
    }

    if (!QDir().mkpath(o.videoDir))
        return Fail(QStringLiteral("Cannot create %1").arg(o.videoDir));
    long long frame = 0;
    bool written = true;
    RunTicks(view, clock, o.to, [&](double now) {
        // A frame is due once the tick has reached its time.
        while (written && o.from + double(frame) / o.fps <= now + kTick / 2 && o.from + double(frame) / o.fps <= o.to) {
            const QString name = QStringLiteral("%1/%2.png").arg(o.videoDir).arg(frame, 5, 10, QLatin1Char('0'));
            written = Shown(view, lyrics, now).save(name);
            ++frame;
        }
    });
    if (!written)
        return Fail(QStringLiteral("Cannot write into %1").arg(o.videoDir));
    QTextStream(stdout) << frame << " frames\n";
    return 0;
}
