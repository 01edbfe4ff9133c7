// No save may harm a song: every tag and lyrics save on every kind of file, damaged ones among
// them, leaves the bytes outside the regions it manages as they were, and a save that cannot
// promise that is refused with the file untouched.

#include "lyrics/LyricsBlock.h"
#include "midi/MidiRead.h"
#include "support/TestSupport.h"
#include "tags/EndTags.h"
#include "tags/LyricsEmbedding.h"
#include "tags/MP3Class.h"
#include "tags/StreamFacts.h"
#include "Tagged.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// The length the header at the start declares for the first ID3v2 tag, read here on its own
// terms so that the check does not lean on the code it checks.
qsizetype FirstTagLength(const QByteArray& file)
{
    if (!file.startsWith("ID3") || file.size() < 10)
        return 0;
    qsizetype size = 0;
    for (int i = 6; i < 10; ++i)
        size = (size << 7) | (uchar(file[i]) & 0x7F);
    return 10 + size + ((uchar(file[5]) & 0x10) ? 10 : 0);
}

bool EndsWithId3v1(const QByteArray& file)
{
    return file.size() >= 128 && file.sliced(file.size() - 128).startsWith("TAG");
}

// What an ID3 save must keep: everything between the first ID3v2 tag and an ID3v1 tag.
QByteArray KeptById3Save(const QByteArray& file)
{
    const qsizetype from = std::min(FirstTagLength(file), file.size());
    const qsizetype to = file.size() - (EndsWithId3v1(file) ? 128 : 0);
    return from <= to ? file.mid(from, to - from) : QByteArray();
}

// What the APE, Musepack and Lyrics3 saves must keep: everything before the end tags.
QByteArray KeptByEndTagSave(const QByteArray& file)
{
    return file.first(file.size() - EndTagSpan(file));
}

struct Song {
    QTemporaryDir dir;
    QString path;
    Song(const QString& name, const QByteArray& bytes) : path(dir.filePath(name)) { WriteFileBytes(path, bytes); }
    QByteArray Bytes() const { return ReadFileBytes(path); }
};

QByteArray Fixture(const char* name)
{
    return ReadFileBytes(MediaFixture(QString::fromLatin1(name)));
}

// The MP3 with its first ID3v2 tag declaring 0x7F7F7F7F bytes, as a damaged download does.
QByteArray WithLyingId3v2Size(QByteArray file)
{
    file.replace(6, 4, QByteArray("\x7F\x7F\x7F\x7F", 4));
    return file;
}

// A second ID3v2 tag right behind the first, as old taggers left them.
QByteArray WithSecondId3v2(const QByteArray& file)
{
    const qsizetype first = FirstTagLength(file);
    return file.first(first) + file.first(first) + file.mid(first);
}

int16_t SaveTitle2(const QString& path, const QString& title)
{
    auto song = Tagged(path);
    Id3TagTexts texts = song->TagTexts();
    texts.Title2 = title;
    texts.Title1 = title;
    return song->SaveId3Tag(texts);
}

// The dialog's save with the player holding the song: the release runs the rewrite.
int16_t SaveTitle2WhilePlaying(const QString& path, const QString& title, int& releases)
{
    auto song = Tagged(path);
    Id3TagTexts texts = song->TagTexts();
    texts.Title2 = title;
    return song->SaveId3Tag(texts, [&](const QString&, const std::function<void()>& rewrite) {
        ++releases;
        rewrite();
    });
}

} // namespace

TEST(SongSafety, AnId3v2SizePastTheEndOfTheFileRefusesTheSaveAndKeepsTheSong)
{
    Song song(QStringLiteral("lying.mp3"), WithLyingId3v2Size(Fixture("id3v2.mp3")));
    const QByteArray before = song.Bytes();
    int releases = 0;
    const int16_t result = SaveTitle2WhilePlaying(song.path, QStringLiteral("x"), releases);
    EXPECT_LT(result, 0) << "the dialog shows its \"Can't write\" message";
    EXPECT_EQ(song.Bytes(), before) << "not a byte of the song changed";

    auto ape = Tagged(song.path);
    EXPECT_EQ(ape->SaveAPETag({QStringLiteral("T"), {}, {}, {}, {}, {}, {}}), 1)
        << "an APE tag at the end leaves the damaged head alone";
    EXPECT_TRUE(song.Bytes().startsWith(before.first(before.size() - EndTagSpan(before))));
}

