// swtool as a user runs it: its printed text is part of what it promises.

#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QThread>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct ToolRun {
    int exitCode = -1;
    QString out;
    QString err;
};

ToolRun Swtool(const QStringList& args, const QString& configHome)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(SWTOOL_PATH), args);
    process.waitForFinished(30000);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

TEST(Swtool, TextPrintsTheDisplayTextOfAKey)
{
    QTemporaryDir home;
    EXPECT_EQ(Swtool({"text", "Play"}, home.path()).out, "Play\n");
    EXPECT_EQ(Swtool({"text", "Play", "--polish"}, home.path()).out, "Odtwarzaj\n");
    EXPECT_EQ(Swtool({"text", "MsgNew"}, home.path()).out, "All data inside editor will be lost.\r\nContinue anyway?\n");
    EXPECT_EQ(Swtool({"text", "NoSuchKey"}, home.path()).out, "\n");
    const ToolRun bad = Swtool({"text"}, home.path());
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.err.contains(QStringLiteral("usage: swtool")));
    EXPECT_EQ(Swtool({"frobnicate"}, home.path()).exitCode, 2);
}

TEST(Swtool, SettingsPrintsEveryKeyInLoadOrderAsStored)
{
    QTemporaryDir home;
    WriteFileBytes(home.filePath(QStringLiteral("Tonehaven/Songweaver.conf")),
                   "[General]\nkaraoke%20offset=\"0,5\"\nkaraoke%20ball=-1\nfullscreen%20monitor=Monitor 9\n");
    const ToolRun run = Swtool({"settings"}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 52);
    EXPECT_EQ(lines[0], "karaoke window\t1");
    EXPECT_EQ(lines[1], "karaoke offset\t0.5");
    EXPECT_EQ(lines[2], "record device\t4099");
    EXPECT_TRUE(lines.contains(QStringLiteral("karaoke ball\t1")));
    EXPECT_TRUE(lines.contains(QStringLiteral("karaoke outline color\t0,0,0,0")));
    EXPECT_TRUE(lines.contains(QStringLiteral("karaoke background picture\tdefault")));
    EXPECT_EQ(lines[41], "fullscreen monitor\tMonitor 1 (primary)") << "an absent monitor gives the first";
    EXPECT_EQ(lines[42], "sound font\t");
    EXPECT_EQ(lines[43], "keep pitch\t1");
    EXPECT_EQ(lines[44], "cdg smooth\t0");
    EXPECT_TRUE(lines[45].startsWith("library folders\t"));
    EXPECT_EQ(lines[46], "remote on\t0") << "guests' phones are off at first";
    EXPECT_EQ(lines.last(), "remote songs per guest\t3");
    EXPECT_EQ(ReadFileBytes(home.filePath(QStringLiteral("Tonehaven/Songweaver.conf"))),
              "[General]\nkaraoke%20offset=\"0,5\"\nkaraoke%20ball=-1\nfullscreen%20monitor=Monitor 9\n")
        << "looking does not write";
}

TEST(Swtool, LyricsPrintsHeaderPicturesAndSyllablesAndWritesThemBack)
{
    QTemporaryDir home;
    QTemporaryDir songs;
    const QString song = songs.filePath("song.mp3");
    WriteFileBytes(song, QByteArray(64, '\xff') +
                             "#Songweaver\r\n#ARTIST=Queen\r\n#FORE COLOR=255\r\n#LAYOUT=2\r\n#IMAGE=bg.png%12%Fade%5%Left\r\n"
                             "[1,5]Hel[2.25]lo \r\n[3]world\r\n#End Songweaver\r\n");
    const ToolRun run = Swtool({"lyrics", song}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.value(0), "format\tSongweaver (internal)");
    EXPECT_TRUE(lines.contains("artist\tQueen"));
    EXPECT_TRUE(lines.contains("fore color\t255"));
    EXPECT_TRUE(lines.contains("highlight color\t-1"));
    EXPECT_TRUE(lines.contains("layout\t0"));
    EXPECT_TRUE(lines.contains("image custom x\t320"));
    EXPECT_TRUE(lines.contains("image\t" + songs.filePath("bg.png") + "\t12\tFade\t5\tLeft"));
    EXPECT_EQ(lines.mid(lines.size() - 3),
              (QStringList{"syllable\t1\t1.500\t0\tHel\tHello ", "syllable\t2\t2.250\t1\tlo \tHello ",
                           "syllable\t3\t3.000\t0\tworld\tworld"}));

    const QString written = songs.filePath("new folder/deeper/copy.lrs");
    ASSERT_EQ(Swtool({"lyrics", song, "--write", written}, home.path()).exitCode, 0);
    const ToolRun again = Swtool({"lyrics", written}, home.path());
    EXPECT_EQ(again.out.section('\n', 1), run.out.section('\n', 1));
    EXPECT_TRUE(again.out.startsWith("format\tSongweaver (*LRS)\n"));

    const ToolRun editor = Swtool({"lyrics", song, "--editor"}, home.path());
    EXPECT_EQ(editor.exitCode, 1);
    EXPECT_TRUE(editor.err.contains("Lyrics format doesn't seem to be valid.")) << editor.err.toStdString();
    EXPECT_EQ(editor.err.trimmed().section('\n', -1), "Line 4: #LAYOUT=2") << "the line to mend";

    WriteFileBytes(song, "audio#Songweaver\r\nbroken\r\n#End Songweaver\r\n");
    const ToolRun damaged = Swtool({"lyrics", song}, home.path());
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_TRUE(damaged.err.contains("Lyrics format doesn't seem to be valid."));
    EXPECT_EQ(damaged.out, "");
}

