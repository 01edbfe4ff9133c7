// An evening of singers taking turns: round robin, a newcomer placed fairly, a paused or idle
// singer who gets no burst of turns on coming back, songs moved and removed (and the removal
// undone), each singer's key kept, and the history of who sang what.

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "library/SingerQueue.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Evening : testing::Test {
    void SetUp() override { ASSERT_TRUE(database.Open().Usable()); }
    qint64 Singer(const QString& name, int songs)
    {
        const auto id = queue.AddSinger(name);
        EXPECT_TRUE(id);
        for (int i = 1; i <= songs; ++i)
            queue.Enqueue(*id, (name + QString::number(i)).toUtf8(), name + " song " + QString::number(i), "");
        return *id;
    }
    // Who sings the next turns, the turns taken.
    QStringList Sing(int turns)
    {
        QStringList names;
        for (int i = 0; i < turns; ++i) {
            const auto turn = queue.TakeNext(++clock);
            if (!turn)
                break;
            names << turn->singer.name;
        }
        return names;
    }
    QTemporaryDir dir;
    LibraryDatabase database{dir.filePath("library.db")};
    SingerQueue queue{database};
    qint64 clock = 1000;
};

} // namespace

TEST_F(Evening, SingersTakeTurnsInTheOrderTheyCame)
{
    Singer("Ann", 3);
    Singer("Bob", 3);
    Singer("Cid", 3);
    EXPECT_EQ(Sing(7), (QStringList{"Ann", "Bob", "Cid", "Ann", "Bob", "Cid", "Ann"}));
    EXPECT_FALSE(queue.AddSinger("   ")) << "a singer needs a name";
}

TEST_F(Evening, ANewcomerSingsAtTheEndOfTheRoundNotAfterALongList)
{
    Singer("Ann", 3);
    Singer("Bob", 3);
    Singer("Cid", 3);
    EXPECT_EQ(Sing(4), (QStringList{"Ann", "Bob", "Cid", "Ann"}));
    Singer("Dee", 3);
    EXPECT_EQ(Sing(6), (QStringList{"Bob", "Cid", "Dee", "Ann", "Bob", "Cid"}))
        << "after those still waiting this round, before anyone sings twice more";
}

TEST_F(Evening, APausedOrIdleSingerKeepsTheirPlaceWithoutABurstOfTurns)
{
    const qint64 ann = Singer("Ann", 4);
    Singer("Bob", 4);
    const qint64 cid = Singer("Cid", 0);
    ASSERT_TRUE(queue.SetPaused(ann, true));
    EXPECT_EQ(Sing(3), (QStringList{"Bob", "Bob", "Bob"})) << "the only singer waiting with a song";
    ASSERT_TRUE(queue.SetPaused(ann, false));
    queue.Enqueue(cid, "c1", "Cid song", "");
    EXPECT_EQ(Sing(4), (QStringList{"Ann", "Cid", "Ann", "Bob"}))
        << "each back at their place in the round, none singing twice before the other";
}

TEST_F(Evening, ASingerWhoLeavesTakesTheirSongsAlong)
{
    Singer("Ann", 2);
    const qint64 bob = Singer("Bob", 2);
    ASSERT_TRUE(queue.RemoveSinger(bob));
    EXPECT_EQ(queue.Singers().size(), 1u);
    EXPECT_EQ(Sing(5), (QStringList{"Ann", "Ann"}));
    EXPECT_FALSE(queue.Next());
}

TEST_F(Evening, SongsAreMovedRemovedAndARemovalUndone)
{
    const qint64 ann = Singer("Ann", 3);
    auto titles = [&] {
        QStringList list;
        for (const QueuedSong& song : queue.SongsOf(ann))
            list << song.title;
        return list;
    };
    const std::vector<QueuedSong> songs = queue.SongsOf(ann);
    ASSERT_TRUE(queue.Move(songs[2].id, -2));
    EXPECT_EQ(titles(), (QStringList{"Ann song 3", "Ann song 1", "Ann song 2"}));
    ASSERT_TRUE(queue.Move(songs[2].id, 10));
    EXPECT_EQ(titles(), (QStringList{"Ann song 1", "Ann song 2", "Ann song 3"})) << "no further than the end";

    ASSERT_TRUE(queue.Remove(songs[1].id));
    EXPECT_EQ(titles(), (QStringList{"Ann song 1", "Ann song 3"}));
    ASSERT_TRUE(queue.UndoRemove());
    EXPECT_EQ(titles(), (QStringList{"Ann song 1", "Ann song 2", "Ann song 3"})) << "back where it was";
    EXPECT_FALSE(queue.UndoRemove()) << "once";

    ASSERT_TRUE(queue.Remove(songs[0].id));
    ASSERT_TRUE(queue.RemoveSinger(ann));
    EXPECT_FALSE(queue.UndoRemove()) << "the singer left meanwhile";
}

