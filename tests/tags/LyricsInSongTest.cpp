// Lyrics stored in song files: the block behind the audio and before the end tags, the
// editor's save flow with its messages, and the Lyrics3 tag.

#include "lyrics/LyricsBlock.h"
#include "lyrics/LyricsLoader.h"
#include "support/TestSupport.h"
#include "tags/EndTags.h"
#include "tags/LyricsEmbedding.h"
#include "tags/Lyrics3.h"
#include "core/TextCodec.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// The PCM that FFmpeg decodes from the file: the audio a listener hears.
QByteArray DecodedAudio(const QString& path)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), {"-v", "error", "-i", path, "-f", "s16le", "-"});
    ffmpeg.waitForFinished(30000);
    return ffmpeg.readAllStandardOutput();
}

std::vector<LyricItem> Document(const QString& firstWord)
{
    std::vector<LyricItem> lyrics(3);
    lyrics[0].Title = QStringLiteral("Block Title");
    lyrics[1].Time = 1.5;
    lyrics[1].Text = firstWord;
    lyrics[1].LineEnd = true;
    lyrics[2].Time = 2.25;
    lyrics[2].Text = QStringLiteral("zażółć");
    return lyrics;
}

struct SaveJournal {
    Journal calls;
    SaveMP3Host host;
    SaveJournal()
    {
        host.MediaOpen = true;
        host.Text = [](const char* key) { return QString::fromLatin1(key); };
        host.Critical = [this](const QString& text) { calls("Critical " + text); };
        host.Information = [this](const QString& text) { calls("Information " + text); };
        host.WaitCursor = [this](bool busy) { calls(busy ? "Wait on" : "Wait off"); };
        host.Release = [this](const QString& path, const std::function<void()>& rewrite) {
            calls("Release " + QFileInfo(path).fileName());
            rewrite();
            calls("Retake");
        };
    }
};

QString LoadedText(const QString& song, const QString& want)
{
    LyricsState lyrics;
    LyricsEnvironment env;
    if (!LoadLyrics(lyrics, song, env))
        return {};
    QString texts;
    for (size_t i = 1; i < lyrics.PlayLyrics.size(); ++i)
        texts += lyrics.PlayLyrics[i].Text + u' ';
    return texts.contains(want) ? want : texts;
}

} // namespace

TEST(LyricsInSong, TheBlockGoesBeforeTheId3v1TagAndTheAudioIsUntouched)
{
    QTemporaryDir dir;
    const QString original = MediaFixture("id3v1.mp3");
    const QString song = CopyFixture(original, dir.path());
    const QByteArray before = ReadFileBytes(original);
    SaveJournal save;
    ASSERT_EQ(SaveMP3(song, Document("first"), {PictureItem{}}, save.host), SaveMP3Result::Saved);

    const QByteArray after = ReadFileBytes(song);
    EXPECT_EQ(after.right(128), before.right(128)) << "the ID3v1 tag is the last 128 bytes again";
    const QByteArray block = EncodeText(BuildLyricsBlock(Document("first"), {PictureItem{}}));
    EXPECT_EQ(after, before.chopped(128) + "\r\n" + block + before.right(128));
    EXPECT_EQ(DecodedAudio(song), DecodedAudio(original));
    EXPECT_FALSE(DecodedAudio(song).isEmpty());
    EXPECT_EQ(LoadedText(song, "first"), "first");
    EXPECT_EQ(save.calls.calls, (QStringList{"Wait on", "Release id3v1.mp3", "Retake", "Wait off"}));
}

TEST(LyricsInSong, EveryEndTagStaysInPlaceBehindTheBlock)
{
    QTemporaryDir dir;
    const QString original = MediaFixture("ape-id3v1.mp3");
    const QString song = CopyFixture(original, dir.path());
    const QByteArray before = ReadFileBytes(original);
    const qsizetype tags = EndTagSpan(before);
    ASSERT_GT(tags, 128) << "an APE tag and an ID3v1 tag";
    SaveJournal save;
    ASSERT_EQ(SaveMP3(song, Document("first"), {PictureItem{}}, save.host), SaveMP3Result::Saved);
    const QByteArray after = ReadFileBytes(song);
    EXPECT_EQ(after.right(tags), before.right(tags)) << "both tags kept, byte for byte";
    EXPECT_TRUE(after.startsWith(before.chopped(tags)));
    EXPECT_EQ(EndTagSpan(after), tags);
    EXPECT_EQ(DecodedAudio(song), DecodedAudio(original));
}

