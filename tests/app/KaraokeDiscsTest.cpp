// Karaoke collections as people own them: MP3+G songs with their graphics beside them or zipped
// together, and videos with their words burnt in or beside them, played through the real
// karaoke window one after another.

#include "playback/MediaSession.h"
#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"
#include "ui/editor/Editor.h"
#include "ui/editor/LyricsTable.h"
#include "ui/karaoke/LyricWindow.h"
#include "video/VideoStream.h"

#include <QDir>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kRate = 48000;

// Red from the start, blue from second 1, for `seconds`.
QByteArray RedThenBlue(int seconds)
{
    QByteArray bytes = CdgPacket(30, {0, 0, 0x3C, 0, 0, 0x0F}) + CdgPacket(1, {1});
    while (bytes.size() < 300 * 24)
        bytes += CdgPacket(0, {});
    bytes += CdgPacket(1, {2});
    while (bytes.size() < seconds * 300 * 24)
        bytes += CdgPacket(0, {});
    return bytes;
}

class KaraokeDiscs : public testing::Test, protected ProgramWindows {
protected:
    KaraokeDiscs()
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state, kRate);
        commands.ButtonAction(PlayerButton::Karaoke);
        windows.LyricWidget()->resize(640, 360);
    }

    void Play(double seconds)
    {
        for (int i = 0; i < int(seconds * 100 + 0.5); ++i) {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
            auto* session = dynamic_cast<MediaSession*>(state.Session.get());
            while (session && session->GetState() == SongSession::Running && session->SecondsBuffered() < 0.01 &&
                   std::chrono::steady_clock::now() < deadline)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            device->Step(kRate / 100, kRate / 100);
            if (transport.Ticks().Running())
                transport.Ticks().PlaybackTick();
        }
    }
    QRgb Middle() { return windows.LyricWidget()->grab().toImage().pixel(320, 180); }

    QTemporaryDir dir;
    ManualDevice* device = nullptr;
};

} // namespace

TEST_F(KaraokeDiscs, AnMp3GSongShowsItsGraphicsInTimeFromTheCdgFileOrTheAudio)
{
    const QString audio = WriteRampWav(dir.filePath("Artist - Song.wav"), kRate * 3, kRate);
    WriteFileBytes(dir.filePath("ARTIST - SONG.CDG"), RedThenBlue(3));

    for (const QString& opened : {dir.filePath("ARTIST - SONG.CDG"), audio}) {
        SCOPED_TRACE(opened.toStdString());
        ASSERT_TRUE(transport.OpenSong(opened, true));
        EXPECT_EQ(state.CurrentFile, audio) << "the graphics file plays its audio";
        ASSERT_TRUE(state.Lyrics.Graphics);
        Play(0.5);
        EXPECT_EQ(Middle(), qRgb(255, 0, 0));
        Play(0.6);
        EXPECT_EQ(Middle(), qRgb(0, 0, 255)) << "the packets of second 1 are on screen";
        transport.SeekToSeconds(0.3);
        Play(0.05);
        EXPECT_EQ(Middle(), qRgb(255, 0, 0)) << "a seek back shows the screen of its second";
    }
    EXPECT_TRUE(dialogs.messages.isEmpty()) << dialogs.messages.join('\n').toStdString();
}

TEST_F(KaraokeDiscs, AZippedSongPlaysFromAFolderThatGoesWhenItCloses)
{
    const QString wav = WriteRampWav(dir.filePath("make.wav"), kRate * 2, kRate);
    const QString zip = dir.filePath("Disc 3 - 07.zip");
    WriteZip(zip, {{"07 Song.wav", ReadFileBytes(wav)}, {"07 Song.cdg", RedThenBlue(2)}});
    QFile::remove(wav);

    ASSERT_TRUE(transport.OpenSong(zip, true));
    ASSERT_TRUE(state.Session);
    EXPECT_EQ(QFileInfo(state.CurrentFile).fileName(), "07 Song.wav");
    EXPECT_FALSE(state.CurrentFile.startsWith(dir.path()));
    ASSERT_TRUE(state.Lyrics.Graphics);
    Play(0.3);
    EXPECT_EQ(Middle(), qRgb(255, 0, 0));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"Disc 3 - 07.zip"}) << "nothing beside the zip";

    const QString inside = QFileInfo(state.CurrentFile).absolutePath();
    transport.OpenSong(WriteRampWav(dir.filePath("next.wav"), kRate, kRate), true);
    EXPECT_FALSE(QFileInfo::exists(inside)) << "the folder went with its song";
    EXPECT_FALSE(state.Lyrics.Graphics) << "the next song shows its own page";
}

