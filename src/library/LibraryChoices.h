#pragma once
// The key, tempo and vocal reduction chosen for each song, kept in the library's database.

#include "playback/SongMemory.h"

class LibraryDatabase;

class LibraryChoices final : public SongMemory {
public:
    explicit LibraryChoices(LibraryDatabase& database) : m_database(database) {}

    SongChoice Recall(const QString& songKey) override;
    bool Remember(const QString& songKey, const SongChoice& choice) override;

private:
    LibraryDatabase& m_database;
};

// Takes the choices of the file the program kept them in before the library into the
// database, then renames the file with ".imported" so they are taken once. The number taken;
// nothing when there was no such file or the database could not be written.
std::optional<int> ImportSongChoicesFile(LibraryDatabase& database, const QString& file);
