// The recent songs of the main menu: most recent first, each once, ten at most, kept between runs.

#include "core/RecentFiles.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

TEST(RecentFiles, TheLatestComesFirstEachOnceAndTenAtMost)
{
    RecentFiles recent;
    recent.Add(QStringLiteral("/songs/a.kar"));
    recent.Add(QStringLiteral("/songs/b.mp3"));
    recent.Add(QStringLiteral("/songs/a.kar"));
    EXPECT_EQ(recent.Paths(), QStringList({"/songs/a.kar", "/songs/b.mp3"})) << "opened again, moved up";

    for (int i = 0; i < 12; ++i)
        recent.Add(QStringLiteral("/songs/%1.ogg").arg(i));
    ASSERT_EQ(recent.Paths().size(), RecentFiles::kKept);
    EXPECT_EQ(recent.Paths().first(), "/songs/11.ogg");
    EXPECT_EQ(recent.Paths().last(), "/songs/2.ogg") << "the oldest fall off";

    recent.Remove(QStringLiteral("/songs/5.ogg"));
    EXPECT_FALSE(recent.Paths().contains("/songs/5.ogg"));
    recent.Add(QString());
    recent.Add(QStringLiteral("/odd\nname.mp3"));
    EXPECT_EQ(recent.Paths().size(), RecentFiles::kKept - 1) << "nothing that cannot be kept is listed";
}

TEST(RecentFiles, KeptBetweenRunsAndADamagedValueGivesWhatItCan)
{
    MemoryStore store;
    RecentFiles first;
    first.Add(QStringLiteral("/songs/Ay, linda.kar"));
    first.Add(QStringLiteral("/songs/żółw|x.mp3"));
    first.Write(store);

    RecentFiles second;
    second.Read(store);
    EXPECT_EQ(second.Paths(), first.Paths());

    store.values[QStringLiteral("recent files")] = QStringLiteral("\n\n/a.mp3\n/a.mp3\n") + QString(200, u'x');
    second.Read(store);
    EXPECT_EQ(second.Paths(), QStringList({"/a.mp3", QString(200, u'x')}));

    QString many;
    for (int i = 0; i < 5000; ++i)
        many += QStringLiteral("/s/%1.mp3\n").arg(i);
    store.values[QStringLiteral("recent files")] = many;
    second.Read(store);
    EXPECT_EQ(second.Paths().size(), RecentFiles::kKept);

    second.Clear();
    second.Write(store);
    second.Add(QStringLiteral("/b.mp3"));
    second.Read(store);
    EXPECT_TRUE(second.Paths().isEmpty()) << "a cleared list stays cleared";
}