TEST(Swtool, ProbePrintsWhatTheProgramReadsOfAnAudioFile)
{
    QTemporaryDir home;
    const ToolRun run = Swtool({"probe", MediaFixture("lyrics3.mp3")}, home.path());
    EXPECT_EQ(run.exitCode, 0);
    const QStringList lines = run.out.split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.mid(0, 7), (QStringList{"ReadFile\ttrue", "format\tMP3", "Length\t1.164", "Bitrate\t32",
                                            "SampleRate\t22050", "ReadFile.Title\tSong", "ReadFile.Artist\tSinger"}));
    EXPECT_TRUE(lines.contains("Genre1\tPop"));
    EXPECT_TRUE(lines.contains("LyricsExist\ttrue"));
    EXPECT_TRUE(lines.contains("Lyrics\t[00:01]First line\\n[00:02]Second line\\nno time here\\n[00:03]Third"))
        << "line ends as \\n escapes";
    EXPECT_TRUE(lines.last().startsWith("MPEGInfo\tSize: 4656 bytes\\nLength: 1 seconds\\nMPEG 2.0 Layer III"));
    for (const QString& line : lines)
        EXPECT_EQ(line.count(u'\t'), 1) << line.toStdString();

    const ToolRun text = Swtool({"probe", MediaFixture("not-audio.txt")}, home.path());
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_TRUE(text.out.startsWith("ReadFile\tfalse\nformat\t\nLength\t0\n"));
    EXPECT_EQ(Swtool({"probe", "/no/such/file.mp3"}, home.path()).exitCode, 1);
    EXPECT_EQ(Swtool({"probe"}, home.path()).exitCode, 2);
}

TEST(Swtool, RenderWritesTheKaraokeFrameAndRunsOfFrames)
{
    QTemporaryDir home;
    const QString song = SourcePath("tests/fixtures/karaoke/amazing-grace.lrs");
    const QString still = home.filePath("frame.png");
    const ToolRun run = Swtool({"render", song, "--at", "3.2", "--size", "640x360", "-o", still}, home.path());
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QImage frame(still);
    EXPECT_EQ(frame.size(), QSize(640, 360));
    // The lit syllables stand in the default highlight colour.
    auto lit = [](const QImage& image) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixel(x, y) == qRgb(206, 221, 253) ? 1 : 0;
        return count;
    };
    EXPECT_GT(lit(frame), 200);

    const ToolRun doubled = Swtool({"render", song, "--at", "3.2", "--size", "640x360", "--scale", "2", "-o", still}, home.path());
    EXPECT_EQ(doubled.exitCode, 0);
    EXPECT_EQ(QImage(still).size(), QSize(1280, 720));
    EXPECT_GT(lit(QImage(still)), 3 * lit(frame)) << "twice the pixels each way";

    const QString frames = home.filePath("video");
    const ToolRun video = Swtool({"render", song, "--video", frames, "--fps", "10", "--from", "2", "--to", "3",
                                  "--size", "320x180", "--mode", "1"},
                                 home.path());
    EXPECT_EQ(video.exitCode, 0) << video.err.toStdString();
    EXPECT_EQ(video.out, "11 frames\n");
    EXPECT_EQ(QDir(frames).entryList({"*.png"}).size(), 11);
    EXPECT_TRUE(QFileInfo::exists(frames + "/00010.png"));
    EXPECT_NE(QImage(frames + "/00000.png"), QImage(frames + "/00010.png")) << "the lyrics moved on";

    EXPECT_EQ(Swtool({"render", song, "-o", still}, home.path()).exitCode, 2) << "no position";
    EXPECT_EQ(Swtool({"render", song, "--at", "1", "--mode", "7", "-o", still}, home.path()).exitCode, 2);
    EXPECT_EQ(Swtool({"render", "/no/song.mp3", "--at", "1", "-o", still}, home.path()).exitCode, 1);
}

TEST(Swtool, RenderShowsATransitionHalfDoneInStillsAndVideoAlike)
{
    QTemporaryDir home;
    auto solid = [&](const char* name, QSize size, Qt::GlobalColor colour) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        image.save(home.filePath(QString::fromLatin1(name)));
    };
    solid("red.png", {200, 100}, Qt::red);
    solid("blue.png", {100, 100}, Qt::blue);
    const QString song = home.filePath("pictures.lrs");
    WriteFileBytes(song, "#Songweaver\r\n#TITLE=Pictures\r\n#IMAGE=red.png%0\r\n#IMAGE=blue.png%2%Wipe Side%5%Left\r\n"
                         "[1]One [1.5]two\r\n[6]three\r\n#End Songweaver\r\n");
    auto render = [&](const char* at) {
        const QString still = home.filePath(QStringLiteral("at-%1.png").arg(QLatin1String(at)));
        const ToolRun run = Swtool({"render", song, "--at", at, "--size", "320x180", "-o", still}, home.path());
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        return QImage(still).convertToFormat(QImage::Format_RGB32);
    };
    // The area is the whole 320 x 180 window: steps of 1 pixel every 9 ms, from the left.
    const QImage before = render("1.9");
    const QImage half = render("3.4");
    const QImage after = render("5.5");
    EXPECT_EQ(before.pixel(100, 20), qRgb(255, 0, 0));
    EXPECT_EQ(half.pixel(100, 20), qRgb(0, 0, 255));
    EXPECT_EQ(half.pixel(200, 20), qRgb(255, 0, 0));
    EXPECT_EQ(after.pixel(200, 20), qRgb(0, 0, 255));
    EXPECT_NE(after.pixel(300, 20), qRgb(255, 0, 0));

    const QString frames = home.filePath("video");
    const ToolRun video = Swtool({"render", song, "--video", frames, "--fps", "5", "--from", "3", "--to", "3.4",
                                  "--size", "320x180"},
                                 home.path());
    EXPECT_EQ(video.exitCode, 0) << video.err.toStdString();
    EXPECT_EQ(QImage(frames + "/00002.png").convertToFormat(QImage::Format_RGB32), half);
}

