#pragma once
// The lyrics editor's document: the working arrays of the lyrics (entry i is row i of the
// editor's list, entry 0 the song's header) and the commands of the Edit and Karaoke menus on
// them. Showing an edit on the karaoke display is the caller's step: it copies the working
// arrays onto the display arrays while a song is open.

#include "editor/Syllables.h"
#include "lyrics/LyricsData.h"

#include <QString>
#include <vector>

// What a capture takes off the song's position: the singer's reaction, in the singer's seconds.
constexpr double kReactionSeconds = 0.25;

// The step of a held correction key at its `ticks`-th tick (the first is 1): thousandths to tick
// 9, one tenth once at tick 10, hundredths to tick 19, then tenths.
double CorrectionStep(int ticks);

class EditorDocument {
public:
    explicit EditorDocument(LyricsState& lyrics) : m_lyrics(lyrics) {}

    int Count() const { return int(Entries().size()) - 1; }
    // Rows are numbered from 1.
    const LyricItem& Entry(int row) const { return Entries()[size_t(row)]; }
    // The Time column: "0" for an entry without a time.
    QString TimeText(int row) const;

    // New and Remove all: the header alone, reset.
    void Clear();
    // One entry per word, a blank behind each, or with `syllables` one per syllable, the blank
    // behind a word's last; a line's last word ends it. False for no text.
    bool Split(const QString& text, const Hyphenator* syllables = nullptr);
    // The text that Split would make the entries again from.
    QString Merge() const;

    // An empty entry in front of `row`.
    void Insert(int row);
    // An empty entry behind the last; returns its row.
    int AddNew();
    // The given rows go, and the gaps close.
    void Delete(std::vector<int> rows);
    // Keeps the texts and line ends of the rows for Paste; nothing reaches the system clipboard.
    void Copy(const std::vector<int>& rows);
    // The copied entries, at time 0, in front of `row` (behind the last when past it).
    bool Paste(int row);
    void Cut(const std::vector<int>& rows);

    void EditText(int row, const QString& text);
    void SetBreak(int row, bool lineEnd);
    void SetTime(int row, double seconds);
    void SetLength(int row, double seconds);
    // Adds `seconds` to each of the rows' times.
    void Offset(const std::vector<int>& rows, double seconds);
    // Each line's text into every entry of the line, line by line up to the last break.
    void RebuildLineTexts();

    // The rows and pictures now are those saved or opened; Modified tells whether they changed
    // since.
    void MarkSaved();
    bool Modified() const;

private:
    std::vector<LyricItem>& Entries() { return m_lyrics.EditLyrics; }
    const std::vector<LyricItem>& Entries() const { return m_lyrics.EditLyrics; }
    bool IsRow(int row) const { return row >= 1 && row <= Count(); }

    LyricsState& m_lyrics;
    std::vector<LyricItem> m_copied;
    std::vector<LyricItem> m_savedLyrics{1};
    std::vector<PictureItem> m_savedPictures{1};
};
