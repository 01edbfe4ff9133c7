#pragma once
// What a MIDI or KAR file says about itself without being played: its length in seconds, and
// a title and artist from its "@T" text events.

#include <QString>

class MidiRead {
public:
    explicit MidiRead(bool polishText = false) : m_polish(polishText) {}

    // Reads the file; a missing or damaged file leaves Length 0 and no title.
    void SetFilename(const QString& path);
    QString Filename() const { return m_filename; }

    double Length = 0;
    QString Title;   // empty unless the file names one
    QString Artist;

private:
    QString m_filename;
    bool m_polish;
};

// The length of a Standard MIDI File: its last event, at the tempo of its first tempo event (a
// later tempo change does not count). 0 when the bytes are no MIDI file.
double MidiFileSeconds(const QByteArray& bytes);

// Title and artist from the first qualifying "@T" text events; both empty when none qualifies.
void ReadMidiTitle(const QByteArray& bytes, bool polish, QString& title, QString& artist);