TEST(Swtool, TagsSavesAsTheDialogDoesAndAKilledSaveLeavesAWholeFile)
{
    QTemporaryDir home;
    // A song of some megabytes, so that a kill can land in the middle of its write.
    const QByteArray small = ReadFileBytes(MediaFixture("both.mp3"));
    const qsizetype head = (qsizetype(uint8_t(small[6])) << 21 | qsizetype(uint8_t(small[7])) << 14
                            | qsizetype(uint8_t(small[8])) << 7 | qsizetype(uint8_t(small[9]))) + 10;
    const QByteArray audio = small.mid(head, small.size() - head - 128);
    const QByteArray original = small.left(head) + audio.repeated(600) + small.right(128);
    const QString reference = home.filePath("reference.mp3");
    WriteFileBytes(reference, original);

    const QStringList change = {"--set", "Title2=Killed or not", "--set", "Comment1=whole"};
    QElapsedTimer clock;
    clock.start();
    const ToolRun run = Swtool(QStringList{"tags", reference} + change, home.path());
    const qint64 runMs = clock.elapsed();
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, "result\t1\n");
    const QByteArray saved = ReadFileBytes(reference);
    ASSERT_NE(saved, original);

    QRandomGenerator random(20261122);
    int whole = 0;
    for (int attempt = 0; attempt < 12; ++attempt) {
        const QString song = home.filePath(QStringLiteral("song%1.mp3").arg(attempt));
        WriteFileBytes(song, original);
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", home.path());
        env.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(SWTOOL_PATH), QStringList{"tags", song} + change);
        ASSERT_TRUE(process.waitForStarted());
        QThread::msleep(random.bounded(int(std::max<qint64>(1, runMs))));
        process.kill();
        process.waitForFinished();
        const QByteArray now = ReadFileBytes(song);
        EXPECT_TRUE(now == original || now == saved) << "attempt " << attempt << ": " << now.size() << " bytes";
        whole += now == original || now == saved ? 1 : 0;
    }
    EXPECT_EQ(whole, 12);

    const ToolRun ape = Swtool({"tags", reference, "--ape", "--set", "Title2=x"}, home.path());
    EXPECT_EQ(ape.exitCode, 2) << "the APE save takes the first set only";
    EXPECT_EQ(Swtool({"tags", reference, "--set", "Nothing=x"}, home.path()).exitCode, 2);
    EXPECT_EQ(Swtool({"tags", "/no/such.mp3"}, home.path()).exitCode, 1);
}

TEST(Swtool, TagsRefusesFilesThatAreNoMp3AndNeverCutsASongWithALyingTagSize)
{
    QTemporaryDir home;
    for (const char* name : {"song.kar", "untitled.mid", "comments.ogg", "tone.mpc", "pcm16-stereo.wav"}) {
        SCOPED_TRACE(name);
        const QString song = CopyFixture(MediaFixture(QString::fromLatin1(name)), home.path());
        const QByteArray before = ReadFileBytes(song);
        const ToolRun run = Swtool({"tags", song, "--set", "Title2=x"}, home.path());
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.endsWith(QStringLiteral("Not an MP3 file: ") + song + u'\n')) << run.err.toStdString();
        EXPECT_EQ(ReadFileBytes(song), before);
    }
    const QString ogg = CopyFixture(MediaFixture("comments.ogg"), home.path(), QStringLiteral("other.ogg"));
    EXPECT_TRUE(Swtool({"tags", ogg, "--ape", "--set", "Title1=x"}, home.path())
                    .err.endsWith(QStringLiteral("Not an MP3, Monkey's Audio or Musepack file: ") + ogg + u'\n'));

    // The reproduction of the damaged download: the size bytes of its ID3v2 header set to 7F.
    const QString lying = CopyFixture(MediaFixture("both.mp3"), home.path(), QStringLiteral("lying.mp3"));
    QByteArray bytes = ReadFileBytes(lying);
    bytes.replace(6, 4, QByteArray("\x7F\x7F\x7F\x7F", 4));
    WriteFileBytes(lying, bytes);
    const ToolRun run = Swtool({"tags", lying, "--set", "Title2=x"}, home.path());
    EXPECT_EQ(run.exitCode, 1) << "the bytes show no MP3 file whose audio can be told";
    EXPECT_EQ(ReadFileBytes(lying), bytes);
}

TEST(Swtool, TheDemoSongsLoadWithTheirLyrics)
{
    QTemporaryDir home;
    const ToolRun lyrics = Swtool({"lyrics", SourcePath("resources/demo/twinkle.ogg")}, home.path());
    EXPECT_EQ(lyrics.exitCode, 0) << lyrics.err.toStdString();
    EXPECT_TRUE(lyrics.out.startsWith("format\tSongweaver (*LRS)\nartist\tTraditional\n"));
    EXPECT_EQ(lyrics.out.count("\nsyllable\t"), 42);
    EXPECT_TRUE(lyrics.out.contains("syllable\t1\t2.400\t0\tTwin\t")) << "after a count-in of four beats at 100 bpm";

    const ToolRun ogg = Swtool({"probe", SourcePath("resources/demo/twinkle.ogg")}, home.path());
    EXPECT_TRUE(ogg.out.contains("format\tOGG\n"));
    const ToolRun kar = Swtool({"probe", SourcePath("resources/demo/twinkle.kar")}, home.path());
    EXPECT_TRUE(kar.out.contains("format\tMIDI\n"));
    EXPECT_TRUE(kar.out.contains("ReadFile.Title\tTwinkle, Twinkle, Little Star\n"));
}

TEST(Swtool, PlaylistPrintsTheRowsAsTheWindowLoadsThem)
{
    QTemporaryDir home;
    const QString song = CopyFixture(MediaFixture("id3v1.mp3"), home.path(), "a.mp3");
    WriteFileBytes(home.filePath("list.m3u"), "#EXTM3U\r\n#EXTINF:185,List Text\r\na.mp3\r\n"
                                              "#EXTINF:185\r\nmissing.mp3\r\n#EXTINF:12,Last\r\n");
    const ToolRun m3u = Swtool({"playlist", home.filePath("list.m3u")}, home.path());
    EXPECT_EQ(m3u.exitCode, 0);
    EXPECT_EQ(m3u.out, "Artist One - Title One\t00:01\t" + song + "\nmissing\t03:05\t" + home.filePath("missing.mp3") + "\n");
    const ToolRun saved = Swtool({"playlist", home.filePath("list.m3u"), "--saved"}, home.path());
    EXPECT_EQ(saved.out, "List Text\t03:05\t" + song + "\n") << "trusted text, and the missing file dropped";
    EXPECT_EQ(Swtool({"playlist"}, home.path()).exitCode, 2);
}

