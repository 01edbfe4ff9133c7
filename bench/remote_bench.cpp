// Guests' phones under load: 50 guests on loopback join, search as they type and follow the
// queue for 60 s while a song plays on the null device. Prints the search latency, the requests
// served a second, the sound's gaps (a song whose samples count their own frames shows any frame
// lost or repeated), the interface thread's longest stall, and the machine's own stalls beside.

#include "BenchKit.h"
#include "audio/AudioEngine.h"
#include "audio/FileSource.h"
#include "audio/NullDevice.h"
#include "audio/WavFile.h"
#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "remote/RemoteApi.h"
#include "remote/RemoteServer.h"
#include "remote/RemoteShared.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <map>
#include <thread>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kCountModulo = 32768;
int guestCount = 50;
constexpr int kSongs = 10'000;

double Percentile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[std::min(v.size() - 1, size_t(p * double(v.size())))];
}

const char* const kWords[] = {"love", "night", "dance", "heart", "rain", "fire", "blue", "summer", "road", "dream",
                              "light", "river", "moon", "star", "home", "wild", "gold", "time", "queen", "song"};

void StoreSongs(LibraryDatabase& database)
{
    QRandomGenerator random(7);
    database.Write([&] {
        for (int i = 0; i < kSongs; ++i) {
            LibrarySong song;
            song.path = QStringLiteral("/music/%1/song%2.mp3").arg(i / 100).arg(i).toUtf8();
            song.stamp = {1000, 1};
            song.kind = QStringLiteral("audio");
            song.title = QStringLiteral("%1 %2 %3").arg(kWords[random.bounded(20)], kWords[random.bounded(20)]).arg(i);
            song.artist = QStringLiteral("Artist %1").arg(i % 700);
            song.length = 180;
            if (!StoreSong(database.Db(), song))
                return false;
        }
        return true;
    });
}

// The song's left channel counts its frames from 1 to 32767 and round again: a frame lost,
// repeated or silenced breaks the count. Written as 16-bit steps (the writer scales by 32767),
// read back as the decoder gives them (in steps of 1/32768).
QString MakeCountingSong(const QString& path, int seconds)
{
    const auto frames = size_t(seconds) * kRate;
    std::vector<float> samples(frames * 2, 0.0f);
    for (size_t i = 0; i < frames; ++i)
        samples[2 * i] = float((i % (kCountModulo - 1)) + 1) / float(kCountModulo - 1);
    WriteStereoWav(path, samples, kRate);
    return path;
}

class CountedFrames final : public AudioSource {
public:
    explicit CountedFrames(std::shared_ptr<FileSource> inner) : m_inner(std::move(inner)) {}
    void Render(float* out, int frames, const BufferTiming& timing) noexcept override
    {
        m_inner->Render(out, frames, timing);
        for (int i = 0; i < frames; ++i) {
            const long counted = std::lround(double(out[2 * i]) * kCountModulo);
            if (m_last > 0 && counted != m_last % (kCountModulo - 1) + 1)
                m_breaks.fetch_add(1, std::memory_order_relaxed);
            if (counted > 0 || m_last > 0)
                m_frames.fetch_add(1, std::memory_order_relaxed);
            m_last = counted;
        }
    }
    std::atomic<long> m_breaks{0};
    std::atomic<long> m_frames{0};

private:
    std::shared_ptr<FileSource> m_inner;
    long m_last = 0;
};

// The guests, on a thread of their own so the interface thread measured is the program's.
class Guests final : public QObject {
public:
    Guests(QString base, int seconds) : m_base(std::move(base)), m_seconds(seconds) {}

    void Run()
    {
        for (int i = 0; i < guestCount; ++i) {
            auto* phone = new QNetworkAccessManager(this);
            Send(phone, "POST", "/api/join",
                 QStringLiteral(R"({"name":"Guest %1","pin":"1234"})").arg(i).toUtf8(), [this, phone](QNetworkReply*) {
                     Typing(phone, 0);
                     Poll(phone);
                 });
        }
        QTimer::singleShot(m_seconds * 1000, this, [this] {
            m_done = true;
            QThread::currentThread()->quit();
        });
    }

