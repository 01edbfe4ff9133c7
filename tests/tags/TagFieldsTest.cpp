// ReadTag: which tag fills which field set, and which one wins the merged fields.

#include "support/TestSupport.h"
#include "tags/Genres.h"
#include "tags/MP3Class.h"
#include "Tagged.h"

#include <gtest/gtest.h>

TEST(TagFields, Id3v1FillsTheMergedAndTheFirstSet)
{
    auto s = Tagged(MediaFixture("id3v1.mp3"));
    EXPECT_TRUE(s->ID3v1Exist());
    EXPECT_FALSE(s->ID3v2Exist());
    EXPECT_EQ(s->Title(), "Title One") << "trailing blanks cut";
    EXPECT_EQ(s->Title1(), "Title One");
    EXPECT_EQ(s->Artist1(), "Artist One");
    EXPECT_EQ(s->Album1(), "Album One");
    EXPECT_EQ(s->Year1(), "1999");
    EXPECT_EQ(s->Comment1(), "Comment one");
    EXPECT_EQ(s->Track1(), "7");
    EXPECT_EQ(s->Genre1(), "Rock");
    EXPECT_EQ(s->Title2(), "");
}

TEST(TagFields, Id3v2BeatsId3v1AndKeepsItsTrackTextInTheSecondSet)
{
    auto s = Tagged(MediaFixture("both.mp3"));
    EXPECT_TRUE(s->ID3v1Exist());
    EXPECT_TRUE(s->ID3v2Exist());
    EXPECT_EQ(s->Title(), "Title Two");
    EXPECT_EQ(s->Title1(), "V1 Title") << "the first set keeps the ID3v1 tag";
    EXPECT_EQ(s->Genre1(), "Jazz");
    EXPECT_EQ(s->Track(), "3") << "merged track is the number of \"3/12\"";
    EXPECT_EQ(s->Track2(), "3/12");
    EXPECT_EQ(s->Genre2(), "Pop");
    EXPECT_EQ(s->Composer(), "Composer Two");
    EXPECT_EQ(s->Copyright(), "2004 Someone");
    EXPECT_EQ(s->Encoded(), "Encoder Two");
    EXPECT_EQ(s->OriginalArtist(), "Original Two");
    EXPECT_EQ(s->Lyrycist(), "") << "no read fills it";
}

TEST(TagFields, AnApeTagBeatsBothId3TagsAndHidesId3v2)
{
    auto withV2 = Tagged(MediaFixture("ape-id3v2.mp3"));
    EXPECT_EQ(withV2->Title(), "Ape Title");
    EXPECT_FALSE(withV2->ID3v2Exist()) << "ID3v2 is not looked at when an APE tag exists";
    EXPECT_EQ(withV2->Title2(), "");
    EXPECT_EQ(withV2->Title1(), "Ape Title") << "the APE tag shows in the ID3v1 places";

    auto withV1 = Tagged(MediaFixture("ape-id3v1.mp3"));
    EXPECT_TRUE(withV1->ID3v1Exist());
    EXPECT_EQ(withV1->Title1(), "Ape Title");
    EXPECT_EQ(withV1->Track(), "9");
    EXPECT_EQ(withV1->Genre(), "Jazz");
    EXPECT_EQ(withV1->Comment1(), "Ape comment");
}

TEST(TagFields, TheOggCommentOverridesUnlessAnApeTagIsThere)
{
    auto ogg = Tagged(MediaFixture("comments.ogg"));
    EXPECT_EQ(ogg->Title(), "Ogg Title");
    EXPECT_EQ(ogg->Title1(), "Ogg Title");
    EXPECT_EQ(ogg->Year(), "2001");
    EXPECT_EQ(ogg->Track(), "5");
    EXPECT_EQ(ogg->Genre(), "Jazz");
    EXPECT_EQ(ogg->Comment(), "Ogg comment");
    EXPECT_EQ(ogg->Performer(), "Ogg Performer");
    EXPECT_EQ(ogg->Description(), "Ogg description");

    auto withApe = Tagged(MediaFixture("ogg-ape.ogg"));
    EXPECT_EQ(withApe->Title(), "Ape Title");
    EXPECT_EQ(withApe->Performer(), "") << "the comment is not read when an APE tag exists";
}

TEST(TagFields, GenreTableAndCodes)
{
    EXPECT_EQ(GenreNames().size(), 126);
    EXPECT_EQ(GenreName(0), "Blues");
    EXPECT_EQ(GenreName(1), "Classic");
    EXPECT_EQ(GenreName(125), "Dance Hall");
    EXPECT_EQ(GenreName(126), "");
    EXPECT_EQ(GenreName(-1), "");
    EXPECT_EQ(GenreCode("Rock"), 17);
    EXPECT_EQ(GenreCode("rock"), 0) << "case-sensitive; unknown is Blues";
    EXPECT_EQ(GenreCode("Classic Rock"), 0);

    auto odd = Tagged(MediaFixture("genre200.mp3"));
    EXPECT_TRUE(odd->ID3v1Exist());
    EXPECT_EQ(odd->Genre(), "") << "code 200 has no name";
}

TEST(TagFields, Lyrics3FieldsAreReadFromTheTagBeforeId3v1)
{
    auto s = Tagged(MediaFixture("lyrics3.mp3"));
    EXPECT_TRUE(s->LyricsExist());
    EXPECT_EQ(s->LyricsVersion(), 2);
    EXPECT_EQ(s->LyricsSize(), 244);
    EXPECT_EQ(s->Lyrics(), "[00:01]First line\r\n[00:02]Second line\r\nno time here\r\n[00:03]Third");
    EXPECT_EQ(s->LyricsArtist(), "Lyrics Artist");
    EXPECT_EQ(s->LyricsTitle(), "Lyrics Title");
    EXPECT_EQ(s->LyricsAlbum(), "Lyrics Album");
    EXPECT_EQ(s->LyricsAuthor(), "Lyrics Author");
    EXPECT_EQ(s->LyricsPicture(), "cover.jpg||||[00:00]\r\nstage.jpg||Stage||[12]");
    EXPECT_EQ(s->Title(), "Song") << "the ID3v1 tag behind it is still found";

    auto none = Tagged(MediaFixture("id3v1.mp3"));
    EXPECT_FALSE(none->LyricsExist());
    EXPECT_EQ(none->LyricsSize(), 0);
}