TEST(Swtool, MidiPrintsTheFiguresAndChannelsOfTheDemoKaraokeFile)
{
    QTemporaryDir home;
    const ToolRun midi = Swtool({"midi", SourcePath("resources/demo/twinkle.kar")}, home.path());
    ASSERT_EQ(midi.exitCode, 0) << midi.err.toStdString();
    const QStringList lines = midi.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 8 + 16);
    EXPECT_EQ(lines.mid(0, 8), (QStringList{"Length\t31.175", "Title\tTwinkle, Twinkle, Little Star",
                                            "Artist\tTraditional", "MidiTempoMicros\t600000", "MidiBpm\t100.00",
                                            "MidiQuarterDivision\t120", "MidiMsPerTick\t1.25", "MidiDuration\t31.175"}));
    EXPECT_EQ(lines[8], "channel\t0\t1\t10\t100\t0\t2\tMusic Box");
    EXPECT_EQ(lines[9], "channel\t1\t2\t0\t100\t0\t2\tAcoustic Grand");
    EXPECT_EQ(lines[10], "channel\t2\t-1\t0\t100\t0\t0\t");
    EXPECT_EQ(lines[17], "channel\t9\t10\t0\t100\t0\t2\tPercussion");

    const ToolRun notMidi = Swtool({"midi", SourcePath("README.md")}, home.path());
    EXPECT_EQ(notMidi.exitCode, 1);
    EXPECT_TRUE(notMidi.out.isEmpty());
    EXPECT_TRUE(notMidi.err.contains(QStringLiteral("Not a MIDI file")));
}

namespace {

struct WavFacts {
    quint32 rate = 0;
    int channels = 0;
    int bits = 0;
    double seconds = 0;
    int peak = 0;
};

WavFacts ReadWav(const QString& path)
{
    const QByteArray bytes = ReadFileBytes(path);
    WavFacts facts;
    if (bytes.size() < 44 || !bytes.startsWith("RIFF") || bytes.mid(8, 8) != "WAVEfmt " || bytes.mid(36, 4) != "data")
        return facts;
    auto number = [&bytes](int at, int count) {
        quint32 value = 0;
        for (int i = count - 1; i >= 0; --i)
            value = value << 8 | quint8(bytes[at + i]);
        return value;
    };
    facts.channels = int(number(22, 2));
    facts.rate = number(24, 4);
    facts.bits = int(number(34, 2));
    const quint32 data = number(40, 4);
    facts.seconds = double(data) / 4 / facts.rate;
    for (qsizetype at = 44; at + 1 < bytes.size(); at += 2)
        facts.peak = std::max(facts.peak, std::abs(int(qint16(number(int(at), 2)))));
    return facts;
}

} // namespace

TEST(Swtool, MidiRendersTheSongAsThePlayerSoundsIt)
{
    QTemporaryDir home;
    const QString kar = MediaFixture("song.kar");
    const QString whole = home.filePath("whole.wav");
    const ToolRun run = Swtool({"midi", kar, "--wav", whole}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, whole + "\t" + QString::number(ReadWav(whole).seconds, 'f', 3) + " s\ttempo 1.0000\n");
    const WavFacts facts = ReadWav(whole);
    EXPECT_EQ(facts.rate, 44100u);
    EXPECT_EQ(facts.channels, 2);
    EXPECT_EQ(facts.bits, 16);
    EXPECT_NEAR(facts.seconds, 4.0, 512.0 / 44100) << "eight quarters at 120 beats a minute";
    EXPECT_GT(facts.peak, 1000);

    const QString fast = home.filePath("fast.wav");
    ASSERT_EQ(Swtool({"midi", kar, "--wav", fast, "--tempo", "2"}, home.path()).exitCode, 0);
    EXPECT_NEAR(ReadWav(fast).seconds, 2.0, 512.0 / 44100) << "twice the tempo, half the length";

    const QString start = home.filePath("start.wav");
    ASSERT_EQ(Swtool({"midi", kar, "--wav", start, "--seconds", "1"}, home.path()).exitCode, 0);
    EXPECT_DOUBLE_EQ(ReadWav(start).seconds, 1.0);

    const QString muted = home.filePath("muted.wav");
    ASSERT_EQ(Swtool({"midi", kar, "--wav", muted, "--mute", "1"}, home.path()).exitCode, 0);
    EXPECT_EQ(ReadWav(muted).peak, 0) << "the song's only channel muted";

    const ToolRun odd = Swtool({"midi", kar, "--wav", home.filePath("odd.wav"), "--transpose", "3"}, home.path());
    EXPECT_EQ(odd.exitCode, 1);
    EXPECT_TRUE(odd.err.contains("even semitones"));
    EXPECT_FALSE(QFile::exists(home.filePath("odd.wav")));
    EXPECT_EQ(Swtool({"midi", kar, "--wav", home.filePath("x.wav"), "--mute", "17"}, home.path()).exitCode, 2);
}

