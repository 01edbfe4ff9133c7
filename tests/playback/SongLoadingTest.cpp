// Loading songs: what OpenSong does with good, missing and unplayable files, the command line,
// and the Next and Previous walks over the playlist.

#include "audio/SynthSource.h"
#include "lyrics/LyricsBlock.h"
#include "midi/MidiBuilder.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/FakeForms.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"

#include <QDir>
#include <QTemporaryDir>
#include <set>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

class SongLoading : public testing::Test {
protected:
    SongLoading()
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state);
        state.KaraokeOpen = true;
    }
    QString Wav(const QString& name) { return WriteRampWav(dir.filePath(name), 48000); }
    QString Unplayable(const QString& name)
    {
        WriteFileBytes(dir.filePath(name), QByteArray(4000, 'x'));
        return dir.filePath(name);
    }
    QStringList Lyric() const { return journal.calls.filter(QStringLiteral("Lyric.")); }

    QTemporaryDir dir;
    PlayerState state;
    Journal journal;
    MemoryStore store;
    FakeWindows windows{journal};
    FakeSongList list{journal};
    ScriptedDialogs messages;
    ManualDevice* device = nullptr;
    PlayerTransport transport{state, windows, list, &messages};
};

} // namespace

TEST_F(SongLoading, AGoodSongGetsItsSessionLabelsAndLyrics)
{
    const QString song = Wav("My Song.wav");
    std::vector<LyricItem> lyrics(2);
    lyrics[0].Title = QStringLiteral("Sung Title");
    lyrics[1].Time = 0.5;
    lyrics[1].Text = lyrics[1].LineText = QStringLiteral("la");
    ASSERT_TRUE(SaveLrsFile(dir.filePath("My Song.lrs"), lyrics, {PictureItem{}}));

    EXPECT_TRUE(transport.OpenSong(song, false));
    EXPECT_EQ(state.CurrentFile, song);
    EXPECT_NE(state.Session, nullptr);
    EXPECT_FALSE(state.IsMidi);
    EXPECT_EQ(windows.player.title, "My Song") << "no tag title: the display name";
    EXPECT_EQ(state.Lyrics.PlayLyrics.size(), 2u);
    EXPECT_EQ(state.Lyrics.PlayLyrics[0].FormatName, "Songweaver (*LRS)");
    EXPECT_EQ(Lyric(), (QStringList{"Lyric.ClearLyrics", "Lyric.ClearLyrics", "Lyric.ClearNewLyrics", "Lyric.FitLyrics",
                                    "Lyric.ChangeLyrics", "Lyric.ChangeLyrics"}))
        << "closing clears, the new song clears its page, the loaded lyrics fit the font, then show";
    EXPECT_TRUE(messages.Shown().isEmpty());
}

TEST_F(SongLoading, AMissingFileIsQuietAndAnUnplayableOneIsReported)
{
    transport.OpenSong(Wav("old.wav"), false);
    EXPECT_FALSE(transport.OpenSong(dir.filePath("gone.wav"), true));
    EXPECT_EQ(state.Session, nullptr) << "the old song is closed all the same";
    EXPECT_TRUE(messages.Shown().isEmpty());

    EXPECT_TRUE(transport.OpenSong(Unplayable("bad.mp3"), true)) << "true: the file exists";
    EXPECT_EQ(state.Session, nullptr);
    EXPECT_EQ(messages.Shown(), QStringList{"This song cannot be played:\r\n" + QDir::toNativeSeparators(dir.filePath("bad.mp3")) +
                                            "\r\nIts contents are no song that Songweaver plays."});
    EXPECT_TRUE(state.CurrentFile.isEmpty());
}

TEST_F(SongLoading, ADamagedLyricsFileIsSaidOnTheKaraokeWindow)
{
    const QString song = Wav("Damaged.wav");
    WriteFileBytes(dir.filePath("Damaged.lrs"), "#Songweaver\r\n[1]one [2two\r\n#End Songweaver\r\n");
    ASSERT_TRUE(transport.OpenSong(song, false));
    EXPECT_NE(state.Session, nullptr) << "the song plays all the same";
    EXPECT_EQ(state.Lyrics.LyricsTitleText, "The lyrics file is damaged:|Damaged.lrs");
    EXPECT_TRUE(Lyric().contains("Lyric.ChangeLyrics"));

    ASSERT_TRUE(transport.OpenSong(Wav("Plain.wav"), false));
    EXPECT_EQ(state.Lyrics.LyricsTitleText, "Plain") << "the next song shows its own title";
}

