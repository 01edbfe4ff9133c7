#pragma once
// The ID3v1 genre table: codes 0 to 125, the standard list with its Winamp extension, where
// code 1 reads "Classic".

#include <QString>
#include <QStringList>

// The name of a code; empty outside 0 to 125.
QString GenreName(int code);
// The code of a name by exact, case-sensitive comparison; 0 for a name not in the table.
int16_t GenreCode(const QString& name);
// All names in code order, for the genre boxes of the dialogs.
const QStringList& GenreNames();