TEST(LyricsInSong, EveryAudioFormatDecodesAlikeWithTheBlockInside)
{
    QTemporaryDir dir;
    QStringList fixtures{MediaFixture("comments.ogg"), MediaFixture("pcm16-stereo.wav"), MediaFixture("tone.mpc"),
                         MediaFixture("vbr.mp3")};
    if (const QString ape = SharedFixture("mac-399-tagged.ape"); !ape.isEmpty())
        fixtures << ape;
    for (const QString& original : fixtures) {
        SCOPED_TRACE(original.toStdString());
        const QString song = CopyFixture(original, dir.path());
        SaveJournal save;
        ASSERT_EQ(SaveMP3(song, Document("inside"), {PictureItem{}}, save.host), SaveMP3Result::Saved);
        const QByteArray audio = DecodedAudio(original);
        EXPECT_FALSE(audio.isEmpty());
        EXPECT_EQ(DecodedAudio(song), audio);
        EXPECT_EQ(LoadedText(song, "inside"), "inside");
    }
}

TEST(LyricsInSong, AnUpdateReplacesTheBlockInAudioButAMidiFileKeepsEveryBlock)
{
    QTemporaryDir dir;
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), dir.path());
    SaveJournal save;
    SaveMP3(mp3, Document("first"), {PictureItem{}}, save.host);
    const qsizetype once = ReadFileBytes(mp3).size();
    SaveMP3(mp3, Document("again"), {PictureItem{}}, save.host);
    const QByteArray twice = ReadFileBytes(mp3);
    EXPECT_EQ(twice.count("#Songweaver"), 1);
    EXPECT_EQ(twice.size(), once + 2) << "the CR LF of the kept text's own print stays";
    EXPECT_EQ(LoadedText(mp3, "again"), "again");

    const QString kar = CopyFixture(MediaFixture("song.kar"), dir.path());
    const qsizetype midiSize = ReadFileBytes(kar).size();
    save.host.MidiActive = true;
    SaveMP3(kar, Document("first"), {PictureItem{}}, save.host);
    SaveMP3(kar, Document("again"), {PictureItem{}}, save.host);
    const QByteArray midi = ReadFileBytes(kar);
    EXPECT_EQ(midi.count("#Songweaver"), 2);
    EXPECT_EQ(midi.left(midiSize), ReadFileBytes(MediaFixture("song.kar")));
    EXPECT_EQ(LoadedText(kar, "again"), "again") << "readers take the last block";
}

TEST(LyricsInSong, AStrayStartMarkerIsKeptAndTheNewBlockIsRead)
{
    QTemporaryDir dir;
    const QString original = MediaFixture("stray-marker.mp3");
    const QString song = CopyFixture(original, dir.path());
    SaveJournal save;
    ASSERT_EQ(SaveMP3(song, Document("fresh"), {PictureItem{}}, save.host), SaveMP3Result::Saved);
    const QByteArray before = ReadFileBytes(original);
    const QByteArray after = ReadFileBytes(song);
    EXPECT_TRUE(after.startsWith(before.chopped(128))) << "no end marker: all of it is kept";
    EXPECT_EQ(after.count("#Songweaver"), 2);
    EXPECT_EQ(LoadedText(song, "fresh"), "fresh");
}

