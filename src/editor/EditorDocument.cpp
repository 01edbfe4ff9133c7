#include "editor/EditorDocument.h"

#include "lyrics/LyricTime.h"

#include <QRegularExpression>
#include <algorithm>

double CorrectionStep(int ticks)
{
    if (ticks < 10)
        return 0.001;
    if (ticks == 10)
        return 0.1;
    if (ticks < 20)
        return 0.01;
    return 0.1;
}

QString EditorDocument::TimeText(int row) const
{
    const double time = Entry(row).Time;
    return time == 0 ? QStringLiteral("0") : FormatLyricTime(time, 3, true);
}

void EditorDocument::Clear()
{
    Entries().assign(1, LyricItem{});
}

bool EditorDocument::Split(const QString& text, const Hyphenator* syllables)
{
    if (text.isEmpty())
        return false;
    LyricItem header = Entries().front();
    // A header whose colours were never set takes them, the alignment and the layout from the settings.
    if (header.ForeColor == 0 && header.HighlightColor == 0 && header.OutlineColor1 == 0 && header.OutlineColor2 == 0
        && header.OutlineColor3 == 0 && header.OutlineColor4 == 0 && header.BackColor == 0) {
        header.ForeColor = header.HighlightColor = header.BackColor = -1;
        header.OutlineColor1 = header.OutlineColor2 = header.OutlineColor3 = header.OutlineColor4 = -1;
        header.Alignment = header.Layout = -1;
    }
    // Rows the editor makes are the program's own timed syllables, lit one by one on the karaoke
    // window as they are tapped; other sources light whole lines.
    if (header.FormatName.isEmpty())
        header.FormatName = QStringLiteral("Songweaver (editor)");
    Entries().assign(1, header);
    static const QRegularExpression lineBreak(QStringLiteral("\r\n|\n|\r"));
    for (const QString& line : text.split(lineBreak)) {
        const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
        for (qsizetype w = 0; w < words.size(); ++w) {
            const QStringList parts = syllables ? syllables->Syllables(words[w]) : QStringList{words[w]};
            for (qsizetype p = 0; p < parts.size(); ++p) {
                LyricItem entry;
                const bool wordEnd = p == parts.size() - 1;
                entry.Text = wordEnd ? parts[p] + u' ' : parts[p];
                entry.LineEnd = wordEnd && w == words.size() - 1;
                Entries().push_back(entry);
            }
        }
    }
    RebuildLineTexts();
    return true;
}

QString EditorDocument::Merge() const
{
    QString text;
    for (int row = 1; row <= Count(); ++row) {
        const LyricItem& entry = Entry(row);
        if (entry.Text.isEmpty()) {
            text += QStringLiteral("\r\n");
            continue;
        }
        text += entry.Text;
        if (entry.LineEnd)
            text += QStringLiteral("\r\n");
    }
    return text;
}

void EditorDocument::Insert(int row)
{
    row = std::clamp(row, 1, Count() + 1);
    Entries().insert(Entries().begin() + row, LyricItem{});
    RebuildLineTexts();
}

int EditorDocument::AddNew()
{
    Entries().push_back(LyricItem{});
    return Count();
}

void EditorDocument::Delete(std::vector<int> rows)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    for (auto it = rows.rbegin(); it != rows.rend(); ++it)
        if (IsRow(*it))
            Entries().erase(Entries().begin() + *it);
    RebuildLineTexts();
}

void EditorDocument::Copy(const std::vector<int>& rows)
{
    m_copied.clear();
    std::vector<int> sorted = rows;
    std::sort(sorted.begin(), sorted.end());
    for (int row : sorted) {
        if (!IsRow(row))
            continue;
        LyricItem kept;
        kept.Text = Entry(row).Text;
        kept.LineEnd = Entry(row).LineEnd;
        m_copied.push_back(kept);
    }
}

bool EditorDocument::Paste(int row)
{
    if (m_copied.empty())
        return false;
    row = std::clamp(row, 1, Count() + 1);
    Entries().insert(Entries().begin() + row, m_copied.begin(), m_copied.end());
    RebuildLineTexts();
    return true;
}

void EditorDocument::Cut(const std::vector<int>& rows)
{
    Copy(rows);
    Delete(rows);
}

void EditorDocument::EditText(int row, const QString& text)
{
    if (!IsRow(row))
        return;
    Entries()[size_t(row)].Text = text;
    RebuildLineTexts();
}

void EditorDocument::SetBreak(int row, bool lineEnd)
{
    if (!IsRow(row))
        return;
    Entries()[size_t(row)].LineEnd = lineEnd;
    RebuildLineTexts();
}

void EditorDocument::SetTime(int row, double seconds)
{
    if (IsRow(row))
        Entries()[size_t(row)].Time = seconds;
}

void EditorDocument::SetLength(int row, double seconds)
{
    if (IsRow(row))
        Entries()[size_t(row)].Length = std::max(0.0, seconds);
}

void EditorDocument::Offset(const std::vector<int>& rows, double seconds)
{
    for (int row : rows)
        if (IsRow(row))
            Entries()[size_t(row)].Time += seconds;
}

void EditorDocument::RebuildLineTexts()
{
    QString line;
    int lineStart = 1;
    for (int row = 1; row <= Count(); ++row) {
        line += Entry(row).Text;
        if (!Entry(row).LineEnd)
            continue;
        for (int r = lineStart; r <= row; ++r)
            Entries()[size_t(r)].LineText = line;
        line.clear();
        lineStart = row + 1;
    }
    // The last syllable of a song ends no line but closes one all the same.
    for (int r = lineStart; r <= Count(); ++r)
        Entries()[size_t(r)].LineText = line;
}

void EditorDocument::MarkSaved()
{
    m_savedLyrics = m_lyrics.EditLyrics;
    m_savedPictures = m_lyrics.EditPictures;
}

bool EditorDocument::Modified() const
{
    return m_lyrics.EditLyrics != m_savedLyrics || m_lyrics.EditPictures != m_savedPictures;
}
