// The file information dialogs on the offscreen platform: the MP3 dialog's two groups, its check
// boxes and copies, its save with the "(17)Rock" form, the playlist row rebuilt, the three
// messages, a playing song taken up again; the read-only Ogg, WAV and MIDI dialogs.

#include "SessionWindows.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/FakeForms.h"
#include "support/PlayerSetup.h"
#include "support/TestSupport.h"
#include "tags/EndTags.h"
#include "../tags/Tagged.h"
#include "ui/info/InfoDialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct InfoWindow : testing::Test {
    QTemporaryDir dir;
    Journal journal;
    FakeSongList list{journal};
    QStringList messages;
    QStringList released;

    InfoContext Context()
    {
        InfoContext context;
        context.List = &list;
        context.Release = [this](const QString& path, const std::function<void()>& rewrite) {
            released << path;
            rewrite();
        };
        context.Critical = [this](const QString& text, const QString& title) { messages << title + u'|' + text; };
        return context;
    }

    static void Capture(QWidget& widget, const QString& name)
    {
        const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
        if (!folder.isEmpty())
            widget.grab().save(folder + u'/' + name + QStringLiteral(".png"));
    }
};

} // namespace

TEST_F(InfoWindow, TheTwoGroupsShowTheTagsAndTheChecksAndCopiesWork)
{
    const QString song = CopyFixture(MediaFixture("both.mp3"), dir.path());
    Id3InfoDialog dialog(song, Context());
    dialog.show();
    EXPECT_TRUE(dialog.Check1().isChecked());
    EXPECT_TRUE(dialog.Check2().isChecked());
    EXPECT_EQ(dialog.Id1(0).text(), "V1 Title");
    EXPECT_EQ(dialog.Combo1().currentText(), "Jazz");
    EXPECT_EQ(dialog.Combo1().itemText(0), "") << "the ID3v1 genre list starts with an empty row";
    EXPECT_EQ(dialog.Combo2().itemText(0), "Blues");
    EXPECT_EQ(dialog.Id2(0).text(), "Title Two");
    EXPECT_EQ(dialog.Id2(5).text(), "Composer Two");
    EXPECT_EQ(dialog.Track2().text(), "3/12");
    EXPECT_EQ(dialog.Combo2().currentText(), "Pop");
    Capture(dialog, QStringLiteral("info-mp3"));

    dialog.Button(3);
    EXPECT_EQ(dialog.Id1(0).text(), "Title Two");
    EXPECT_EQ(dialog.Combo1().currentText(), "Pop");
    dialog.Check2().setChecked(false);
    EXPECT_TRUE(dialog.Id2(0).text().isEmpty()) << "a cleared check empties its group";
    EXPECT_TRUE(dialog.Id2(9).text().isEmpty());
    dialog.Button(4);
    EXPECT_TRUE(dialog.Check2().isChecked());
    EXPECT_EQ(dialog.Id2(0).text(), "Title Two");
    dialog.Button(2);
    EXPECT_EQ(dialog.Id1(0).text(), "V1 Title") << "read again from the file";

    Id3InfoDialog untracked(CopyFixture(MediaFixture("genre200.mp3"), dir.path()), Context());
    EXPECT_EQ(untracked.Track1().text(), "1");
    EXPECT_EQ(untracked.Combo1().currentText(), "") << "genre 200 has no name";
    EXPECT_FALSE(untracked.Check2().isChecked());
}

TEST_F(InfoWindow, SavingWritesTheListedGenreByNumberAndRebuildsThePlaylistRow)
{
    const QString song = CopyFixture(MediaFixture("both.mp3"), dir.path());
    list.AddItem(QStringLiteral("Old text"), QStringLiteral("00:01"), song);
    auto* dialog = new Id3InfoDialog(song, Context());
    QPointer<Id3InfoDialog> alive(dialog);
    dialog->show();
    dialog->Id1(0).setText(QStringLiteral("New V1"));
    dialog->Id2(0).setText(QStringLiteral("New Title"));
    dialog->Id2(1).setText(QStringLiteral("New Artist"));
    dialog->Combo2().setCurrentText(QStringLiteral("Rock"));
    dialog->Button(0);
    EXPECT_EQ(released, QStringList{song}) << "a playing file is released around the write";
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_FALSE(alive && alive->isVisible()) << "closed after a save";
    EXPECT_EQ(list.texts[0], "New Artist - New Title|00:01");
    auto read = std::make_unique<MP3Class>();
    read->SetFilename(song);
    read->ReadFile();
    read->ReadTag();
    EXPECT_EQ(read->Title1(), "New V1");
    EXPECT_EQ(read->Title2(), "New Title");
    EXPECT_EQ(read->Genre2(), "Rock");
    EXPECT_TRUE(ReadFileBytes(song).contains("(17)Rock")) << "a listed genre goes in as (17)Rock";
}

TEST_F(InfoWindow, AnUncheckedGroupRemovesItsTagAndAnUnchangedId3v1Reports)
{
    const QString song = CopyFixture(MediaFixture("both.mp3"), dir.path());
    {
        auto* dialog = new Id3InfoDialog(song, Context());
        QPointer<Id3InfoDialog> alive(dialog);
        dialog->show();
        dialog->Id2(0).setText(QStringLiteral("Only the second"));
        dialog->Save();
        EXPECT_EQ(messages, QStringList{"SWV: Save error|Can't write both ID3v1 and Id3v2 tag."});
        ASSERT_FALSE(alive.isNull());
        EXPECT_TRUE(dialog->isVisible()) << "the window stays open after a message";
        delete dialog;
    }
    messages.clear();
    Id3InfoDialog dialog(song, Context());
    dialog.Check1().setChecked(false);
    dialog.Save();
    EXPECT_TRUE(messages.isEmpty());
    Id3v1Fields v1;
    EXPECT_FALSE(ReadId3v1(ReadFileBytes(song), false, v1)) << "the ID3v1 tag is gone";

    const QString locked = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), QStringLiteral("locked.mp3"));
    QFile::setPermissions(locked, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    const QByteArray before = ReadFileBytes(locked);
    Id3InfoDialog refused(locked, Context());
    refused.Id1(0).setText(QStringLiteral("Never"));
    refused.Save();
    EXPECT_EQ(messages, QStringList{"SWV: Save error|Can't write ID3v1 tag."});
    EXPECT_EQ(ReadFileBytes(locked), before);
}

