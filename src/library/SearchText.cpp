#include "library/SearchText.h"

#include <QStringList>

namespace {

// Letters with a stroke or a ligature have no decomposition to strip an accent from.
QString PlainLetter(QChar c)
{
    switch (c.unicode()) {
    case 0x0141: case 0x0142: return QStringLiteral("l");   // Ł ł
    case 0x0110: case 0x0111: return QStringLiteral("d");   // Đ đ
    case 0x00D8: case 0x00F8: return QStringLiteral("o");   // Ø ø
    case 0x0126: case 0x0127: return QStringLiteral("h");   // Ħ ħ
    case 0x0131: return QStringLiteral("i");                 // ı
    case 0x00DF: return QStringLiteral("ss");                // ß
    case 0x00C6: case 0x00E6: return QStringLiteral("ae");  // Æ æ
    case 0x0152: case 0x0153: return QStringLiteral("oe");  // Œ œ
    case 0x00DE: case 0x00FE: return QStringLiteral("th");  // Þ þ
    default: return {};
    }
}

bool IsMark(QChar c)
{
    const QChar::Category category = c.category();
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining ||
           category == QChar::Mark_Enclosing;
}

} // namespace

QString FoldForSearch(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString folded;
    folded.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        if (IsMark(c))
            continue;
        const QString plain = PlainLetter(c);
        if (!plain.isEmpty())
            folded += plain;
        else
            folded += c.toLower();
    }
    return folded;
}

QString SearchExpression(const QString& query)
{
    const QString folded = FoldForSearch(query);
    QStringList terms;
    QString word;
    auto endWord = [&] {
        if (!word.isEmpty())
            terms << u'"' + word + QStringLiteral("\"*");
        word.clear();
    };
    for (const QChar c : folded) {
        if (terms.size() == kMostSearchWords)
            break;
        if (c.isLetterOrNumber())
            word += c;
        else
            endWord();
    }
    if (terms.size() < kMostSearchWords)
        endWord();
    return terms.join(u' ');
}
