#pragma once
// The key, tempo and vocal reduction a singer chose for each song. A song is known by its size
// and a hash of its first megabyte, so it is still found after it was renamed or moved.

#include <QString>

struct SongChoice {
    int semitones = 0;     // -12 to 12
    double tempo = 1;      // 0.5 to 2
    bool vocalsOff = false;

    // The song as it is: nothing to remember.
    bool IsNeutral() const { return semitones == 0 && tempo == 1 && !vocalsOff; }
    bool operator==(const SongChoice&) const = default;
};

class SongMemory {
public:
    virtual ~SongMemory() = default;

    // "size-hash" of the song, empty when it cannot be read.
    static QString SongKey(const QString& songPath);
    // What was chosen for the song of a key, the neutral choice for a song never changed.
    virtual SongChoice Recall(const QString& songKey) = 0;
    // Keeps the choice (a neutral one forgets the song) at once; false for an empty key (a song
    // that could not be read) or when it cannot be written.
    virtual bool Remember(const QString& songKey, const SongChoice& choice) = 0;
};