TEST_F(InfoWindow, OggWavAndMidiDialogsShowTheirFacts)
{
    OggInfoDialog ogg(MediaFixture("comments.ogg"), false);
    EXPECT_FALSE(ogg.Shown(0).isEmpty());
    EXPECT_EQ(ogg.findChild<QLineEdit*>(QStringLiteral("OGG0"))->isReadOnly(), true);
    EXPECT_TRUE(ogg.windowTitle().endsWith(QStringLiteral(" - comments.ogg")));
    Capture(ogg, QStringLiteral("info-ogg"));

    WavInfoDialog wav(MediaFixture("pcm16-stereo.wav"), false);
    EXPECT_TRUE(wav.Shown().contains(QStringLiteral("Hz"))) << wav.Shown().toStdString();

    MidiInfoDialog midi(MediaFixture("untitled.mid"), false);
    EXPECT_TRUE(midi.Shown().contains(QStringLiteral("Tempo: 120.00 BPM"))) << midi.Shown().toStdString();
    EXPECT_TRUE(midi.Shown().contains(QStringLiteral("Length: 00:04"))) << midi.Shown().toStdString();
}

TEST_F(InfoWindow, APlayingSongPlaysOnFromTheSameWholeSecondAfterASave)
{
    MemoryStore store;
    PlayerState state;
    LoadDefaults(state, store);
    ManualDevice& device = StartManualEngine(state);
    SessionWindows windows{state, journal};
    PlayerTransport transport{state, windows, list};
    const QString song = CopyFixture(MediaFixture("both.mp3"), dir.path());
    ASSERT_TRUE(transport.OpenSong(song, true));
    PlayDecoded(device, state, 1.05);
    ASSERT_GE(state.Session->get_CurrentPosition(), 1.0);

    InfoContext context = Context();
    context.Release = [&transport](const QString& path, const std::function<void()>& rewrite) {
        transport.ReopenAround(path, rewrite);
    };
    Id3InfoDialog dialog(song, std::move(context));
    dialog.Id1(0).setText(QStringLiteral("Sung on"));
    dialog.Id2(0).setText(QStringLiteral("Sung on"));
    dialog.Save();
    EXPECT_TRUE(messages.isEmpty()) << messages.join(u'|').toStdString();
    ASSERT_NE(state.Session, nullptr);
    EXPECT_EQ(state.Session->GetState(), SongSession::Running);
    EXPECT_NEAR(state.Session->get_CurrentPosition(), 1.0, 0.05) << "taken up at the whole second";
    EXPECT_EQ(Tagged(song)->Title2(), "Sung on");
}

TEST_F(InfoWindow, ADownloadWithALyingTagSizeIsRefusedWithTheMessageAndKeptWhole)
{
    // The ID3v2 header says 0x7F7F7F7F bytes: the save once wrote the tag alone over the song.
    const QString song = CopyFixture(MediaFixture("both.mp3"), dir.path(), QStringLiteral("download.mp3"));
    QByteArray bytes = ReadFileBytes(song);
    bytes.replace(6, 4, QByteArray("\x7F\x7F\x7F\x7F", 4));
    WriteFileBytes(song, bytes);
    auto* dialog = new Id3InfoDialog(song, Context());
    QPointer<Id3InfoDialog> alive(dialog);
    dialog->show();
    dialog->Id1(0).setText(QStringLiteral("New title"));
    dialog->Id2(0).setText(QStringLiteral("New title"));
    dialog->Save();
    EXPECT_EQ(messages, QStringList{"SWV: Save error|Can't write both ID3v1 and Id3v2 tag."});
    EXPECT_EQ(ReadFileBytes(song), bytes) << "not one byte of the song changed";
    ASSERT_FALSE(alive.isNull());
    EXPECT_TRUE(dialog->isVisible());
    delete dialog;
}

TEST_F(InfoWindow, ADiscSongOrAVideoTellsItsKind)
{
    WriteZip(dir.filePath("Disc 2.zip"), {{"song.mp3", ReadFileBytes(MediaFixture("id3v2.mp3"))},
                                          {"SONG.cdg", QByteArray(24 * 300, '\0')}});
    KaraokeInfoDialog zipped(dir.filePath("Disc 2.zip"), false);
    EXPECT_EQ(zipped.Shown(), "Kind: CDG MP3\nLength: 00:01\nSong: Artist Two - Title Two\nGraphics: SONG.cdg");
    EXPECT_EQ(zipped.findChild<QLineEdit*>(QStringLiteral("Filepath"))->text(), dir.filePath("Disc 2.zip"))
        << "the file the user chose, not the one taken out";
    Capture(zipped, QStringLiteral("info-karaoke"));

    KaraokeInfoDialog video(MakeTestVideo(dir.filePath("clip.mp4"), 1, QSize(160, 120)), false);
    EXPECT_TRUE(video.Shown().startsWith("Kind: VIDEO h264 160x120 25 fps\nLength: 00:01")) << video.Shown().toStdString();
}
