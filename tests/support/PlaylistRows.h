#pragma once
// Reading a playlist the way its window shows it.

#include "playlist/Playlist.h"

#include <QStringList>
#include <QTest>

// The texts of the rows, top to bottom.
inline QStringList RowTexts(const Playlist& songs)
{
    QStringList texts;
    for (int i = 0; i < songs.ListCount(); ++i)
        texts << songs.Model().Row(i).ItemString;
    return texts;
}

// Waits until `count` rows are in and the prober has finished; false after 10 seconds.
inline bool WaitForProbedRows(Playlist& songs, int count)
{
    return QTest::qWaitFor([&] { return songs.ListCount() >= count && !songs.Prober().Busy(); }, 10000);
}
