// The information dialog's save on copies of real files: the result codes case by case, empty
// sets that remove their tags, the genre and track rules, frames and audio that survive, the
// ID3v2 version kept, and a read-only file left as it was.

#include "support/TestSupport.h"
#include "tags/EndTags.h"
#include "tags/MP3Class.h"
#include "tags/StreamFacts.h"
#include "Tagged.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/unsynchronizedlyricsframe.h>

namespace {

struct Copy {
    QTemporaryDir dir;
    QString path;
    explicit Copy(const char* fixture) : path(CopyFixture(MediaFixture(QString::fromLatin1(fixture)), dir.path())) {}
    QByteArray Bytes() const { return ReadFileBytes(path); }
};

// The bytes between the ID3v2 tag and the tags at the end: the audio.
QByteArray Audio(const QByteArray& file)
{
    const qsizetype start = Id3v2Span(file);
    return file.mid(start, file.size() - start - EndTagSpan(file));
}

int16_t Save(const QString& path, const std::function<void(Id3TagTexts&)>& change)
{
    auto song = Tagged(path);
    Id3TagTexts texts = song->TagTexts();
    change(texts);
    return song->SaveId3Tag(texts);
}

void ClearV1(Id3TagTexts& t)
{
    t.Title1 = t.Artist1 = t.Album1 = t.Year1 = t.Comment1 = t.Genre1 = t.Track1 = QString();
}

void ClearV2(Id3TagTexts& t)
{
    t.Title2 = t.Artist2 = t.Album2 = t.Year2 = t.Comment2 = t.Genre2 = t.Track2 = QString();
}

} // namespace

TEST(TagSaving, TheResultSaysWhetherTheFileChangedCaseByCase)
{
    {
        Copy both("both.mp3");
        EXPECT_EQ(Save(both.path, [](Id3TagTexts& t) {
                      t.Title1 = QStringLiteral("New V1");
                      t.Title2 = QStringLiteral("New V2");
                  }),
                  1);
        auto song = Tagged(both.path);
        EXPECT_EQ(song->Title1(), "New V1");
        EXPECT_EQ(song->Title2(), "New V2");
        EXPECT_EQ(song->Composer(), "Composer Two");
    }
    {
        // ID3v1 as it was, ID3v2 changed: the ID3v1 tag came back unchanged though both were touched.
        Copy both("both.mp3");
        EXPECT_EQ(Save(both.path, [](Id3TagTexts& t) { t.Title2 = QStringLiteral("Only V2"); }), -3);
        EXPECT_EQ(Tagged(both.path)->Title2(), "Only V2") << "the ID3v2 write went well all the same";
    }
    {
        Copy both("both.mp3");
        EXPECT_EQ(Save(both.path, [](Id3TagTexts& t) { t.Artist1 = QStringLiteral("Other"); }), 0)
            << "ID3v1 changed, ID3v2 the same";
    }
    {
        Copy v1("id3v1.mp3");
        EXPECT_EQ(Save(v1.path, [](Id3TagTexts&) {}), -1);
    }
    {
        Copy v2("id3v2.mp3");
        EXPECT_EQ(Save(v2.path, [](Id3TagTexts& t) { t.Album2 = QStringLiteral("Album Three"); }), -2);
    }
    {
        Copy plain("plain.mp3");
        const QByteArray before = plain.Bytes();
        EXPECT_EQ(Save(plain.path, [](Id3TagTexts&) {}), 0) << "nothing touched";
        EXPECT_EQ(plain.Bytes(), before);
    }
}

TEST(TagSaving, EmptySetsRemoveTheirTagsAndTheAudioStaysByteForByte)
{
    Copy both("both.mp3");
    const QByteArray audio = Audio(both.Bytes());
    EXPECT_EQ(Save(both.path, [](Id3TagTexts& t) {
                  ClearV1(t);
                  ClearV2(t);
              }),
              1);
    const QByteArray after = both.Bytes();
    EXPECT_EQ(Id3v2Span(after), 0);
    EXPECT_FALSE(after.right(128).startsWith("TAG"));
    EXPECT_EQ(after, audio) << "nothing but the audio is left";

    Copy again("both.mp3");
    Save(again.path, [](Id3TagTexts& t) {
        t.Title2 = QStringLiteral("A much longer title than the tag had room for before, so it grows");
        t.Comment1 = QStringLiteral("Changed");
    });
    EXPECT_EQ(Audio(again.Bytes()), audio);
}

TEST(TagSaving, GenreNamesAreExactAndTheTrackIsItsLeadingNumber)
{
    Copy song("id3v1.mp3");
    Save(song.path, [](Id3TagTexts& t) {
        t.Genre1 = QStringLiteral("rock");
        t.Track1 = QStringLiteral("7a");
    });
    Id3v1Fields v1;
    ASSERT_TRUE(ReadId3v1(song.Bytes(), false, v1));
    EXPECT_EQ(v1.Genre, 0) << "\"rock\" is not \"Rock\": code 0";
    EXPECT_EQ(v1.Track, 7);
    EXPECT_EQ(Tagged(song.path)->Genre1(), "Blues");

    Save(song.path, [](Id3TagTexts& t) {
        t.Genre1 = QStringLiteral("Rock");
        t.Title1 = QStringLiteral("Zażółć gęślą");
    });
    auto read = Tagged(song.path);
    EXPECT_EQ(read->Genre1(), "Rock");
    EXPECT_EQ(read->Title1(), "Zażółć gęślą") << "text the code page lacks travels as UTF-8";
}

