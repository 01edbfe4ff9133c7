// ReadFile: the kind of file by content (the extension decides MIDI only), its length and
// rates, and the playlist's title and artist.

#include "support/TestSupport.h"
#include "tags/MP3Class.h"
#include "tags/TagBridge.h"

#include <QtEndian>

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Probed {
    bool recognised;
    MP3Class song;
};

std::unique_ptr<Probed> Probe(const QString& path)
{
    auto probed = std::make_unique<Probed>();
    probed->song.SetFilename(path);
    probed->recognised = probed->song.ReadFile();
    return probed;
}

QByteArray Chunk(const char* id, const QByteArray& body)
{
    QByteArray chunk(id, 4);
    chunk += QByteArray(4, '\0');
    qToLittleEndian<quint32>(quint32(body.size()), chunk.data() + 4);
    chunk += body;
    if (body.size() % 2)
        chunk += '\0';
    return chunk;
}

// A short WAV song with the chunks behind its sound, as tagging programs add them.
QString WavWithChunks(const QString& path, const QByteArray& chunks)
{
    QByteArray bytes = ReadFileBytes(WriteRampWav(path, 4800)) + chunks;
    qToLittleEndian<quint32>(quint32(bytes.size() - 8), bytes.data() + 4);
    WriteFileBytes(path, bytes);
    return path;
}

} // namespace

TEST(Probe, EachFormatIsKnownByItsContentWithItsLengthAndRates)
{
    struct Case {
        const char* file;
        const char* format;
        double length;
        int bitrate;
        int sampleRate;
    };
    const Case cases[] = {
        {"plain.mp3", "MP3", 1.071, 32, 22050},
        {"vbr.mp3", "MP3", 0.549, 62, 44100},
        {"cbr-info.mp3", "MP3", 0.549, 128, 44100},  // LAME's "Info" header: the frames' own rate
        {"mp3-named.wav", "MP3", 1.071, 32, 22050},  // a valid MP3 named ".wav"
        {"pcm8-mono.wav", "WAV", 0.5, 0, 8000},
        {"pcm16-stereo.wav", "WAV", 0.5, 0, 11025},
        {"comments.ogg", "OGG", 0.5, 64, 44100},     // Ogg: nominal bitrate, the stream's own length
        {"tone.mpc", "MPC", 0.52, 117, 0},           // Musepack sets the bitrate only
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        auto p = Probe(MediaFixture(c.file));
        EXPECT_TRUE(p->recognised);
        EXPECT_EQ(p->song.format(), c.format);
        EXPECT_NEAR(p->song.Length(), c.length, 0.01);
        EXPECT_EQ(p->song.Bitrate(), c.bitrate);
        EXPECT_EQ(p->song.SampleRate(), c.sampleRate);
    }
}

TEST(Probe, MonkeysAudioAndMusepackSv7FromTheSharedFixtures)
{
    const QString ape = SharedFixture("mac-399.ape");
    const QString apeWithId3v2 = SharedFixture("mac-399-id3v2.ape");
    const QString mpc = SharedFixture("click.mpc");
    if (ape.isEmpty() || mpc.isEmpty())
        GTEST_SKIP() << "../shared/fixtures is absent";
    for (const QString& path : {ape, apeWithId3v2}) {
        auto p = Probe(path);
        EXPECT_TRUE(p->recognised);
        EXPECT_EQ(p->song.format(), "APE") << "an ID3v2 tag in front hides no APE stream";
        EXPECT_NEAR(p->song.Length(), 3.55, 0.01);
        EXPECT_EQ(p->song.SampleRate(), 44100);
        EXPECT_EQ(p->song.Bitrate(), 0);
    }
    auto p = Probe(mpc);
    EXPECT_EQ(p->song.format(), "MPC");
    EXPECT_NEAR(p->song.Length(), 0.078, 0.001);
    EXPECT_EQ(p->song.Bitrate(), 203);
}

TEST(Probe, MidiIsDecidedByTheExtensionAndTakesItsTitleFromTextEvents)
{
    auto kar = Probe(MediaFixture("song.kar"));
    EXPECT_TRUE(kar->recognised);
    EXPECT_EQ(kar->song.format(), "MIDI");
    EXPECT_DOUBLE_EQ(kar->song.Length(), 4.0) << "eight quarters at 120 bpm";
    EXPECT_EQ(kar->song.Title(), "Silent Night") << "proper case";
    EXPECT_EQ(kar->song.Artist(), "Franz Gruber");

    auto untitled = Probe(MediaFixture("untitled.mid"));
    EXPECT_EQ(untitled->song.Title(), "untitled") << "no title and no artist: the display name";
    EXPECT_EQ(untitled->song.Artist(), "");

    QTemporaryDir dir;
    auto notMidi = Probe(CopyFixture(MediaFixture("plain.mp3"), dir.path(), "song.kar"));
    EXPECT_EQ(notMidi->song.format(), "MIDI") << "a .kar file is MIDI whatever it holds";
    EXPECT_FALSE(notMidi->recognised) << "and without MIDI content it has no length";
}