TEST_F(SongLoading, AnUnplayableSongIsNamedWithWhatIsWrongWithIt)
{
    const auto reason = [this](const QString& path) {
        transport.OpenSong(path, false);
        EXPECT_EQ(state.Session, nullptr) << path.toStdString();
        return messages.Shown().isEmpty() ? QString() : messages.Shown().last().section(QStringLiteral("\r\n"), 1);
    };
    WriteFileBytes(dir.filePath("empty.kar"), "");
    EXPECT_EQ(reason(dir.filePath("empty.kar")),
              QDir::toNativeSeparators(dir.filePath("empty.kar")) + "\r\nThe file is empty.");
    WriteFileBytes(dir.filePath("words.mp3"), "These are the words of the song, not its sound.\n");
    EXPECT_TRUE(reason(dir.filePath("words.mp3")).endsWith("\r\nIts contents are no song that Songweaver plays."));
    WriteFileBytes(dir.filePath("cut.kar"), QByteArray("MThd\0\0", 6));
    EXPECT_TRUE(reason(dir.filePath("cut.kar")).endsWith("\r\nThe file seems damaged."));

    LanguageTable polish;
    polish.LoadTable(true);
    for (const char* key : {"ErrorSongUnplayable", "ReasonEmpty", "ReasonUnknown", "ReasonDamaged"})
        EXPECT_FALSE(polish.GetText(QString::fromLatin1(key)).isEmpty()) << key;
}

TEST_F(SongLoading, ADoubleClickedMissingSongIsNamedItsRowMarkedAndTheOldSongLeavesTheScreen)
{
    list.paths = {Wav("old.wav"), dir.filePath("gone.wav")};
    transport.fnChangeSong(0);
    journal.calls.clear();
    transport.fnChangeSong(1);
    EXPECT_EQ(state.Session, nullptr);
    EXPECT_EQ(messages.Shown(),
              QStringList{"The song file is missing:\r\n" + QDir::toNativeSeparators(dir.filePath("gone.wav"))});
    EXPECT_EQ(list.missing, (std::set<int>{1}));
    EXPECT_TRUE(Lyric().contains("Lyric.ClearNewLyrics")) << "the old song's title and page leave the karaoke window";
    EXPECT_EQ(windows.player.timeText, "0");

    WriteRampWav(dir.filePath("gone.wav"), 48000);
    transport.fnChangeSong(1);
    EXPECT_EQ(state.CurrentFile, dir.filePath("gone.wav"));
    EXPECT_TRUE(list.missing.empty()) << "a song that is back loses its mark";

    list.paths = {dir.filePath("lost.wav"), Wav("next.wav")};
    state.PlayingIndex = -1;
    transport.DALEJ();
    EXPECT_EQ(state.CurrentFile, dir.filePath("next.wav"));
    EXPECT_EQ(list.missing, (std::set<int>{0})) << "Next steps over a missing song quietly but marks it";
    EXPECT_EQ(messages.Shown().size(), 1);
}

TEST_F(SongLoading, MidiSongsPlayAsSoonAsLoadedPauseSeekToTheirShareAndEnd)
{
    const QString kar = CopyFixture(MediaFixture("song.kar"), dir.path());
    list.paths = {kar};
    state.PlayingIndex = 0;
    EXPECT_TRUE(transport.OpenSong(kar, false));
    EXPECT_TRUE(state.IsMidi);
    ASSERT_NE(state.Session, nullptr);
    EXPECT_EQ(state.Session->GetState(), SongSession::Running) << "a MIDI song starts when it is loaded";
    EXPECT_DOUBLE_EQ(state.Session->get_Duration(), 4.0);
    EXPECT_EQ(state.CurrentFile, kar);
    EXPECT_EQ(state.EditorFile, kar);
    EXPECT_TRUE(journal.calls.contains("MidiEq.ChangeMidi " + kar + " 0"));
    EXPECT_EQ(windows.player.title, "Silent Night");
    EXPECT_EQ(windows.player.artist, "Franz Gruber");
    EXPECT_EQ(state.Lyrics.PlayLyrics.size(), 1u) << "a file without words is an empty document";
    EXPECT_EQ(state.Lyrics.PlayLyrics[0].FormatName, "MIDI text events");

    device->Step(48000);
    EXPECT_NEAR(state.Session->get_CurrentPosition(), 1.0, 0.002);
    transport.PauseSong();
    device->Step(48000);
    EXPECT_NEAR(state.Session->get_CurrentPosition(), 1.0, 0.002) << "a paused song holds";
    transport.SeekTo(0.5);
    EXPECT_DOUBLE_EQ(state.Session->get_CurrentPosition(), 2.0) << "half of the song's ticks";
    device->Step(4800);
    EXPECT_DOUBLE_EQ(state.Session->get_CurrentPosition(), 2.0);
    EXPECT_EQ(state.Session->GetState(), SongSession::Paused);

    transport.PlaySong();
    device->Step(48000 * 2 + 4800);
    transport.Ticks().PlaybackTick();
    EXPECT_DOUBLE_EQ(state.CurrentPosition, 4.0);
    transport.Ticks().mmTimer();
    EXPECT_EQ(state.Session->GetState(), SongSession::Stopped) << "a lone list entry stops at its end";
    EXPECT_DOUBLE_EQ(state.Session->get_CurrentPosition(), 0);
}

