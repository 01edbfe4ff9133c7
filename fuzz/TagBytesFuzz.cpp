// Feeds arbitrary bytes to the format sniffers, the end-tag and Lyrics3 readers, the ID3v2
// bridge and the MIDI reader, and checks that taking the end tags off and putting them back,
// and writing a Lyrics3 tag and reading it again, give back what went in.

#include "midi/MidiRead.h"
#include "tags/EndTags.h"
#include "tags/Lyrics3.h"
#include "tags/StreamFacts.h"
#include "tags/TagBridge.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    AnalyseWav(bytes);
    AnalyseMpeg(bytes);
    AnalyseApe(bytes);
    AnalyseMpc(bytes);
    AnalyseOgg(bytes);

    Id3v1Fields v1;
    ReadId3v1(bytes, size % 2 == 0, v1);
    ApeTagFields ape;
    ReadApeTag(bytes, ape);
    Id3v2Fields v2;
    ReadId3v2(bytes, v2);

    QByteArray image = bytes;
    const BaseTag tags = RemoveBaseTag(image);
    SaveBaseTag(image, tags);
    if (image != bytes)
        std::abort();

    Lyrics3Tag lyrics;
    if (ReadLyrics3(bytes, false, lyrics)) {
        const QByteArray rewritten = ReplaceLyrics3(bytes, lyrics);
        // Lyrics that put "TAG" 128 bytes from the end make an ID3v1 tag there, as in any reader.
        const bool strayId3v1 = rewritten.size() >= 128 && rewritten.sliced(rewritten.size() - 128).startsWith("TAG")
                                && !(bytes.size() >= 128 && bytes.sliced(bytes.size() - 128).startsWith("TAG"));
        Lyrics3Tag again;
        if (!strayId3v1 && (!ReadLyrics3(rewritten, false, again) || again.Lyrics != lyrics.Lyrics))
            std::abort();
    }

    QString title, artist;
    MidiFileSeconds(bytes);
    ReadMidiTitle(bytes, false, title, artist);
    return 0;
}
