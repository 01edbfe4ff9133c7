#pragma once
// What the bytes of an audio file say about its stream, one reader per format: WAV, MPEG audio,
// Monkey's Audio, Musepack and Ogg Vorbis. Each reader says Valid only when the file is of its
// format; the order in which they are asked is the prober's business.

#include <QByteArrayView>
#include <QString>
#include <optional>
#include <cstdint>

struct WavFacts {
    bool Valid = false;
    int16_t Format = 0;  // the format tag of the "fmt " chunk; 1 is PCM
    QString Mode;
    int Channels = 0;
    int Rate = 0;
    int BytesPerSecond = 0;
    int Bits = 0;
    int HeaderSize = 0;  // bytes before the first sample
    int64_t Size = 0;
    double Seconds = 0;
};

struct MpegFacts {
    bool Valid = false;
    QString Text1;  // "MPEG 1.0", "MPEG 2.0", "MPEG 2.5"
    QString Text2;  // "Layer I", "Layer II", "Layer III"
    QString Mode;
    QString Emphasis;
    int Bitrate = 0;  // kbit/s; the average of a variable-rate stream
    int Rate = 0;
    int Frames = 0;
    int Seconds = 0;
    int64_t Size = 0;
    bool Crc = false;
    bool Copyright = false;
    bool Original = false;
    qsizetype FirstFrame = 0;  // offset of the first audio frame
};

struct ApeFacts {
    bool Valid = false;
    QString Version;  // "3.99"
    QString Mode;     // the compression level: "Fast" to "Insane"
    int Rate = 0;
    int Channels = 0;
    int Bits = 0;
    int Seconds = 0;
    int64_t Size = 0;
    double Ratio = 0;  // compressed size as a percentage of the PCM size
};

struct MpcFacts {
    bool Valid = false;
    QString Mode;
    int64_t Size = 0;
    int Frames = 0;
    int Bitrate = 0;
    int Seconds = 0;
    int Rate = 0;
    int16_t StreamVersion = 0;
    QString Profile;
};

struct OggFacts {
    bool Valid = false;
    int64_t Size = 0;
    int Rate = 0;
    int Nominal = 0;  // kbit/s as the encoder announced
    int Average = 0;  // kbit/s over the whole file
    QString Mode;
    QString Vendor;
    double Seconds = 0;
};

// Bytes taken by ID3v2 tags at the start of the file (several may follow each other).
qsizetype Id3v2Span(QByteArrayView bytes);
// Bytes taken by the first ID3v2 tag alone, 0 when there is none; nothing when its declared size
// runs past the end of the file, so nobody can tell where its audio starts.
std::optional<qsizetype> FirstId3v2Span(QByteArrayView bytes);

WavFacts AnalyseWav(QByteArrayView bytes);
MpegFacts AnalyseMpeg(QByteArrayView bytes);
ApeFacts AnalyseApe(QByteArrayView bytes);
MpcFacts AnalyseMpc(QByteArrayView bytes);
OggFacts AnalyseOgg(QByteArrayView bytes);

// "Mono", "Stereo" or "N channels".
QString ChannelModeName(int channels);
