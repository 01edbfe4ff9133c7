// Feeds arbitrary bytes to the MIDI readers the way a MIDI or KAR file reaches them: the byte
// reader with its words, the event parser and its fallback words, and the title search.

#include "midi/KaraokeWords.h"
#include "midi/MidiFile.h"
#include "midi/MidiRead.h"

#include <QGuiApplication>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    // The figures of a song before carry over, as in a run.
    static MidiFigures figures;
    MeasureSong(bytes, figures);
    std::vector<LyricItem> words(1);
    ReadMidiWords(bytes, figures, figures.MidiDuration, words, size % 2 == 0);
    FinishWords(words);
    QString title, artist;
    ReadMidiTitle(bytes, false, title, artist);
    MidiFileSeconds(bytes);
    return 0;
}