    std::vector<double> searches, polls;
    long answered = 0, refused = 0;
    std::map<int, long> failures;  // by status, 0 for no answer at all

    long Failed() const
    {
        long failed = 0;
        for (const auto& [status, count] : failures)
            failed += count;
        return failed;
    }

private:
    template <typename Then>
    void Send(QNetworkAccessManager* phone, const QByteArray& method, const QString& path, const QByteArray& body, Then then)
    {
        QNetworkRequest request(QUrl(m_base + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        QNetworkReply* reply = phone->sendCustomRequest(request, method, body);
        auto* clock = new QElapsedTimer;
        clock->start();
        connect(reply, &QNetworkReply::finished, this, [this, reply, clock, then] {
            const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            if (status == 429)
                ++refused;
            else if (status >= 200 && status < 300)
                ++answered;
            else
                ++failures[status];
            reply->setProperty("ms", double(clock->nsecsElapsed()) / 1e6);
            delete clock;
            reply->readAll();
            then(reply);
            reply->deleteLater();
        });
    }

    // A guest types a word a letter at a time, 300 ms apart, searching at each letter, then
    // thinks for two seconds.
    void Typing(QNetworkAccessManager* phone, int letter)
    {
        if (m_done)
            return;
        const QString word = QString::fromLatin1(kWords[QRandomGenerator::global()->bounded(20)]);
        const QString typed = word.left(std::max(1, letter));
        Send(phone, "GET", "/api/search?q=" + typed, {}, [this, phone, letter, word](QNetworkReply* reply) {
            searches.push_back(reply->property("ms").toDouble());
            const bool wordDone = letter >= word.size();
            QTimer::singleShot(wordDone ? 2000 : 300, this, [this, phone, letter, wordDone] {
                Typing(phone, wordDone ? 1 : letter + 1);
            });
        });
    }

    void Poll(QNetworkAccessManager* phone)
    {
        if (m_done)
            return;
        Send(phone, "GET", "/api/queue", {}, [this, phone](QNetworkReply* reply) {
            polls.push_back(reply->property("ms").toDouble());
            QTimer::singleShot(2000, this, [this, phone] { Poll(phone); });
        });
    }

    QString m_base;
    int m_seconds;
    bool m_done = false;
};

// The API's own work for the searches guests type, called directly: the share of a round trip
// that is the server's, without the sockets and the clients.
std::vector<double> SearchWork(LibraryDatabase& database, RemoteShared& shared)
{
    RemoteApi api(database, shared);
    RemoteCall call;
    call.method = "POST";
    call.path = QStringLiteral("/api/join");
    call.headers = {{"host", "127.0.0.1"}, {"content-type", "application/json"}};
    call.body = R"({"name":"Bench","pin":"1234"})";
    call.address = QStringLiteral("127.0.0.1");
    const RemoteReply joined = api.Handle(call);
    call.method = "GET";
    call.body.clear();
    call.headers["cookie"] = joined.headers.front().second.split(';').first();
    std::vector<double> times;
    QElapsedTimer clock;
    for (int i = 0; i < 2000; ++i) {
        const QString word = QString::fromLatin1(kWords[i % 20]);
        call.path = QStringLiteral("/api/search");
        call.query = QUrlQuery(QStringLiteral("q=") + word.left(1 + (i / 20) % word.size()));
        call.now = i * 200;
        clock.start();
        api.Handle(call);
        times.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    return times;
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(5, std::atoi(argv[1])) : 60;
    guestCount = argc > 2 ? std::clamp(std::atoi(argv[2]), 0, 100) : 50;
    QTemporaryDir dir;
    LibraryDatabase database(dir.filePath("library.db"));
    if (!database.Open().Usable())
        return 1;
    StoreSongs(database);

    RemoteShared shared;
    RemoteSettings settings;
    settings.pin = QStringLiteral("1234");
    shared.SetSettings(settings);
    RemoteServer server(dir.filePath("library.db"), shared);
    const RemoteListening listening = server.Start({QHostAddress(QHostAddress::LocalHost)}, 0);
    if (!listening.Listening()) {
        std::printf("the server does not listen: %s\n", qPrintable(listening.error));
        return 1;
    }

    AudioEngine engine{std::make_unique<NullDevice>(kRate, 512)};
    engine.Start();
    std::string error;
    auto file = FileSource::Open(MakeCountingSong(dir.filePath("counting.wav"), seconds + 10).toStdString(), kRate, error);
    auto counted = std::make_shared<CountedFrames>(file);
    file->Run();
    engine.AddSource(counted);

    SleepingProbe probe;

    QThread guestThread;
    Guests guests(QStringLiteral("http://127.0.0.1:%1").arg(listening.port), seconds);
    guests.moveToThread(&guestThread);
    QObject::connect(&guestThread, &QThread::started, &guests, [&guests] { guests.Run(); });

    // The interface thread's 10 ms tick, as the player's; its longest gap is the stall.
    double longestGapMs = 0;
    QElapsedTimer tick;
    QTimer interfaceTick;
    interfaceTick.setTimerType(Qt::PreciseTimer);
    interfaceTick.setInterval(10);
    QObject::connect(&interfaceTick, &QTimer::timeout, [&] {
        longestGapMs = std::max(longestGapMs, double(tick.nsecsElapsed()) / 1e6);
        tick.restart();
    });
    QObject::connect(&guestThread, &QThread::finished, &app, &QCoreApplication::quit);
    tick.start();
    interfaceTick.start();
    const double cpuStart = CpuSeconds();
    QElapsedTimer wall;
    wall.start();
    guestThread.start();
    app.exec();
    guestThread.wait();
    const double wallSeconds = double(wall.nsecsElapsed()) / 1e9;
    const MachineStalls stalls = probe.Stop();
    engine.RemoveSource(counted.get());

    const long calls = guests.answered + guests.refused + guests.Failed();
    std::printf("remote, %d guests on loopback for %.0f s, %d songs in the library, a song on the null device:\n",
                guestCount, wallSeconds, kSongs);
    std::printf("  searches %zu: median %.2f ms, p99 %.2f ms, worst %.2f ms\n", guests.searches.size(),
                Percentile(guests.searches, 0.5), Percentile(guests.searches, 0.99), Percentile(guests.searches, 1.0));
    const std::vector<double> work = SearchWork(database, shared);
    std::printf("  the API's own work per search, called directly afterwards: median %.2f ms, p99 %.2f ms\n",
                Percentile(work, 0.5), Percentile(work, 0.99));
    std::printf("  queue polls %zu: median %.2f ms, p99 %.2f ms\n", guests.polls.size(), Percentile(guests.polls, 0.5),
                Percentile(guests.polls, 0.99));
    std::printf("  requests served %.1f a second (%ld answered, %ld refused as too fast, %ld failed)\n",
                double(calls) / wallSeconds, guests.answered, guests.refused, guests.Failed());
    for (const auto& [status, count] : guests.failures)
        std::printf("    status %d: %ld\n", status, count);
    std::printf("  sound: %ld frames heard, %ld breaks in the count (frames lost, repeated or silenced)\n",
                counted->m_frames.load(), counted->m_breaks.load());
    std::printf("  interface thread's longest gap between 10 ms ticks: %.2f ms\n", longestGapMs);
    std::printf("  whole process: %.0f %% of one core\n", 100 * (CpuSeconds() - cpuStart) / wallSeconds);
    std::printf("  a sleeping probe woke late by over 1 ms %zu times meanwhile, at most %.2f ms\n", stalls.count, stalls.longestMs);
    return 0;
}