TEST(Swtool, PlayRendersAnySongAtAKeyAndATempoThroughThePlayersPath)
{
    QTemporaryDir home;
    const QString song = WriteRampWav(home.filePath("song.wav"), 48000 * 4);
    const QString out = home.filePath("out.wav");
    const ToolRun run = Swtool({"play", song, "--wav", out, "--key", "2", "--tempo", "0.8", "--vocals-off"}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const WavFacts facts = ReadWav(out);
    EXPECT_EQ(run.out, out + "\t" + QString::number(facts.seconds, 'f', 3) + " s\n");
    EXPECT_EQ(facts.rate, 44100u);
    EXPECT_EQ(facts.channels, 2);
    EXPECT_EQ(facts.bits, 16);
    EXPECT_NEAR(facts.seconds, 5.0, 0.02) << "four seconds of song at tempo 0.8";
    EXPECT_GT(facts.peak, 1000);

    ASSERT_EQ(Swtool({"play", song, "--wav", out, "--from", "1", "--seconds", "1.5"}, home.path()).exitCode, 0);
    EXPECT_NEAR(ReadWav(out).seconds, 1.5, 0.001);
    const QString kar = MediaFixture("song.kar");
    ASSERT_EQ(Swtool({"play", kar, "--wav", out, "--key", "-2", "--tempo", "2"}, home.path()).exitCode, 0);
    EXPECT_NEAR(ReadWav(out).seconds, 2.0, 512.0 / 44100) << "a MIDI song by its own rules, twice as fast";

    const auto refused = [&](const QStringList& args, const char* message) {
        const ToolRun bad = Swtool(QStringList{"play"} + args + QStringList{"--wav", home.filePath("bad.wav")}, home.path());
        EXPECT_EQ(bad.exitCode, 1) << args.join(' ').toStdString();
        EXPECT_TRUE(bad.err.contains(message)) << bad.err.toStdString();
        EXPECT_FALSE(QFile::exists(home.filePath("bad.wav")));
    };
    refused({song, "--tempo", "3"}, "--tempo takes a number from 0.5 to 2");
    refused({song, "--key", "nan"}, "--key takes a number from -12 to 12");
    refused({song, "--key", "1.5"}, "--key takes whole semitones");
    refused({kar, "--key", "3"}, "whole tones");
    refused({kar, "--vocals-off"}, "only a stereo audio song can lose its vocals");
    refused({MediaFixture("pcm8-mono.wav"), "--vocals-off"}, "only a stereo audio song can lose its vocals");
    refused({MediaFixture("not-audio.txt")}, "not-audio.txt");
    EXPECT_EQ(Swtool({"play", song}, home.path()).exitCode, 2) << "no output named";
}

TEST(Swtool, ConvertGivesTheLyricsInEveryFormatAndLyricsReadsThemAll)
{
    QTemporaryDir home;
    const QString lrc = home.filePath("song.lrc");
    WriteFileBytes(lrc, "[ar:Tester]\n[ti:Tone]\n[00:01.00]<00:01.00>Hel<00:01.50>lo <00:02.00>world\n[00:04.00]Next line\n");
    const ToolRun read = Swtool({"lyrics", lrc}, home.path());
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    EXPECT_TRUE(read.out.startsWith("format\tLRC (enhanced)\nartist\tTester\ntitle\tTone\n")) << read.out.toStdString();
    const qsizetype syllables = read.out.indexOf("syllable\t");
    for (const char* target : {"lrs", "lrc", "elrc", "ultrastar", "ass", "srt"}) {
        const QString suffix = QString::fromLatin1(target) == u"ultrastar" ? "txt" : QString::fromLatin1(target) == u"elrc" ? "e.lrc" : target;
        const QString out = home.filePath(QStringLiteral("out.") + suffix);
        const ToolRun run = Swtool({"convert", lrc, "--to", target, "-o", out}, home.path());
        ASSERT_EQ(run.exitCode, 0) << target << run.err.toStdString();
        const ToolRun back = Swtool({"lyrics", out}, home.path());
        ASSERT_EQ(back.exitCode, 0) << target << back.err.toStdString();
        if (QString::fromLatin1(target) == u"elrc" || QString::fromLatin1(target) == u"ultrastar" || QString::fromLatin1(target) == u"ass" ||
            QString::fromLatin1(target) == u"lrs")
            EXPECT_EQ(back.out.mid(back.out.indexOf("syllable\t")), read.out.mid(syllables)) << target;
        else
            EXPECT_TRUE(back.out.contains("syllable\t1\t1.000\t1\tHello world\tHello world\n")) << target << back.out.toStdString();
    }
    const ToolRun toScreen = Swtool({"convert", lrc, "--to", "srt"}, home.path());
    EXPECT_TRUE(toScreen.out.startsWith("1\r\n00:00:01,000 --> 00:00:04,000\r\nHello world\r\n")) << toScreen.out.toStdString();
    EXPECT_EQ(Swtool({"convert", lrc, "--to", "doc"}, home.path()).exitCode, 2);
    EXPECT_EQ(Swtool({"convert", home.filePath("gone.lrc"), "--to", "srt"}, home.path()).exitCode, 1);
    WriteFileBytes(home.filePath("empty.srt"), "nothing timed\n");
    const ToolRun empty = Swtool({"lyrics", home.filePath("empty.srt")}, home.path());
    EXPECT_EQ(empty.exitCode, 1);
    EXPECT_TRUE(empty.err.contains("Lyrics format doesn't seem to be valid."));
}

TEST(Swtool, CdgDrawsTheRawScreenAtASecond)
{
    QTemporaryDir home;
    const auto packet = [](int instruction, QByteArray data) {
        data.resize(16, '\0');
        return QByteArray("\x09") + char(instruction) + QByteArray(2, '\0') + data + QByteArray(4, '\0');
    };
    // Colour 1 red; the screen in colour 0 (black); at 1 s a red tile in the top left corner.
    QByteArray file = packet(30, QByteArray::fromHex("00003c00")) + packet(1, QByteArray(1, '\0'));
    file += QByteArray(24 * 298, '\0');
    file += packet(6, QByteArray::fromHex("00010000") + QByteArray(12, '\x3f'));
    WriteFileBytes(home.filePath("song.cdg"), file);
    const QString before = home.filePath("before.png"), after = home.filePath("after.png");
    ASSERT_EQ(Swtool({"cdg", home.filePath("song.cdg"), "--at", "0.99", "-o", before}, home.path()).exitCode, 0);
    ASSERT_EQ(Swtool({"cdg", home.filePath("song.cdg"), "--at", "1", "-o", after}, home.path()).exitCode, 0);
    const QImage early(before), late(after);
    EXPECT_EQ(late.size(), QSize(300, 216));
    EXPECT_EQ(early.pixel(0, 0), 0xFF000000u) << "the tile's packet is at 1 s";
    EXPECT_EQ(late.pixel(0, 0), 0xFFFF0000u);
    EXPECT_EQ(late.pixel(6, 0), 0xFF000000u);
    EXPECT_EQ(Swtool({"cdg", home.filePath("gone.cdg"), "--at", "1", "-o", after}, home.path()).exitCode, 1);
    EXPECT_EQ(Swtool({"cdg", home.filePath("song.cdg"), "-o", after}, home.path()).exitCode, 2);
}

TEST(Swtool, SplitAndMergeAreTheEditorsTextCommands)
{
    QTemporaryDir home;
    const QString text = home.filePath("words.txt");
    WriteFileBytes(text, "Row, row,  row\r\n\r\nyour boat\r\n");
    const ToolRun split = Swtool({"split", text}, home.path());
    ASSERT_EQ(split.exitCode, 0) << split.err.toStdString();
    EXPECT_EQ(split.out, "1\t0\tRow, \t0\n2\t0\trow, \t0\n3\t0\trow \t1\n4\t0\tyour \t0\n5\t0\tboat \t1\n");

    WriteFileBytes(home.filePath("song.txt"), "Wonderful day\r\nKotek mruga\r\n");
    const ToolRun english = Swtool({"split", home.filePath("song.txt"), "--syllables", "--lang", "en"}, home.path());
    EXPECT_EQ(english.out, "1\t0\tWon\t0\n2\t0\tder\t0\n3\t0\tful \t0\n4\t0\tday \t1\n5\t0\tKotek \t0\n"
                           "6\t0\tmruga \t1\n") << "Polish words by English rules stay whole";
    const ToolRun polish = Swtool({"split", home.filePath("song.txt"), "--syllables", "--lang", "pl"}, home.path());
    EXPECT_TRUE(polish.out.endsWith("5\t0\tKo\t0\n6\t0\ttek \t0\n7\t0\tmru\t0\n8\t0\tga \t1\n")) << polish.out.toStdString();
    const ToolRun unknown = Swtool({"split", home.filePath("song.txt"), "--syllables", "--lang", "xx"}, home.path());
    EXPECT_EQ(unknown.exitCode, 0);
    EXPECT_EQ(unknown.out.count(u'\n'), 4) << "words";
    EXPECT_TRUE(unknown.err.contains("No syllable dictionary is installed for this language")) << unknown.err.toStdString();
    EXPECT_EQ(Swtool({"split", home.filePath("song.txt"), "--lang", "en"}, home.path()).exitCode, 2);

    const QString big = home.filePath("big.txt");
    WriteFileBytes(big, QByteArray(500001, 'a'));
    const ToolRun refused = Swtool({"split", big}, home.path());
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.endsWith("The file cannot be greater than 600 kB.\n")) << refused.err.toStdString();

    const ToolRun merge = Swtool({"merge", SourcePath("resources/demo/rowboat.lrs")}, home.path());
    ASSERT_EQ(merge.exitCode, 0) << merge.err.toStdString();
    EXPECT_TRUE(merge.out.startsWith("Row, row, row your boat,\r\n")) << merge.out.toStdString();
    EXPECT_EQ(Swtool({"merge", home.filePath("gone.lrs")}, home.path()).exitCode, 1);
}