TEST_F(SongLoading, TheCommandLineOpensTheSongBesideALyricsFileOnlyAsMp3)
{
    const QString mp3 = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "song.mp3");
    transport.OpenFromCommandLine(dir.filePath("song.lrs"));
    EXPECT_EQ(state.CurrentFile, mp3);
    EXPECT_EQ(list.paths, QStringList{mp3});
    EXPECT_EQ(list.texts, QStringList{"Artist One - Title One|00:01"});
    EXPECT_EQ(list.playing, 0);
    EXPECT_EQ(state.PlayingIndex, 0);
    ASSERT_NE(state.Session, nullptr);

    QTemporaryDir other;
    CopyFixture(MediaFixture("comments.ogg"), other.path(), "song.ogg");
    transport.OpenFromCommandLine(other.filePath("song.lrs"));
    EXPECT_EQ(state.Session, nullptr) << "only \"song.mp3\" is looked for";
    EXPECT_TRUE(messages.Shown().isEmpty());
}

TEST_F(SongLoading, NextAndPreviousStepOverMissingFilesAndStopAtUnplayableOnes)
{
    list.paths = {dir.filePath("missing.wav"), Wav("a.wav"), Wav("b.wav"), Unplayable("bad.mp3"), Wav("c.wav")};
    state.PlayingIndex = 0;
    transport.DALEJ();
    EXPECT_EQ(state.CurrentFile, dir.filePath("a.wav"));
    EXPECT_EQ(state.PlayingIndex, 1);
    transport.DALEJ();
    EXPECT_EQ(state.PlayingIndex, 2);
    transport.DALEJ();
    EXPECT_EQ(state.PlayingIndex, 3) << "the walk stops at the file that cannot play";
    EXPECT_EQ(messages.Shown().size(), 1);
    EXPECT_EQ(state.Session, nullptr);
    transport.DALEJ();
    EXPECT_EQ(state.CurrentFile, dir.filePath("c.wav"));
    transport.DALEJ();
    EXPECT_EQ(state.CurrentFile, dir.filePath("a.wav")) << "from the last row Next starts again at the top";
    EXPECT_EQ(list.playing, 1);

    transport.WSTECZ();
    EXPECT_EQ(state.Session, nullptr) << "below the missing first row there is nothing: the song ends";
    EXPECT_EQ(state.PlayingIndex, -1);
    transport.WSTECZ();
    EXPECT_EQ(state.CurrentFile, dir.filePath("c.wav")) << "with no song, Previous starts at the last row";

    list.paths = {dir.filePath("missing.wav")};
    transport.DALEJ();
    EXPECT_EQ(state.Session, nullptr);
}

TEST_F(SongLoading, AOneSongListKeepsItsSongOnNextAndRestartsItOnPrevious)
{
    const QString only = Wav("only.wav");
    list.paths = {only};
    transport.DALEJ();
    ASSERT_NE(state.Session, nullptr);
    // Whether the song was opened again, told by what an open does to the karaoke window: a
    // new session may stand at the freed one's address.
    journal.calls.clear();
    transport.DALEJ();
    EXPECT_FALSE(Lyric().contains("Lyric.ChangeLyrics")) << "Next keeps the song that plays";
    transport.WSTECZ();
    EXPECT_TRUE(Lyric().contains("Lyric.ChangeLyrics")) << "Previous opens it again";

    state.EditorOpen = true;
    const qsizetype before = list.paths.size();
    transport.DALEJ();
    EXPECT_EQ(list.paths.size(), before);
    EXPECT_NE(state.Session, nullptr) << "with the editor open the song only stops";
}

