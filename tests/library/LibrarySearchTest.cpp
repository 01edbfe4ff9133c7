// Finding songs as a user types: words anywhere in title, artist, album or lyrics, each typed
// word matching the start of a word, accents and strokes ignored, titles ranked over lyrics,
// filters and orders.

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "library/SearchText.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Search : testing::Test {
    void SetUp() override
    {
        ASSERT_TRUE(database.Open().Usable());
        Add("/m/queen.mp3", SongKinds::Audio, "Bohemian Rhapsody", "Queen", "A Night at the Opera",
            "Is this the real life? Is this just fantasy?");
        Add("/m/lyrics-love.mp3", SongKinds::Audio, "Stand by Me", "Ben E. King", "",
            "love love love love love love love love love love my love");
        Add("/m/title-love.kar", SongKinds::Midi, "Love Me Tender", "Elvis Presley", "", "");
        Add("/m/zolta.cdg.mp3", SongKinds::Disc, "Żółta łódź", "Zespół Ćma", "Łąki", "");
        Add("/m/beyonce.mp4", SongKinds::Video, "Halo", "Beyoncé", "", "");
    }
    void Add(const QByteArray& path, const QString& kind, const QString& title, const QString& artist,
             const QString& album, const QString& words)
    {
        ASSERT_TRUE(database.Write([&] {
            return StoreSong(database.Db(), LibrarySong{path, {1, 1}, kind, title, artist, album, 200,
                                                        words.isEmpty() ? QString() : "LRC", words});
        }));
    }
    QStringList Titles(const QString& text, LibraryOrder order = LibraryOrder::Relevance)
    {
        LibraryQuery query;
        query.text = text;
        query.order = order;
        return TitlesOf(query);
    }
    QStringList TitlesOf(const LibraryQuery& query)
    {
        QStringList titles;
        for (const LibraryHit& hit : SearchSongs(database.Db(), query))
            titles << hit.title;
        return titles;
    }
    QTemporaryDir dir;
    LibraryDatabase database{dir.filePath("library.db")};
};

} // namespace

TEST(SearchText, LettersLoseAccentsAndStrokesAndTypedWordsBecomePrefixes)
{
    EXPECT_EQ(FoldForSearch("Żółta ŁÓDŹ, Beyoncé, Straße, Øresund, Ægir"), "zolta lodz, beyonce, strasse, oresund, aegir");
    EXPECT_EQ(SearchExpression("bohem  RHAP"), "\"bohem\"* \"rhap\"*");
    EXPECT_EQ(SearchExpression("don't \"stop\" OR* (me)"), "\"don\"* \"t\"* \"stop\"* \"or\"* \"me\"*")
        << "quotes and operators typed are words, never the index's syntax";
    EXPECT_EQ(SearchExpression("  -- !! "), "");
}

TEST_F(Search, WordsAreFoundAnywhereFromTheirBeginnings)
{
    EXPECT_EQ(Titles("bohem rhap"), QStringList{"Bohemian Rhapsody"});
    EXPECT_EQ(Titles("rhap bohem"), QStringList{"Bohemian Rhapsody"}) << "in any order";
    EXPECT_EQ(Titles("queen opera"), QStringList{"Bohemian Rhapsody"}) << "artist and album";
    EXPECT_EQ(Titles("fantas"), QStringList{"Bohemian Rhapsody"}) << "the lyrics";
    EXPECT_TRUE(Titles("hemian").isEmpty()) << "the middle of a word is not its beginning";
    EXPECT_TRUE(Titles("bohemian zzz").isEmpty()) << "every word is needed";
}

TEST_F(Search, AccentsAndStrokesAreIgnoredBothWays)
{
    EXPECT_EQ(Titles("zolta lodz"), QStringList{"Żółta łódź"});
    EXPECT_EQ(Titles("ŻÓŁTA"), QStringList{"Żółta łódź"});
    EXPECT_EQ(Titles("cma laki"), QStringList{"Żółta łódź"});
    EXPECT_EQ(Titles("beyonce"), QStringList{"Halo"});
    EXPECT_EQ(Titles("béyoncé"), QStringList{"Halo"});
}