TEST(SongSafety, ADamagedHeadInFrontOfAMusepackFileIsNeverCut)
{
    QByteArray bytes = Fixture("tone.mpc");
    const QByteArray lyingHead = QByteArray("ID3\x03\x00\x00\x7F\x7F\x7F\x7F", 10);
    Song song(QStringLiteral("head.mpc"), lyingHead + bytes);
    const QByteArray before = song.Bytes();
    auto read = Tagged(song.path);
    read->SaveMPCTag({QStringLiteral("Tone"), {}, {}, {}, {}, {}, {}}, QStringLiteral("APE v2.00"));
    const QByteArray after = song.Bytes();
    EXPECT_GE(after.size(), before.size());
    EXPECT_TRUE(after.startsWith(KeptByEndTagSave(before))) << "the head and the audio stay where they were";
}

TEST(SongSafety, TheId3SaveTouchesOnlyMp3Files)
{
    for (const char* name : {"song.kar", "untitled.mid", "comments.ogg", "tone.mpc", "pcm16-stereo.wav"}) {
        SCOPED_TRACE(name);
        Song song(QString::fromLatin1(name), Fixture(name));
        const QByteArray before = song.Bytes();
        EXPECT_LE(SaveTitle2(song.path, QStringLiteral("Ballad")), 0);
        EXPECT_EQ(song.Bytes(), before);
        Tagged(song.path)->RemoveTag();
        if (QByteArray(name) != "tone.mpc") {
            EXPECT_EQ(song.Bytes(), before);
        }
    }
    Song kar(QStringLiteral("song.kar"), Fixture("song.kar"));
    SaveTitle2(kar.path, QStringLiteral("Ballad"));
    MidiRead midi;
    midi.SetFilename(kar.path);
    EXPECT_GT(midi.Length, 0) << "the KAR file still opens";
}

TEST(SongSafety, ASecondId3v2TagAndTheAudioBehindTheFirstSurviveTheSave)
{
    Song song(QStringLiteral("duplicate.mp3"), WithSecondId3v2(Fixture("id3v2.mp3")));
    const QByteArray kept = KeptById3Save(song.Bytes());
    EXPECT_GT(SaveTitle2(song.path, QStringLiteral("A much longer title than the tag had before")), 0);
    const QByteArray after = song.Bytes();
    EXPECT_TRUE(after.mid(FirstTagLength(after)).startsWith(kept)) << "6.5 KB were lost here once";
    EXPECT_EQ(Tagged(song.path)->Title2(), "A much longer title than the tag had before");
}

// Every save on every kind of file: a save either writes, and then the kept bytes are in the new
// file right where its managed head ends, or it leaves the file exactly as it was.
TEST(SongSafety, EverySaveKeepsTheBytesOutsideItsRegions)
{
    const char* const songs[] = {"plain.mp3",   "id3v1.mp3",      "id3v2.mp3",     "both.mp3",         "ape-id3v1.mp3",
                                 "ape-id3v2.mp3", "lyrics3.mp3",  "vbr.mp3",       "stray-marker.mp3", "tone.mpc",
                                 "comments.ogg", "ogg-ape.ogg",   "song.kar",      "untitled.mid",     "pcm16-stereo.wav"};
    using Save = std::function<void(const QString&)>;
    const std::vector<std::pair<const char*, Save>> id3Saves = {
        {"ID3 title", [](const QString& p) { SaveTitle2(p, QStringLiteral("Saved")); }},
        {"ID3 emptied",
         [](const QString& p) {
             auto song = Tagged(p);
             song->SaveId3Tag(Id3TagTexts{});
         }},
        {"RemoveTag", [](const QString& p) { Tagged(p)->RemoveTag(); }},
    };
    const std::vector<std::pair<const char*, Save>> endSaves = {
        {"APE", [](const QString& p) { Tagged(p)->SaveAPETag({QStringLiteral("Ape"), {}, {}, {}, {}, {}, {}}); }},
        {"MPC ID3v1",
         [](const QString& p) { Tagged(p)->SaveMPCTag({QStringLiteral("V1"), {}, {}, {}, {}, {}, {}}, QStringLiteral("ID3v1")); }},
        {"MPC APE",
         [](const QString& p) {
             Tagged(p)->SaveMPCTag({QStringLiteral("A"), {}, {}, {}, {}, {}, {}}, QStringLiteral("APE v2.00"));
         }},
        {"Lyrics3",
         [](const QString& p) {
             Tagged(p)->SaveLyrics({}, QStringLiteral("Artist"), QStringLiteral("Title"), {}, {}, QStringLiteral("[00:01]la"));
         }},
    };
    auto variants = [&](const char* name) {
        const QByteArray bytes = Fixture(name);
        std::vector<std::pair<QString, QByteArray>> files = {{QString::fromLatin1(name), bytes}};
        if (bytes.startsWith("ID3")) {
            files.emplace_back(QStringLiteral("lying-") + QString::fromLatin1(name), WithLyingId3v2Size(bytes));
            files.emplace_back(QStringLiteral("double-") + QString::fromLatin1(name), WithSecondId3v2(bytes));
        }
        return files;
    };
    auto check = [](const QString& name, const QByteArray& bytes, const char* what, const Save& save,
                    QByteArray (*kept)(const QByteArray&), qsizetype (*keptAt)(const QByteArray&)) {
        SCOPED_TRACE(name.toStdString() + " / " + what);
        Song song(name, bytes);
        const QByteArray keep = kept(bytes);
        save(song.path);
        const QByteArray after = song.Bytes();
        if (after != bytes) {
            EXPECT_EQ(after.mid(keptAt(after), keep.size()), keep);
        }
    };
    for (const char* name : songs)
        for (const auto& [file, bytes] : variants(name)) {
            for (const auto& [what, save] : id3Saves)
                check(file, bytes, what, save, KeptById3Save, FirstTagLength);
            for (const auto& [what, save] : endSaves)
                check(file, bytes, what, save, KeptByEndTagSave, [](const QByteArray&) { return qsizetype(0); });
        }
}