TEST(LyricsInSong, RefusalsLeaveTheFileAsItWas)
{
    QTemporaryDir dir;
    const QString text = CopyFixture(MediaFixture("not-audio.txt"), dir.path());
    const QByteArray before = ReadFileBytes(text);

    SaveJournal notAudio;
    EXPECT_EQ(SaveMP3(text, Document("x"), {PictureItem{}}, notAudio.host), SaveMP3Result::NotAudio);
    EXPECT_EQ(notAudio.calls.calls, (QStringList{"Wait on", "Critical ErrorAudioFile"}))
        << "the wait cursor stays on after this message";

    SaveJournal noDevice;
    noDevice.host.MediaOpen = false;
    EXPECT_EQ(SaveMP3(text, Document("x"), {PictureItem{}}, noDevice.host), SaveMP3Result::NoAudioDevice);
    EXPECT_EQ(noDevice.calls.calls, QStringList{"Critical There is no audio device open."});

    SaveJournal empty;
    EXPECT_EQ(SaveMP3(text, std::vector<LyricItem>(1), {PictureItem{}}, empty.host), SaveMP3Result::NothingToSave);
    EXPECT_EQ(empty.calls.calls, QStringList{"Information MsgSave"});

    SaveJournal missing;
    EXPECT_EQ(SaveMP3(dir.filePath("gone.mp3"), Document("x"), {PictureItem{}}, missing.host), SaveMP3Result::NoTarget);
    EXPECT_TRUE(missing.calls.calls.isEmpty());
    EXPECT_EQ(ReadFileBytes(text), before);
}

TEST(LyricsInSong, AFileThatCannotBeReplacedIsReportedAndKept)
{
    // The longest name the file system allows leaves no room for the temporary file beside it.
    QTemporaryDir dir;
    const QString song = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), QString(251, u'a') + ".mp3");
    const QByteArray before = ReadFileBytes(song);
    ASSERT_FALSE(before.isEmpty());
    SaveJournal save;
    EXPECT_EQ(SaveMP3(song, Document("x"), {PictureItem{}}, save.host), SaveMP3Result::WriteFailed);
    EXPECT_EQ(save.calls.calls.last(), "Critical ErrorWriteFile");
    EXPECT_EQ(ReadFileBytes(song), before);
}

TEST(LyricsInSong, Lyrics3TagWrittenAndReadBackKeepsTheOtherTags)
{
    QTemporaryDir dir;
    const QString original = MediaFixture("id3v1.mp3");
    const QString song = CopyFixture(original, dir.path());
    MP3Class writer;
    writer.SetFilename(song);
    ASSERT_TRUE(writer.SaveLyrics("Author", "Singer", "Name", "Album", "cover.jpg||||[00:03]",
                                  "[00:01]One\r\n[00:02]Two"));
    const QByteArray after = ReadFileBytes(song);
    EXPECT_EQ(after.right(128), ReadFileBytes(original).right(128)) << "ID3v1 stays last";
    EXPECT_TRUE(after.chopped(128).endsWith("LYRICS200"));

    // A second write replaces the tag instead of stacking another.
    ASSERT_TRUE(writer.SaveLyrics("", "Sängerin", "Name", "", "", "[00:05]Only"));
    MP3Class reader;
    reader.SetFilename(song);
    reader.ReadFile();
    reader.ReadTag();
    EXPECT_TRUE(reader.LyricsExist());
    EXPECT_EQ(reader.LyricsVersion(), 2);
    EXPECT_EQ(reader.Lyrics(), "[00:05]Only");
    EXPECT_EQ(reader.LyricsArtist(), "Sängerin");
    EXPECT_EQ(reader.LyricsAuthor(), "");
    EXPECT_EQ(reader.Title(), "Title One");
    EXPECT_EQ(ReadFileBytes(song).count("LYRICSBEGIN"), 1);
    EXPECT_EQ(DecodedAudio(song), DecodedAudio(original));
}

TEST(LyricsInSong, TheLookupTakesTheLyrics3TagLastAndTheSiblingFileBeforeIt)
{
    QTemporaryDir dir;
    const QString song = CopyFixture(MediaFixture("lyrics3.mp3"), dir.path());
    MP3Class tags;
    tags.SetFilename(song);
    tags.ReadFile();
    LyricsEnvironment env;
    env.Tags = &tags;
    LyricsState lyrics;
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Lyrics 2.00");
    EXPECT_EQ(lyrics.PlayLyrics[0].Artist, "Lyrics Artist");
    ASSERT_EQ(lyrics.PlayLyrics.size(), 4u) << "the line without a time is skipped";
    EXPECT_EQ(lyrics.PlayLyrics[2].Text, "Second line");
    ASSERT_EQ(lyrics.PlayPictures.size(), 3u);
    EXPECT_EQ(lyrics.PlayPictures[1].File, "cover.jpg");

    ASSERT_TRUE(SaveLrsFile(LyricsPathOf(song), Document("sibling"), {PictureItem{}}));
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Songweaver (*LRS)");
}
