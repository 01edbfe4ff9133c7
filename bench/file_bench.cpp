// What opening and saving costs for large inputs: a lyrics block with one line of many syllables
// (the time to load it as the player does), and a 200 MB song (time and the peak memory above
// what the program held before, for the probe, the lyrics search, a tag save and a lyrics save).
// The machine's own stalls are printed beside the figures.

#include "BenchKit.h"
#include "lyrics/LyricsLoader.h"
#include "tags/LyricsEmbedding.h"
#include "tags/MP3Class.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>

namespace {

long StatusKb(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').front().toLong();
    return -1;
}

// Resets the peak resident size to the present one, so the next peak is the operation's own.
void ResetPeak()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

void Measure(const char* what, const std::function<void()>& run)
{
    ResetPeak();
    const long before = StatusKb("VmRSS:");
    QElapsedTimer timer;
    timer.start();
    run();
    const double ms = double(timer.nsecsElapsed()) / 1e6;
    const long peak = StatusKb("VmHWM:");
    std::printf("  %-34s %8.1f ms   peak +%6.1f MB\n", what, ms, double(peak - before) / 1024.0);
}

QByteArray LongLineBlock(int syllables)
{
    QByteArray block = "#Songweaver\r\n#TITLE=One long line\r\n";
    for (int i = 0; i < syllables; ++i)
        block += '[' + QByteArray::number(i * 0.05, 'f', 2) + "]la ";
    return block + "\r\n#End Songweaver\r\n";
}

void LongLines(const QString& folder)
{
    std::printf("one line of N timed syllables, loaded as the player opens a song:\n");
    const QFont font;
    for (const int n : {2500, 10000, 20000, 120000}) {
        const QString path = folder + QStringLiteral("/line%1.mp3").arg(n);
        const QByteArray block = LongLineBlock(n);
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(QByteArray(4096, '\0') + "\r\n" + block);
        file.close();
        LyricsState lyrics;
        LyricsEnvironment env{font, false, nullptr, {}};
        QElapsedTimer timer;
        timer.start();
        const bool loaded = LoadLyrics(lyrics, path, env);
        std::printf("  N = %6d (%7.1f KB block): %8.1f ms, %s, %zu syllables\n", n, block.size() / 1024.0,
                    double(timer.nsecsElapsed()) / 1e6, loaded ? "loaded" : "NOT loaded", lyrics.PlayLyrics.size() - 1);
    }
}

// A song of 200 MB whose middle is a hole in the file, with an ID3v2 tag, a lyrics block and an
// ID3v1 tag, as a long live recording would have.
QString LargeSong(const QString& folder, const QString& fixture)
{
    const QString path = folder + QStringLiteral("/large.mp3");
    QFile::copy(fixture, path);
    QFile file(path);
    file.open(QIODevice::ReadWrite);
    QByteArray tail = file.readAll();
    const QByteArray v1 = tail.right(128);
    file.resize(qint64(200) << 20);
    file.seek(file.size());
    file.write("\r\n" + LongLineBlock(200) + (v1.startsWith("TAG") ? v1 : QByteArray()));
    return path;
}

void LargeFile(const QString& folder, const QString& fixture)
{
    const QString path = LargeSong(folder, fixture);
    std::printf("a %.0f MB song (resident before: %.1f MB):\n", QFileInfo(path).size() / 1048576.0,
                StatusKb("VmRSS:") / 1024.0);
    Measure("probe (ReadFile, ReadTag)", [&] {
        MP3Class song;
        song.SetFilename(path);
        song.ReadFile();
        song.ReadTag();
    });
    Measure("lyrics search and load", [&] {
        LyricsState lyrics;
        LoadLyrics(lyrics, path, LyricsEnvironment{QFont(), false, nullptr, {}});
    });
    Measure("ID3 tag save", [&] {
        MP3Class song;
        song.SetFilename(path);
        song.ReadFile();
        song.ReadTag();
        Id3TagTexts texts = song.TagTexts();
        texts.Title2 = QStringLiteral("Saved by the bench");
        song.SaveId3Tag(texts);
    });
    Measure("lyrics save into the song", [&] {
        SaveMP3Host host;
        host.MediaOpen = true;
        host.Text = [](const char* key) { return QString::fromLatin1(key); };
        host.Critical = host.Information = [](const QString&) {};
        host.WaitCursor = [](bool) {};
        std::vector<LyricItem> lyrics(3);
        lyrics[1].Text = QStringLiteral("la");
        lyrics[2].Text = QStringLiteral("la");
        SaveMP3(path, lyrics, {PictureItem{}}, host);
    });
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir folder;
    LongLines(folder.path());
    LargeFile(folder.path(), QStringLiteral(SONGWEAVER_SOURCE_DIR "/tests/fixtures/media/both.mp3"));
    const MachineStalls stalls = MeasureMachineStalls(1000);
    std::printf("the machine alone, 1 s of an empty loop: %zu gaps over 1 ms, longest %.2f ms\n", stalls.count,
                stalls.longestMs);
    return 0;
}