TEST(Swtool, EmbedStoresTheLyricsAsTheEditorsSaveDoes)
{
    QTemporaryDir home;
    const QString lrs = SourcePath("resources/demo/rowboat.lrs");
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), home.path(), "song.mp3");
    const QByteArray tag = ReadFileBytes(mp3).right(128);
    for (int save = 0; save < 2; ++save)
        ASSERT_EQ(Swtool({"embed", mp3, lrs}, home.path()).exitCode, 0);
    const QByteArray saved = ReadFileBytes(mp3);
    EXPECT_EQ(saved.right(128), tag) << "the ID3v1 tag stays last";
    EXPECT_EQ(saved.count("#Songweaver"), 1) << "an audio file holds one block";
    const ToolRun read = Swtool({"lyrics", mp3}, home.path());
    EXPECT_TRUE(read.out.startsWith("format\tSongweaver (internal)\n")) << read.out.toStdString();

    const QString kar = CopyFixture(MediaFixture("song.kar"), home.path(), "song.kar");
    for (int save = 0; save < 2; ++save)
        ASSERT_EQ(Swtool({"embed", kar, lrs}, home.path()).exitCode, 0);
    EXPECT_EQ(ReadFileBytes(kar).count("#Songweaver"), 2) << "a MIDI file keeps every block it was given";

    const ToolRun notLyrics = Swtool({"embed", mp3, MediaFixture("not-audio.txt")}, home.path());
    EXPECT_EQ(notLyrics.exitCode, 1);
    EXPECT_TRUE(notLyrics.err.contains("Lyrics format doesn't seem to be valid.\r\nLine 1: "));
}

TEST(Swtool, LyricsOfAKaraokeFileForThePlayerAndTheImport)
{
    QTemporaryDir home;
    const QString kar = SourcePath("resources/demo/twinkle.kar");
    const ToolRun played = Swtool({"lyrics", kar}, home.path());
    ASSERT_EQ(played.exitCode, 0) << played.err.toStdString();
    EXPECT_TRUE(played.out.startsWith(QStringLiteral("format\tMIDI text events\n")));
    EXPECT_TRUE(played.out.contains(QStringLiteral("syllable\t1\t0.400\t1\t\t\n")));
    EXPECT_TRUE(played.out.contains(QStringLiteral("syllable\t2\t2.400\t0\tTwin\tTwinkle, twinkle, little star,\n")));
    EXPECT_EQ(played.out.count(QStringLiteral("syllable\t")), 43) << "the lead-in and 42 syllables";

    const ToolRun imported = Swtool({"lyrics", "--import", kar}, home.path());
    ASSERT_EQ(imported.exitCode, 0);
    EXPECT_TRUE(imported.out.contains(QStringLiteral("title\tTwinkle, Twinkle, Little Star\n")));
    EXPECT_EQ(imported.out.count(QStringLiteral("syllable\t")), 43);

    // Fewer than nine syllables: the import gives nothing, though the player shows them.
    const QString tiny = home.filePath(QStringLiteral("tiny.kar"));
    QByteArray bytes = ReadFileBytes(kar);
    WriteFileBytes(tiny, bytes.left(bytes.indexOf("/How")));
    const ToolRun none = Swtool({"lyrics", "--import", tiny}, home.path());
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_TRUE(none.out.isEmpty());
}

