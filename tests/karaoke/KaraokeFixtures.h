#pragma once
// Songs made of lines of timed syllables, a settings object, and a song clock a test moves.

#include "core/ThemeClass.h"
#include "karaoke/KaraokeTimeline.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QTemporaryDir>
#include <initializer_list>

// One syllable per word; each line's last syllable ends the line.
inline std::vector<LyricItem> Song(std::initializer_list<std::initializer_list<std::pair<double, const char*>>> lines)
{
    std::vector<LyricItem> lyrics(1);
    lyrics[0].FormatName = QStringLiteral("Songweaver (*LRS)");
    for (const auto& line : lines) {
        QString text;
        for (const auto& [time, word] : line)
            text += QString::fromUtf8(word);
        for (const auto& [time, word] : line) {
            LyricItem item;
            item.Time = time;
            item.Text = QString::fromUtf8(word);
            item.LineText = text;
            lyrics.push_back(item);
        }
        lyrics.back().LineEnd = true;
    }
    lyrics.back().LineEnd = false;
    return lyrics;
}

// Lines "L1", "L2", ... of one syllable each, a second apart from 1 s.
inline std::vector<LyricItem> NumberedLines(int count)
{
    std::vector<LyricItem> lyrics(1);
    lyrics[0].FormatName = QStringLiteral("Songweaver (*LRS)");
    for (int i = 1; i <= count; ++i) {
        LyricItem item;
        item.Time = i;
        item.Text = item.LineText = QStringLiteral("L%1").arg(i);
        item.LineEnd = i < count;
        lyrics.push_back(item);
    }
    return lyrics;
}

// A picture of one colour written into the folder.
inline QString SolidPicture(const QTemporaryDir& dir, const char* name, QSize size, const QColor& colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    const QString path = dir.filePath(QString::fromLatin1(name));
    image.save(path);
    return path;
}

class TestClock final : public SongClock {
public:
    bool HasSong() const override { return hasSong; }
    double Position() const override { return now; }
    bool hasSong = true;
    double now = 0;
};

struct TestTheme {
    MemoryStore store;
    std::vector<MonitorRecord> monitors;
    ThemeClass theme;
    TestTheme() : theme(store, Environment(), monitors) {}
    static ThemeEnvironment Environment()
    {
        ThemeEnvironment env;
        env.fontFamilies = {QStringLiteral("DejaVu Sans")};
        return env;
    }
};