TEST_F(Evening, EachSingerKeepsTheirKeyAndTheHistoryTellsWhoSang)
{
    const qint64 ann = Singer("Ann", 0);
    const qint64 bob = Singer("Bob", 0);
    ASSERT_TRUE(queue.KeepKey("Ann", "/m/song.mp3", -3));
    queue.Enqueue(ann, "/m/song.mp3", "Song", "Band");
    queue.Enqueue(bob, "/m/song.mp3", "Song", "Band");
    EXPECT_EQ(queue.SongsOf(ann).at(0).semitones, -3);
    EXPECT_EQ(queue.SongsOf(bob).at(0).semitones, 0);

    const auto turn = queue.TakeNext(5000);
    ASSERT_TRUE(turn);
    EXPECT_EQ(turn->song.semitones, -3);
    const std::vector<HistoryRow> history = PlayHistory(database.Db(), 5);
    ASSERT_EQ(history.size(), 1u);
    EXPECT_EQ(history[0].singer, "Ann");
    EXPECT_EQ(history[0].when, 5000);
    EXPECT_EQ(queue.Next()->singer.name, "Bob");
}

TEST_F(Evening, TheQueueIsTheSameWhenTheProgramStartsAgain)
{
    Singer("Ann", 2);
    Singer("Bob", 1);
    Sing(1);
    LibraryDatabase later(dir.filePath("library.db"));
    ASSERT_TRUE(later.Open().Usable());
    SingerQueue again(later);
    ASSERT_EQ(again.Singers().size(), 2u);
    EXPECT_EQ(again.Next()->singer.name, "Bob");
    EXPECT_EQ(again.Next()->song.title, "Bob song 1");
}

TEST_F(Evening, TheTurnsToComeAreTheTurnsTakenInOrder)
{
    Singer("Ann", 3);
    Singer("Bob", 1);
    Singer("Cid", 2);
    QStringList foreseen;
    for (const Turn& turn : queue.Upcoming())
        foreseen << turn.singer.name + ":" + turn.song.title;
    QStringList taken;
    while (const auto turn = queue.TakeNext(++clock))
        taken << turn->singer.name + ":" + turn->song.title;
    EXPECT_EQ(foreseen, taken);
    EXPECT_EQ(taken.size(), 6);
}

TEST_F(Evening, AGuestsSongWaitingForApprovalIsNoTurnUntilApproved)
{
    Singer("Ann", 1);
    const qint64 zoe = *queue.SingerNamed("Zoe");
    EXPECT_EQ(queue.SingerNamed(" zoe "), zoe) << "the same guest is the same singer";
    const qint64 asked = *queue.Enqueue(zoe, "/m/rain.mp3", "Purple Rain", "Prince", -3, "g7", true);
    ASSERT_EQ(queue.Upcoming().size(), 1u);
    EXPECT_EQ(queue.SongsOfGuest("g7").size(), 1u);
    EXPECT_TRUE(queue.SongsOfGuest("g7").front().pending);

    EXPECT_EQ(Sing(1), QStringList{"Ann"});
    EXPECT_FALSE(queue.Next()) << "only a waiting song is left";
    ASSERT_TRUE(queue.Approve(asked));
    const auto next = queue.Next();
    ASSERT_TRUE(next);
    EXPECT_EQ(next->singer.name, "Zoe");
    EXPECT_EQ(next->song.semitones, -3) << "the key the guest asked for";
    EXPECT_EQ(next->song.guest, "g7");
}

TEST_F(Evening, ARemovedRequestComesBackAsARequestAndABlockedGuestsSongsGo)
{
    const qint64 zoe = *queue.AddSinger("Zoe");
    const qint64 first = *queue.Enqueue(zoe, "/m/a.mp3", "A", "", std::nullopt, "g1", true);
    queue.Enqueue(zoe, "/m/b.mp3", "B", "", std::nullopt, "g1", false);
    queue.Enqueue(zoe, "/m/c.mp3", "C", "");
    ASSERT_TRUE(queue.Remove(first));
    ASSERT_TRUE(queue.UndoRemove());
    const auto back = queue.SongsOf(zoe).front();
    EXPECT_EQ(back.guest, "g1");
    EXPECT_TRUE(back.pending);

    EXPECT_EQ(queue.RemoveGuest("g1"), 2);
    ASSERT_EQ(queue.SongsOf(zoe).size(), 1u);
    EXPECT_EQ(queue.SongsOf(zoe).front().title, "C") << "the host's own song stays";
    EXPECT_EQ(queue.RemoveGuest(""), 0) << "the host's songs are nobody's to block";
}