TEST(Swtool, VoicePlacesATakeAsTheEndOfARecordingDoes)
{
    QTemporaryDir home;
    const QString song = CopyFixture(QStringLiteral("id3v1.mp3"), home.path(), QStringLiteral("Night Song.mp3"));
    // A take of 0.5 s of a constant level, 8000 Hz mono, which the settings turn into 22050 Hz stereo.
    QByteArray take("RIFF\0\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x80\x3e\0\0\x02\0\x10\0data", 40);
    const QByteArray samples = QByteArray(8000, '\0').replace(QByteArray("\0\0", 2), QByteArray("\0\x20", 2));
    const quint32 size = quint32(samples.size());
    take += QByteArray(reinterpret_cast<const char*>(&size), 4) + samples;
    const QString takePath = home.filePath(QStringLiteral("take.wav"));
    WriteFileBytes(takePath, take);

    const ToolRun first = Swtool({"voice", song, "--take", takePath, "--at", "1.0"}, home.path());
    ASSERT_EQ(first.exitCode, 0) << first.err.toStdString();
    const QString voice = home.filePath(QStringLiteral("Night Song.wav"));
    EXPECT_EQ(first.out, voice + u'\n') << "beside the song, by the default settings";
    QByteArray bytes = ReadFileBytes(voice);
    ASSERT_NEAR(bytes.size(), 44 + qsizetype(1.5 * 22050) * 4, 4 * 4);
    EXPECT_EQ(bytes.mid(44, 22050 * 4), QByteArray(22050 * 4, '\0')) << "a second of silence";
    EXPECT_EQ(bytes.mid(44 + qsizetype(1.25 * 22050) * 4, 2), QByteArray("\0\x20", 2)) << "then the take";

    const ToolRun again = Swtool({"voice", song, "--take", takePath, "--at", "0.25"}, home.path());
    ASSERT_EQ(again.exitCode, 0) << again.err.toStdString();
    const QByteArray overdubbed = ReadFileBytes(voice);
    ASSERT_EQ(overdubbed.size(), bytes.size());
    EXPECT_EQ(overdubbed.mid(44 + qsizetype(0.5 * 22050) * 4, 2), QByteArray("\0\x20", 2));
    EXPECT_TRUE(overdubbed.mid(44 + 22050 * 4) == bytes.mid(44 + 22050 * 4)) << "after the new take";

    EXPECT_EQ(Swtool({"voice", song, "--take", home.filePath("none.wav"), "--at", "1"}, home.path()).exitCode, 1);
    EXPECT_EQ(Swtool({"voice", song, "--at", "1"}, home.path()).exitCode, 2);
    EXPECT_TRUE(ReadFileBytes(voice) == overdubbed) << "a failed run leaves the voice file";
}

TEST(Swtool, PrintWritesThePageAndItsPdfWithTheSavedSettings)
{
    QTemporaryDir home;
    WriteFileBytes(home.filePath(QStringLiteral("Tonehaven/Songweaver.conf")),
                   "[PRT]\nAlignment=Right\nPrintTitle=0\nLyricColor=255\n");  // 255 is red
    const QString song = SourcePath(QStringLiteral("tests/fixtures/karaoke/amazing-grace.lrs"));

    const ToolRun page = Swtool({"print", song}, home.path());
    ASSERT_EQ(page.exitCode, 0) << page.err.toStdString();
    EXPECT_FALSE(page.out.contains("Amazing Grace<BR>")) << "the title is off";
    EXPECT_TRUE(page.out.contains("<P align=right>\r\n<span style=\"font-family:Arial,Arial,Tahoma,Geneva; "
                                  "font-size: 12pt;\"><FONT color=#FF0000>\r\n"
                                  "Amazing grace, how sweet the sound<br>\r\n"))
        << page.out.toStdString();
    EXPECT_TRUE(page.out.endsWith("Was blind, but now I see<br>\r\n</span></P><BR></BODY></HTML>"));

    const QString html = home.filePath(QStringLiteral("out/grace.htm"));
    const QString pdf = home.filePath(QStringLiteral("grace.pdf"));
    QDir(home.path()).mkpath(QStringLiteral("out"));
    const ToolRun files = Swtool({"print", song, "--html", html, "--pdf", pdf}, home.path());
    ASSERT_EQ(files.exitCode, 0) << files.err.toStdString();
    EXPECT_EQ(files.out, pdf + "\t1 page\n");
    EXPECT_EQ(QString::fromLatin1(ReadFileBytes(html)), page.out);
    EXPECT_TRUE(ReadFileBytes(pdf).startsWith("%PDF"));

    EXPECT_EQ(Swtool({"print", home.filePath("missing.lrs")}, home.path()).exitCode, 1);
    EXPECT_EQ(Swtool({"print"}, home.path()).exitCode, 2);
}

TEST(Swtool, PrintOfAKaraokeSongShowsItsWordsAsTheEditorTakesThemUp)
{
    QTemporaryDir home;
    const ToolRun page = Swtool({"print", SourcePath("resources/demo/twinkle.kar")}, home.path());
    ASSERT_EQ(page.exitCode, 0) << page.err.toStdString();
    EXPECT_TRUE(page.out.contains("Twinkle, twinkle, little star,<br>")) << page.out.toStdString();
    EXPECT_TRUE(page.out.contains("How I wonder what you are!<br>")) << "the last line too";

    const QString tune = home.filePath("tune.kar");
    WriteFileBytes(tune, "MThd\0\0");
    const ToolRun damaged = Swtool({"print", tune}, home.path());
    EXPECT_EQ(damaged.exitCode, 1) << "no words: no blank page";
}