TEST(SongSafety, TheDamagedFilesOfOtherProgramsComeThroughEverySaveWhole)
{
    const QString folder = SharedFixture(QStringLiteral("malformed"));
    if (folder.isEmpty())
        GTEST_SKIP() << "the shared fixtures are not beside this checkout";
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray bytes = ReadFileBytes(folder + u'/' + name);
        Song song(name, bytes);
        SaveTitle2(song.path, QStringLiteral("Saved"));
        QByteArray after = song.Bytes();
        if (after != bytes) {
            EXPECT_EQ(after.mid(FirstTagLength(after), KeptById3Save(bytes).size()), KeptById3Save(bytes));
        }
        Tagged(song.path)->SaveAPETag({QStringLiteral("Ape"), {}, {}, {}, {}, {}, {}});
        const QByteArray before = after;
        after = song.Bytes();
        if (after != before) {
            EXPECT_TRUE(after.startsWith(KeptByEndTagSave(before)));
        }
    }
}

TEST(SongSafety, ALyricsSaveKeepsTheAudioAndTheEndTagsOfAnySong)
{
    LyricItem header;
    LyricItem syllable;
    syllable.Time = 1.5;
    syllable.Text = QStringLiteral("la");
    const std::vector<LyricItem> lyrics{header, syllable};
    SaveMP3Host host;
    host.MediaOpen = true;
    host.Text = [](const char* key) { return QString::fromLatin1(key); };
    host.Critical = host.Information = [](const QString&) {};
    host.WaitCursor = [](bool) {};
    for (const char* name : {"both.mp3", "ape-id3v1.mp3", "lyrics3.mp3", "stray-marker.mp3", "tone.mpc"}) {
        SCOPED_TRACE(name);
        Song song(QString::fromLatin1(name), Fixture(name));
        const QByteArray before = song.Bytes();
        const qsizetype tags = EndTagSpan(before);
        ASSERT_EQ(SaveMP3(song.path, lyrics, {PictureItem{}}, host), SaveMP3Result::Saved);
        ASSERT_EQ(SaveMP3(song.path, lyrics, {PictureItem{}}, host), SaveMP3Result::Saved);
        const QByteArray after = song.Bytes();
        const QByteArray audio = before.first(before.size() - tags);
        const qsizetype oldBlock = QByteArray(name) == "stray-marker.mp3" ? audio.lastIndexOf("#Songweaver") : -1;
        EXPECT_TRUE(after.startsWith(oldBlock >= 0 ? audio.first(oldBlock) : audio));
        EXPECT_TRUE(after.endsWith(before.last(tags))) << "the end tags stay behind the block as they were";
        QFile file(song.path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(FindLyricsBlockInFile(file).has_value());
    }
}

TEST(SongSafety, AReadOnlyFolderOrFileRefusesTheSaveWithTheFileAsItWas)
{
    Song song(QStringLiteral("locked.mp3"), Fixture("both.mp3"));
    const QByteArray before = song.Bytes();
    QFile::setPermissions(song.path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_LT(SaveTitle2(song.path, QStringLiteral("Never")), 0);
    EXPECT_EQ(song.Bytes(), before);
    EXPECT_EQ(QDir(song.dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 1) << "no temporary file is left";
}

TEST(SongSafety, ASongReachedThroughALinkIsSavedWhereItLivesAndTheLinkStays)
{
    Song song(QStringLiteral("real.mp3"), Fixture("both.mp3"));
    const QString link = song.dir.filePath(QStringLiteral("link.mp3"));
    ASSERT_TRUE(QFile::link(song.path, link));
    EXPECT_GT(SaveTitle2(link, QStringLiteral("Through the link")), 0);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(Tagged(song.path)->Title2(), "Through the link");
}