TEST(Probe, AFileTheLengthProbeCannotMeasureIsRejectedBeforeItsContentIsRead)
{
    MP3Class song;
    EXPECT_EQ(song.Length(), -1.0) << "not probed";
    song.SetFilename(MediaFixture("not-audio.txt"));
    EXPECT_FALSE(song.ReadFile());
    EXPECT_EQ(song.Length(), 0.0);
    EXPECT_EQ(song.format(), "");

    QTemporaryDir dir;
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), dir.path());
    song.SetFilename(mp3);
    EXPECT_TRUE(song.ReadFile());
    song.SetFilename(dir.filePath("missing.mp3"));
    EXPECT_EQ(song.Length(), -1.0) << "a new name zeroes the instance";
    EXPECT_EQ(song.Track(), "0");
    EXPECT_FALSE(song.ReadFile());
}

TEST(Probe, TitleAndArtistForTheListPreferId3v2OverApe)
{
    auto v1 = Probe(MediaFixture("id3v1.mp3"));
    EXPECT_EQ(v1->song.Title(), "Title One");
    auto both = Probe(MediaFixture("both.mp3"));
    EXPECT_EQ(both->song.Title(), "Title Two") << "ID3v2 beats ID3v1";
    auto apeAndV2 = Probe(MediaFixture("ape-id3v2.mp3"));
    EXPECT_EQ(apeAndV2->song.Title(), "Title Two") << "the APE tag is asked only without ID3v2";
    auto apeAndV1 = Probe(MediaFixture("ape-id3v1.mp3"));
    EXPECT_EQ(apeAndV1->song.Artist(), "Ape Artist");
    auto ogg = Probe(MediaFixture("comments.ogg"));
    EXPECT_EQ(ogg->song.Title(), "Ogg Title");
    auto oggWithApe = Probe(MediaFixture("ogg-ape.ogg"));
    EXPECT_EQ(oggWithApe->song.Title(), "Ape Title");
}

TEST(Probe, WavSongsGiveTheTitleAndArtistOfTheirOwnTags)
{
    QTemporaryDir dir;
    const QByteArray info = Chunk("LIST", "INFO" + Chunk("INAM", QByteArray("Info Title\0", 11)) +
                                              Chunk("IART", QByteArray("Info Artist\0", 12)));
    auto riff = Probe(WavWithChunks(dir.filePath("info.wav"), info));
    EXPECT_TRUE(riff->recognised);
    EXPECT_EQ(riff->song.Title(), "Info Title");
    EXPECT_EQ(riff->song.Artist(), "Info Artist");

    Id3v2Fields fields;
    fields.Title = QStringLiteral("Chunk Title");
    fields.Artist = QStringLiteral("Chunk Artist");
    const auto tag = WriteId3v2({}, &fields);
    ASSERT_TRUE(tag);
    auto id3 = Probe(WavWithChunks(dir.filePath("id3.wav"), info + Chunk("id3 ", *tag)));
    EXPECT_EQ(id3->song.Title(), "Chunk Title") << "the ID3v2 chunk beats RIFF INFO";
    EXPECT_EQ(id3->song.Artist(), "Chunk Artist");

    auto bare = Probe(WriteRampWav(dir.filePath("bare.wav"), 4800));
    EXPECT_EQ(bare->song.Title(), "") << "no tags: the playlist shows the file's name";
}

TEST(Probe, TrailingBlanksAreCutFromTheStoredFieldForGood)
{
    QTemporaryDir dir;
    auto p = Probe(MediaFixture("plain.mp3"));
    p->song.SetTitle(QStringLiteral("Padded   "));
    EXPECT_EQ(p->song.Title(), "Padded");
    QString kept = QStringLiteral("x  ");
    EXPECT_EQ(MP3Class::CutSp(kept), "x");
    EXPECT_EQ(kept, "x") << "the strip changes the text it was given";
    EXPECT_EQ(p->song.channels(), "Stereo") << "compares the format, so never Mono";
}

TEST(Probe, DamagedFilesAreProbedWithoutHarm)
{
    const QString folder = SharedFixture("malformed");
    if (folder.isEmpty())
        GTEST_SKIP() << "../shared/fixtures is absent";
    const QStringList names = QDir(folder).entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const QString path = folder + u'/' + name;
        const QByteArray before = ReadFileBytes(path);
        MP3Class song;
        song.SetFilename(path);
        const bool recognised = song.ReadFile();
        song.ReadTag();
        EXPECT_TRUE(std::isfinite(song.Length()));
        EXPECT_GE(song.Length(), 0.0);
        EXPECT_EQ(recognised, !song.format().isEmpty());
        EXPECT_EQ(ReadFileBytes(path), before) << "reading never writes";
    }
}
