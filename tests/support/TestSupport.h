#pragma once
// Shared pieces of the tests: an in-memory settings store that counts its writes, and a
// journal that fake windows and services write their calls to.

#include "core/SettingsStore.h"

#include <QByteArray>
#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>
#include <initializer_list>
#include <ostream>

class MemoryStore final : public SettingsStore {
public:
    QString RegReadString(const QString& key) const override { return values.value(key); }
    void RegWriteString(const QString& key, const QString& text) override
    {
        values[key] = text;
        writes << key;
    }

    QMap<QString, QString> values;
    QStringList writes;  // every write, in order
};

// Calls in the order they happened, as "Who.What".
struct Journal {
    QStringList calls;
    void operator()(const QString& call) { calls << call; }
    qsizetype IndexOf(const QString& call) const { return calls.indexOf(call); }
};

QByteArray ReadFileBytes(const QString& path);
void WriteFileBytes(const QString& path, const QByteArray& bytes);

// A 16-bit PCM WAV whose sample values tell their frame: left = frame % 32768, right = its
// negative, so any frame the engine delivers can be checked. Returns the path.
QString WriteRampWav(const QString& path, int frames, int sampleRate = 48000);
// The left sample of frame `frame` of that file, as float audio.
float RampSample(long long frame);

// A CD+G packet of the graphics command: the instruction and the first of its 16 data bytes.
QByteArray CdgPacket(int instruction, std::initializer_list<int> data);

// A zip file of the members (name, bytes), stored without compression so a test can find and
// damage a member's bytes in the file.
void WriteZip(const QString& path, const QList<QPair<QString, QByteArray>>& members);

// Runs a program of the system (ffmpeg, say) to its end; false when it failed or is missing.
bool RunProgram(const QString& program, const QStringList& arguments);
// A test video made by ffmpeg: its test picture (a frame counter that moves) in H.264 with a
// 440 Hz tone in AAC, `seconds` long at 25 frames a second. Returns the path.
QString MakeTestVideo(const QString& path, double seconds, QSize size = QSize(320, 240));

// A file of the source tree, by its path from the top.
QString SourcePath(const QString& relative);
// A committed fixture made by tests/fixtures/make-fixtures.
QString MediaFixture(const QString& name);
// The shared fixtures beside the checkout (Monkey's Audio, Musepack SV7, damaged files); empty
// when that folder is absent, and the test skips.
QString SharedFixture(const QString& name);
// A copy of a fixture in `dir` that a test may change.
QString CopyFixture(const QString& fixture, const QString& dir, const QString& name = {});

// Readable QStrings in failure messages.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