TEST_F(KaraokeDiscs, SongsThatCannotPlayAreNamedWithWhy)
{
    WriteZip(dir.filePath("lonely.zip"), {{"song.mp3", "ID3"}});
    WriteFileBytes(dir.filePath("orphan.cdg"), RedThenBlue(1));
    EXPECT_TRUE(transport.OpenSong(dir.filePath("lonely.zip"), true));
    EXPECT_TRUE(transport.OpenSong(dir.filePath("orphan.cdg"), true));
    ASSERT_EQ(dialogs.messages.size(), 2);
    EXPECT_TRUE(dialogs.messages[0].contains("lonely.zip")) << dialogs.messages[0].toStdString();
    EXPECT_TRUE(dialogs.messages[0].contains("one audio file and one .cdg file of the same name"));
    EXPECT_TRUE(dialogs.messages[1].contains("No audio file of the same name stands beside the .cdg file"));
    EXPECT_FALSE(state.Session);

    const QString audio = WriteRampWav(dir.filePath("broken.wav"), kRate, kRate);
    WriteFileBytes(dir.filePath("broken.cdg"), "short");
    ASSERT_TRUE(transport.OpenSong(audio, true));
    EXPECT_TRUE(state.Session) << "the audio still plays";
    EXPECT_FALSE(state.Lyrics.Graphics);
    EXPECT_EQ(state.Lyrics.LyricsTitleText, "The karaoke graphics cannot be shown:|broken.cdg");
}

TEST_F(KaraokeDiscs, AVideoSongPlaysItsPictureWithItsWordsOverIt)
{
    const QString video = MakeTestVideo(dir.filePath("Singer - Hit.mp4"), 3);
    WriteFileBytes(dir.filePath("Singer - Hit.lrs"), "#Songweaver\r\n[0.2]Sing [0.6]a[0.9]long\r\n#End Songweaver\r\n");
    ASSERT_TRUE(transport.OpenSong(video, true));
    ASSERT_TRUE(state.Session) << dialogs.messages.join('\n').toStdString();
    ASSERT_TRUE(state.Lyrics.Video);
    EXPECT_EQ(state.Lyrics.PlayLyrics.size(), 4u) << "its words beside it";
    EXPECT_NEAR(state.Session->get_Duration(), 3.0, 0.1);
    Play(1.0);
    ASSERT_TRUE(state.Lyrics.Video->SettleAt(state.Session->get_CurrentPosition()));
    EXPECT_NEAR(state.Lyrics.Video->CurrentSeconds(), 1.0, 0.1) << "the picture follows the song";
    const QImage shown = windows.LyricWidget()->grab().toImage();
    int black = 0;
    for (int x = 0; x < shown.width(); x += 4)
        black += shown.pixel(x, 40) == qRgb(0, 0, 0);
    EXPECT_LT(black, shown.width() / 4 / 2) << "the picture fills the window";

    WriteFileBytes(dir.filePath("empty.mp4"), "");
    EXPECT_TRUE(transport.OpenSong(dir.filePath("empty.mp4"), true));
    EXPECT_EQ(dialogs.messages.size(), 1);
}

TEST_F(KaraokeDiscs, LyricsTimedForAZippedSongGoBesideTheZipAndComeBackWithIt)
{
    const QString wav = WriteRampWav(dir.filePath("make.wav"), kRate * 2, kRate);
    const QString zip = dir.filePath("Disc 4.zip");
    WriteZip(zip, {{"song.wav", ReadFileBytes(wav)}, {"song.cdg", RedThenBlue(2)}});
    QFile::remove(wav);
    const QByteArray zipBytes = ReadFileBytes(zip);
    ASSERT_TRUE(transport.OpenSong(zip, true));
    commands.ButtonAction(PlayerButton::Editor);
    Editor& editor = *windows.EditorWidget();
    editor.LyricsBox().setPlainText(QStringLiteral("Disc words"));
    editor.Command(QStringLiteral("MenuSplitWords"));
    Play(0.5);
    QTest::keyClick(&editor.List(), Qt::Key_Space);

    dialogs.files = {dir.filePath("Disc 4.lrs")};
    editor.Command(QStringLiteral("MenuSave"));
    QTest::qWait(20);  // the save runs once the menu is gone
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_TRUE(dialogs.messages[0].contains("never changes")) << dialogs.messages[0].toStdString();
    EXPECT_EQ(dialogs.suggestions.value(0), dir.filePath("Disc 4.lrs")) << "offered beside the zip";
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("Disc 4.lrs")));
    EXPECT_EQ(ReadFileBytes(zip), zipBytes) << "the zip stays as it was";
    EXPECT_FALSE(editor.Document().Modified());

    transport.OpenSong(zip, true);
    EXPECT_EQ(state.Lyrics.PlayLyrics.size(), 3u) << "its words come back with the zip";
}