TEST(TagSaving, FramesTheDialogDoesNotShowAndTheVersionSurvive)
{
    Copy song("id3v2.mp3");
    const TagLib::ByteVector cover("\xFF\xD8\xFF\xE0 not really a jpeg", 23);
    {
        TagLib::MPEG::File file(QFile::encodeName(song.path).constData());
        TagLib::ID3v2::Tag* tag = file.ID3v2Tag(true);
        auto* picture = new TagLib::ID3v2::AttachedPictureFrame;
        picture->setMimeType("image/jpeg");
        picture->setPicture(cover);
        tag->addFrame(picture);
        auto* lyrics = new TagLib::ID3v2::UnsynchronizedLyricsFrame(TagLib::String::UTF8);
        lyrics->setText("First line\nSecond line");
        tag->addFrame(lyrics);
        ASSERT_TRUE(file.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripNone, TagLib::ID3v2::v4));
    }
    EXPECT_EQ(Save(song.path, [](Id3TagTexts& t) { t.Title2 = QStringLiteral("Retitled"); }), -2);
    const QByteArray bytes = song.Bytes();
    EXPECT_EQ(bytes[3], 4) << "an ID3v2.4 tag stays 2.4";
    TagLib::MPEG::File file(QFile::encodeName(song.path).constData());
    const auto& frames = file.ID3v2Tag()->frameListMap();
    ASSERT_FALSE(frames["APIC"].isEmpty());
    EXPECT_EQ(static_cast<TagLib::ID3v2::AttachedPictureFrame*>(frames["APIC"].front())->picture(), cover);
    ASSERT_FALSE(frames["USLT"].isEmpty());
    EXPECT_EQ(frames["USLT"].front()->toString(), "First line\nSecond line");
    EXPECT_EQ(file.ID3v2Tag()->title(), "Retitled");

    Copy older("id3v2.mp3");
    const char version = older.Bytes()[3];
    Save(older.path, [](Id3TagTexts& t) { t.Year2 = QStringLiteral("2005"); });
    EXPECT_EQ(older.Bytes()[3], version);
    EXPECT_EQ(Tagged(older.path)->Year2(), "2005");
}

TEST(TagSaving, AReadOnlyFileStaysAsItWasAndTheResultSaysSo)
{
    Copy song("both.mp3");
    const QByteArray before = song.Bytes();
    QFile::setPermissions(song.path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_LT(Save(song.path, [](Id3TagTexts& t) { t.Title2 = QStringLiteral("Never"); }), 0);
    EXPECT_EQ(song.Bytes(), before);
}

TEST(TagSaving, ApeSavesCountTheGenreByItsNumberAndReportAChange)
{
    Copy song("ape-id3v1.mp3");
    auto read = Tagged(song.path);
    EXPECT_EQ(read->SaveAPETag({QStringLiteral("T"), QString(), QString(), QString(), QString(),
                                QStringLiteral("Jazz"), QString()}),
              0)
        << "a genre that is no number stops the save";
    EXPECT_EQ(Tagged(song.path)->Title(), "Ape Title");
    EXPECT_EQ(read->SaveAPETag({QStringLiteral("New Ape"), QStringLiteral("Ape Artist"), QString(), QString(),
                                QString(), QStringLiteral("8"), QStringLiteral("9")}),
              1);
    auto after = Tagged(song.path);
    EXPECT_EQ(after->Title(), "New Ape");
    EXPECT_EQ(after->Track(), "9");
    EXPECT_TRUE(after->ID3v1Exist()) << "the ID3v1 tag behind it stays";
}

TEST(TagSaving, RemoveTagAndTheMusepackWriterTakeTheKindsTheyAreAsked)
{
    Copy both("both.mp3");
    const QByteArray audio = Audio(both.Bytes());
    Tagged(both.path)->RemoveTag();
    EXPECT_EQ(both.Bytes(), audio) << "both ID3 tags gone, the audio as it was";

    Copy mpc("tone.mpc");
    auto song = Tagged(mpc.path);
    ASSERT_EQ(song->format(), "MPC");
    const ApeTagTexts texts{QStringLiteral("Tone"), QStringLiteral("Nobody"), QString(), QStringLiteral("2026"),
                            QString(), QStringLiteral("Rock"), QStringLiteral("1")};
    EXPECT_EQ(song->SaveMPCTag(texts, QStringLiteral("APE v2.00")), 1);
    ApeTagFields ape;
    ASSERT_TRUE(ReadApeTag(mpc.Bytes(), ape));
    EXPECT_EQ(ape.Title, "Tone");
    EXPECT_EQ(ape.Year, "2026");

    EXPECT_EQ(Tagged(mpc.path)->SaveMPCTag(texts, QStringLiteral("ID3v1")), 1);
    Id3v1Fields v1;
    ASSERT_TRUE(ReadId3v1(mpc.Bytes(), false, v1));
    EXPECT_EQ(v1.Title, "Tone");
    EXPECT_EQ(v1.Genre, 17);
    EXPECT_FALSE(ReadApeTag(mpc.Bytes(), ape)) << "the APE tag made way for the ID3v1 tag";
    EXPECT_EQ(Tagged(mpc.path)->SaveMPCTag(texts, QStringLiteral("Lyrics")), 0) << "a kind not known touches nothing";
}