TEST_F(SongLoading, AMissingSoundFontIsNamedOnceAndMidiSongsAreThenRefused)
{
    state.Theme->SoundFont = dir.filePath("gone.sf2");
    const QString kar = CopyFixture(MediaFixture("song.kar"), dir.path());
    transport.OpenSong(kar, false);
    EXPECT_EQ(state.Session, nullptr);
    EXPECT_FALSE(state.Clock.HasSong()) << "the song is closed, not left open without a session";
    ASSERT_EQ(messages.Shown().size(), 1);
    EXPECT_TRUE(messages.Shown()[0].startsWith(QStringLiteral("MIDI songs cannot be played: ")));
    EXPECT_TRUE(messages.Shown()[0].contains(dir.filePath("gone.sf2")));

    transport.OpenSong(kar, false);
    ASSERT_EQ(messages.Shown().size(), 2);
    EXPECT_TRUE(messages.Shown()[1].startsWith("This song cannot be played:\r\n" + QDir::toNativeSeparators(kar) +
                                               "\r\nMIDI songs cannot be played: "))
        << "then each such song is named with the same reason";

    transport.OpenSong(Wav("audio.wav"), true);
    EXPECT_NE(state.Session, nullptr) << "audio songs play on";
}

TEST_F(SongLoading, TwoMidiSongsInARowShareOneSynthesiserAndTheSecondPlaysFromItsStart)
{
    const QString first = CopyFixture(MediaFixture("song.kar"), dir.path());
    const QString second = CopyFixture(SourcePath("resources/demo/twinkle.kar"), dir.path());
    list.paths = {first, second};
    state.PlayingIndex = 0;
    ASSERT_TRUE(transport.OpenSong(first, false));
    device->Step(24000);
    ASSERT_TRUE(transport.OpenSong(second, false));
    EXPECT_NEAR(state.Session->get_CurrentPosition(), 0.0, 0.002);
    const std::vector<float>& sound = device->Step(48000);
    EXPECT_NEAR(state.Session->get_CurrentPosition(), 1.0, 0.002) << "the kept synthesiser plays the new song";
    EXPECT_TRUE(std::any_of(sound.begin(), sound.end(), [](float s) { return s != 0.0f; }));

    std::string error;
    SynthKeeper keeper;
    const auto made = keeper.Take({}, 48000, error);
    ASSERT_TRUE(made) << error;
    const SynthSource* kept = made.get();
    keeper.Keep(made, {}, 48000);
    const auto again = keeper.Take({}, 48000, error);
    EXPECT_EQ(again.get(), kept) << "the same SoundFont at the same rate is not loaded again";
    keeper.Keep(again, {}, 48000);
    const auto otherRate = keeper.Take({}, 44100, error);
    ASSERT_TRUE(otherRate) << error;
    EXPECT_NE(otherRate.get(), kept);
}

TEST_F(SongLoading, AnotherVerseChangesOnlyTheWordsWhichGoOnFromWhereTheSongIs)
{
    const QString song = dir.filePath("verses.kar");
    WriteFileBytes(song, VersesMidiFile({{"One", "sun"}, {"Two", "moon"}}));
    transport.OpenSong(song, false);
    ASSERT_EQ(state.Midi.Verses.size(), 2u);
    state.Midi.ChannelTable[0].Volume = 40;  // as the MIDI window's fader leaves it
    journal.calls.clear();

    transport.ShowVerse(2);
    EXPECT_EQ(state.Lyrics.PlayLyrics[2].Text, "moon0 ");
    EXPECT_EQ(state.Midi.Verse, 2);
    EXPECT_EQ(state.Midi.ChannelTable[0].Volume, 40) << "the channels as the user set them";
    ASSERT_GE(journal.calls.size(), 3);
    EXPECT_EQ(journal.calls.mid(journal.calls.size() - 3), (QStringList{"Lyric.ChangeLyrics", "Lyric.GetLastPos", "MidiEq.Refresh"}))
        << "the new words, at the song's place, and the MIDI window names the verse";

    journal.calls.clear();
    transport.ShowVerse(2);
    EXPECT_TRUE(journal.calls.isEmpty()) << "the verse shown already";
    transport.OpenSong(Wav("audio.wav"), false);
    journal.calls.clear();
    transport.ShowVerse(1);
    EXPECT_TRUE(journal.calls.isEmpty()) << "an audio song has no verses";
}
