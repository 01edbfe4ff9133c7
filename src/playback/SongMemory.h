#pragma once
// The key, tempo and vocal reduction a singer chose for each song, kept per user in a file of
// the data folder. A song is known by its size and a hash of its first megabyte, so it is still
// found after it was renamed or moved.

#include <QHash>
#include <QString>
#include <QStringList>

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
    // At most this many songs are kept; the one chosen longest ago goes first.
    static constexpr int kKept = 5000;

    explicit SongMemory(QString file);

    // "size-hash" of the song, empty when it cannot be read.
    static QString SongKey(const QString& songPath);
    // What was chosen for the song of a key, the neutral choice for a song never changed.
    SongChoice Recall(const QString& songKey);
    // Keeps the choice (a neutral one forgets the song) and saves the file at once; false for
    // an empty key (a song that could not be read) or when the file cannot be written.
    bool Remember(const QString& songKey, const SongChoice& choice);

private:
    void Load();
    bool Save() const;

    QString m_file;
    bool m_loaded = false;
    QHash<QString, SongChoice> m_choices;
    QStringList m_order;  // keys, the one chosen longest ago first
};