TEST(Swtool, ProbeAndRenderTakeDiscSongsZipsAndVideos)
{
    QTemporaryDir home;
    // Colour 1 red over the whole screen from the start.
    const QByteArray graphics = CdgPacket(30, {0, 0, 0x3C, 0}) + CdgPacket(1, {1}) + QByteArray(24 * 600, '\0');
    QFile::copy(MediaFixture("plain.mp3"), home.filePath("Disc.mp3"));
    WriteFileBytes(home.filePath("disc.cdg"), graphics);
    WriteZip(home.filePath("zipped.zip"), {{"Z.mp3", ReadFileBytes(MediaFixture("plain.mp3"))}, {"z.cdg", graphics}});
    const QString video = MakeTestVideo(home.filePath("clip.mp4"), 2, QSize(640, 360));

    const auto kind = [&](const QString& path) {
        const ToolRun run = Swtool({"probe", path}, home.path());
        for (const QString& line : run.out.split(u'\n'))
            if (line.startsWith("Kind\t"))
                return line.mid(5);
        return QStringLiteral("exit %1: %2").arg(run.exitCode).arg(run.err);
    };
    EXPECT_EQ(kind(home.filePath("Disc.mp3")), "CDG MP3");
    EXPECT_EQ(kind(home.filePath("disc.cdg")), "CDG MP3");
    EXPECT_EQ(kind(home.filePath("zipped.zip")), "CDG MP3");
    EXPECT_EQ(kind(video), "VIDEO h264 640x360 25 fps");
    EXPECT_EQ(kind(MediaFixture("plain.mp3")), "MP3");

    for (const QString& song : {home.filePath("Disc.mp3"), home.filePath("zipped.zip")}) {
        const QString png = home.filePath("shown.png");
        const ToolRun run = Swtool({"render", song, "--at", "0.5", "--size", "600x432", "-o", png}, home.path());
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        const QImage shown(png);
        EXPECT_EQ(shown.pixel(300, 216), 0xFFFF0000u) << song.toStdString();
    }
    const QString png = home.filePath("video.png");
    const ToolRun run = Swtool({"render", video, "--at", "1.2", "--size", "640x360", "-o", png}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QString reference = home.filePath("ffmpeg.png");
    ASSERT_TRUE(RunProgram("ffmpeg", {"-v", "error", "-ss", "1.2", "-i", video, "-frames:v", "1", reference}));
    const QImage shown(png), expected(reference);
    ASSERT_EQ(shown.size(), expected.size());
    double difference = 0;
    for (int y = 0; y < shown.height(); y += 3)
        for (int x = 0; x < shown.width(); x += 3)
            difference += std::abs(qGreen(shown.pixel(x, y)) - qGreen(expected.pixel(x, y)));
    EXPECT_LT(difference / (214.0 * 120.0), 4.0) << "the frame ffmpeg gives at that second, words or none";

    WriteZip(home.filePath("lonely.zip"), {{"song.mp3", "ID3"}});
    EXPECT_EQ(Swtool({"render", home.filePath("lonely.zip"), "--at", "1", "-o", png}, home.path()).exitCode, 1);
}

TEST(Swtool, OnsetsPrintsWhereSoundsStart)
{
    QTemporaryDir home;
    const QString song = home.filePath("bursts.wav");
    ASSERT_TRUE(RunProgram("sox", {"-n", "-r", "44100", "-c", "1", song, "synth", "1", "sine", "0", ":", "synth", "0.3",
                                   "sine", "440", ":", "synth", "0.7", "sine", "0"}));
    const ToolRun run = Swtool({"onsets", song}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 1) << run.out.toStdString();
    EXPECT_NEAR(lines[0].toDouble(), 1.0, 0.03);
    EXPECT_EQ(lines[0].section(u'.', 1).size(), 3) << "three decimals";
    EXPECT_EQ(Swtool({"onsets", home.filePath("gone.wav")}, home.path()).exitCode, 1);
    EXPECT_EQ(Swtool({"onsets"}, home.path()).exitCode, 2);
}

TEST(Swtool, LibraryScansSearchesAndCounts)
{
    QTemporaryDir home;
    const QString db = home.filePath("songs.db");
    const ToolRun scan = Swtool({"library", "scan", SourcePath("resources/demo"), "--db", db}, home.path());
    ASSERT_EQ(scan.exitCode, 0) << scan.err.toStdString();
    const QStringList counts = scan.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(counts.size(), 7);
    EXPECT_EQ(counts.mid(0, 6), (QStringList{"found\t4", "added\t4", "updated\t0", "unchanged\t0", "removed\t0",
                                             "unreadable\t0"}));
    EXPECT_TRUE(counts[6].startsWith("seconds\t"));

    const ToolRun search = Swtool({"library", "search", "twink", "litt", "--db", db, "--limit", "1"}, home.path());
    ASSERT_EQ(search.exitCode, 0) << search.err.toStdString();
    const QStringList lines = search.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith("midi\tTwinkle, Twinkle, Little Star\tTraditional\t") ||
                lines[0].startsWith("audio\tTwinkle, Twinkle, Little Star\tTraditional\t"))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("# 1 found in ")) << lines[1].toStdString();

    const ToolRun stats = Swtool({"library", "stats", "--db", db}, home.path());
    EXPECT_TRUE(stats.out.startsWith("songs\t4\nwith lyrics\t4\nunreadable\t0\n")) << stats.out.toStdString();
    EXPECT_TRUE(stats.out.contains("kind midi\t2\n"));

    WriteFileBytes(db, QByteArray(5000, 'x'));
    const ToolRun damaged = Swtool({"library", "stats", "--db", db}, home.path());
    EXPECT_EQ(damaged.exitCode, 0);
    EXPECT_TRUE(damaged.err.contains("The song library was damaged.")) << damaged.err.toStdString();
    EXPECT_EQ(Swtool({"library", "search", "--db"}, home.path()).exitCode, 2);
    EXPECT_EQ(Swtool({"library", "scan", home.filePath("nowhere"), "--db", db}, home.path()).exitCode, 1);
}