TEST_F(Search, ATitleRanksAboveLyricsFullOfTheWord)
{
    EXPECT_EQ(Titles("love"), (QStringList{"Love Me Tender", "Stand by Me"}));
}

TEST_F(Search, FiltersAndOrders)
{
    LibraryQuery query;
    query.kind = SongKinds::Midi;
    EXPECT_EQ(TitlesOf(query), QStringList{"Love Me Tender"});
    query = {};
    query.withLyricsOnly = true;
    EXPECT_EQ(TitlesOf(query), (QStringList{"Stand by Me", "Bohemian Rhapsody", "Żółta łódź"}))
        << "words, or disc graphics to sing from; by artist";
    EXPECT_EQ(Titles("", LibraryOrder::Title), (QStringList{"Bohemian Rhapsody", "Halo", "Love Me Tender",
                                                            "Stand by Me", "Żółta łódź"}));

    ASSERT_TRUE(database.Write([&] {
        return RecordPlay(database.Db(), "/m/beyonce.mp4", "Halo", "Beyoncé", "Ann", 100) &&
               RecordPlay(database.Db(), "/m/beyonce.mp4", "Halo", "Beyoncé", "Bob", 200) &&
               RecordPlay(database.Db(), "/m/queen.mp3", "Bohemian Rhapsody", "Queen", "", 300);
    }));
    EXPECT_EQ(Titles("", LibraryOrder::MostSung).mid(0, 2), (QStringList{"Halo", "Bohemian Rhapsody"}));
    const std::vector<HistoryRow> history = PlayHistory(database.Db(), 10);
    ASSERT_EQ(history.size(), 3u);
    EXPECT_EQ(history[0].title, "Bohemian Rhapsody") << "the latest first";
    EXPECT_EQ(history[1].singer, "Bob");
    const LibraryStats stats = CountSongs(database.Db());
    EXPECT_EQ(stats.songs, 5);
    EXPECT_EQ(stats.sung, 3);
    EXPECT_EQ(stats.byKind.value(SongKinds::Video), 1);
}

TEST_F(Search, ATextPastedIntoTheBoxIsSearchedByItsFirstWords)
{
    const QString pasted = "bohemian rhapsody " + QString("la ").repeated(200000);
    EXPECT_EQ(SearchExpression(pasted).count('*'), kMostSearchWords);
    EXPECT_TRUE(Titles(pasted).isEmpty()) << "every word searched for is needed";
    EXPECT_EQ(Titles("queen " + QString("is ").repeated(100000)), QStringList{"Bohemian Rhapsody"})
        << "the lyrics hold \"is\", the twelfth word is the last asked for";
}

TEST_F(Search, AListingOfEverySongIsReadInPagesThatFollowEachOther)
{
    for (int i = 0; i < 30; ++i)
        Add("/m/more" + QByteArray::number(i), SongKinds::Midi, QStringLiteral("More %1").arg(i, 2, 10, QLatin1Char('0')), "", "", "");
    LibraryQuery query;
    query.order = LibraryOrder::Title;
    query.limit = 10;
    QStringList pages;
    for (query.offset = 0; query.offset < 40; query.offset += 10)
        pages += TitlesOf(query);
    EXPECT_EQ(pages, Titles("", LibraryOrder::Title)) << "no song twice, none left out";
    EXPECT_EQ(pages.size(), 35);
    query.kind = SongKinds::Midi;
    EXPECT_EQ(CountListed(database.Db(), query), 31);
    query.withLyricsOnly = true;
    EXPECT_EQ(CountListed(database.Db(), query), 0);
}

TEST_F(Search, ALimitHoldsAndAQueryOfNoWordsListsEverything)
{
    LibraryQuery query;
    query.text = "\"";
    query.limit = 2;
    EXPECT_EQ(TitlesOf(query).size(), 2);
}
