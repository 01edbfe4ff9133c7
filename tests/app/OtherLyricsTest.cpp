// Songs with the timed lyrics of other programs beside them, as a folder on a user's disk has
// them: each plays with its words, and the song's own lyrics still come first.

#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class OtherLyrics : public testing::Test, protected ProgramWindows {
protected:
    OtherLyrics()
    {
        LoadDefaults(state, store);
        StartManualEngine(state);
    }

    QString Song(const QString& name)
    {
        return WriteRampWav(dir.filePath(name), 48000);
    }
    const LyricItem& Header() const { return state.Lyrics.PlayLyrics[0]; }
    QString FirstWords() const { return state.Lyrics.PlayLyrics.size() > 1 ? state.Lyrics.PlayLyrics[1].LineText : QString(); }

    QTemporaryDir dir;
};

} // namespace

TEST_F(OtherLyrics, AFolderOfSongsPlaysWithTheWordsBesideEach)
{
    const QString first = Song("first.wav");
    WriteFileBytes(dir.filePath("first.lrc"), "[ti:First]\r\n[00:00.50]Line one\r\n[00:00.90]Line two\r\n");
    const QString second = Song("second.wav");
    WriteFileBytes(dir.filePath("second.txt"), "#TITLE:Second\n#MP3:second.wav\n#BPM:600\n#GAP:100\n: 0 4 5 Sing \n: 4 4 7 it\nE\n");
    const QString third = Song("third.wav");
    WriteFileBytes(dir.filePath("third.txt"), "#TITLE:Not this one\n#MP3:another.mp3\n#BPM:600\n#GAP:0\n: 0 4 5 No\nE\n");
    WriteFileBytes(dir.filePath("third.SRT"), "1\n00:00:00,250 --> 00:00:00,800\nSubtitled\n");

    transport.OpenSong(first, true);
    EXPECT_EQ(Header().FormatName, "LRC");
    EXPECT_TRUE(Header().LineTimed) << "lit line by line";
    EXPECT_EQ(FirstWords(), "Line one");
    EXPECT_EQ(state.Lyrics.LyricsTitleText, "First") << "the title the file gives";

    transport.OpenSong(second, true);
    EXPECT_EQ(Header().FormatName, "UltraStar");
    EXPECT_FALSE(Header().LineTimed) << "lit syllable by syllable";
    EXPECT_EQ(FirstWords(), "Sing it");
    EXPECT_DOUBLE_EQ(state.Lyrics.PlayLyrics[2].Time, 0.1 + 4 * 0.025);

    transport.OpenSong(third, true);
    EXPECT_EQ(Header().FormatName, "SRT") << "an UltraStar file of another song is passed over";
    EXPECT_EQ(FirstWords(), "Subtitled");
}

TEST_F(OtherLyrics, TheSongsOwnLyricsComeFirst)
{
    const QString song = Song("own.wav");
    WriteFileBytes(dir.filePath("own.lrs"), "#Songweaver\r\n#End Songweaver\r\n[1]Own words\r\n");
    WriteFileBytes(dir.filePath("own.lrc"), "[00:01.00]Other words\n");
    transport.OpenSong(song, true);
    EXPECT_EQ(Header().FormatName, "Songweaver (*LRS)");
    EXPECT_EQ(FirstWords(), "Own words");

    WriteFileBytes(dir.filePath("damaged.lrc"), QByteArray("\x00\xFF[99:99.99", 11));
    transport.OpenSong(Song("damaged.wav"), true);
    EXPECT_EQ(state.Lyrics.PlayLyrics.size(), 1u) << "a file with no timed line shows nothing";
    EXPECT_TRUE(dialogs.messages.isEmpty());
}

TEST_F(OtherLyrics, AnUltraStarSongFilePlaysTheAudioItNamesWithItsWords)
{
    const QString audio = Song("Song.wav");
    const QString txt = dir.filePath("Artist - Song.txt");
    WriteFileBytes(txt, "#TITLE:Song\r\n#ARTIST:Artist\r\n#AUDIO:song.WAV\r\n#BPM:600\r\n#GAP:0\r\n: 0 4 5 La \r\nE\r\n");
    ASSERT_TRUE(transport.OpenSong(txt, true));
    EXPECT_EQ(state.CurrentFile, audio) << "the audio it names plays";
    EXPECT_TRUE(state.SongOpen());
    EXPECT_EQ(Header().FormatName, "UltraStar");
    EXPECT_EQ(FirstWords(), "La ");

    transport.OpenSong(audio, true);
    EXPECT_EQ(Header().FormatName, "UltraStar") << "the audio alone finds the song file of another name";

    WriteFileBytes(txt, "just some notes\n");
    transport.OpenSong(txt, true);
    EXPECT_FALSE(state.SongOpen()) << "a text that is no song does not play";
    EXPECT_EQ(dialogs.messages.size(), 1);
}
