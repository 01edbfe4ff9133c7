#include "editor/Syllables.h"

#include <QDir>
#include <QFile>
#include <QStringDecoder>
#include <QStringEncoder>
#include <algorithm>
#include <hyphen.h>
#include <vector>

namespace {

// Where Debian's hyphen-* packages put their dictionaries; SONGWEAVER_HYPHEN_DIR names another.
QString DictionaryFolder()
{
    const QString chosen = qEnvironmentVariable("SONGWEAVER_HYPHEN_DIR");
    return chosen.isEmpty() ? QStringLiteral("/usr/share/hyphen") : chosen;
}

// "hyph_pl_PL.dic" gives "pl"; "hyph_en_US.dic" and "hyph_en.dic" give "en".
QString LanguageOfFile(const QString& fileName)
{
    QString code = fileName.mid(5);
    code.chop(4);
    return code.section(u'_', 0, 0).toLower();
}

// Longer words are no words of a song: they are left whole.
constexpr qsizetype kLongestWord = 100;

} // namespace

QStringList HyphenationLanguages()
{
    QStringList languages;
    for (const QString& file : QDir(DictionaryFolder()).entryList({QStringLiteral("hyph_*.dic")}, QDir::Files))
        if (const QString code = LanguageOfFile(file); !code.isEmpty() && !languages.contains(code))
            languages << code;
    languages.sort();
    return languages;
}

QString DefaultLyricsLanguage(bool polishInterface)
{
    return polishInterface ? QStringLiteral("pl") : QStringLiteral("en");
}

struct Hyphenator::Dictionary {
    HyphenDict* dict = nullptr;
    QByteArray charset;
    ~Dictionary() { hnj_hyphen_free(dict); }
};

Hyphenator::Hyphenator(const QString& language)
{
    // The country's own file first (hyph_en_US.dic), then the language's (hyph_en.dic).
    QStringList files = QDir(DictionaryFolder()).entryList({QStringLiteral("hyph_*.dic")}, QDir::Files, QDir::Name);
    files.erase(std::remove_if(files.begin(), files.end(),
                               [&](const QString& f) { return LanguageOfFile(f) != language.section(u'_', 0, 0).toLower(); }),
                files.end());
    std::stable_sort(files.begin(), files.end(), [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (const QString& file : files) {
        const QString path = QDir(DictionaryFolder()).filePath(file);
        if (HyphenDict* dict = hnj_hyphen_load(QFile::encodeName(path).constData())) {
            m_dictionary = std::make_unique<Dictionary>();
            m_dictionary->dict = dict;
            m_dictionary->charset = QByteArray(dict->cset).trimmed();
            return;
        }
    }
}

Hyphenator::~Hyphenator() = default;

QStringList Hyphenator::Syllables(const QString& word) const
{
    // A word joined by hyphens breaks after each of them first, each part by the dictionary.
    if (const qsizetype hyphen = word.indexOf(u'-', 1); hyphen > 0 && hyphen + 1 < word.size())
        return SyllablesOfPart(word.left(hyphen + 1)) + Syllables(word.mid(hyphen + 1));
    return SyllablesOfPart(word);
}

QStringList Hyphenator::SyllablesOfPart(const QString& word) const
{
    // Only the letters are hyphenated: what stands before and behind them stays with the first
    // and the last syllable.
    qsizetype first = 0, last = word.size();
    while (first < last && !word[first].isLetter())
        ++first;
    while (last > first && !word[last - 1].isLetter())
        --last;
    const QString letters = word.mid(first, last - first);
    if (!m_dictionary || letters.size() < 2 || letters.size() > kLongestWord)
        return {word};

    const bool utf8 = m_dictionary->charset.compare("UTF-8", Qt::CaseInsensitive) == 0;
    QStringEncoder encoder(utf8 ? QByteArray("UTF-8") : m_dictionary->charset);
    if (!encoder.isValid())
        return {word};
    // One byte per letter for a one-byte charset; for UTF-8 the byte where each letter starts.
    const QString lower = letters.toLower();
    if (lower.size() != letters.size())
        return {word};
    const QByteArray bytes = encoder(lower);
    if (encoder.hasError())
        return {word};
    std::vector<qsizetype> letterOfByte(size_t(bytes.size()), -1);
    for (qsizetype b = 0, l = 0; b < bytes.size(); ++b)
        if (!utf8 || (uchar(bytes[b]) & 0xC0) != 0x80)
            letterOfByte[size_t(b)] = l++;

    std::vector<char> hyphens(size_t(bytes.size()) + 5, '\0');
    char** rep = nullptr;
    int* pos = nullptr;
    int* cut = nullptr;
    const int failed = hnj_hyphen_hyphenate3(m_dictionary->dict, bytes.constData(), int(bytes.size()), hyphens.data(),
                                             nullptr, &rep, &pos, &cut, 1, 1, 1, 1);
    if (rep) {
        for (qsizetype i = 0; i < bytes.size(); ++i)
            free(rep[i]);
        free(rep);
    }
    free(pos);
    free(cut);
    if (failed)
        return {word};

    // A break after byte b falls before the letter the next byte starts.
    QStringList syllables;
    qsizetype from = 0;
    for (qsizetype b = 0; b + 1 < bytes.size(); ++b) {
        const qsizetype next = letterOfByte[size_t(b + 1)];
        if ((hyphens[size_t(b)] & 1) && next > 0) {
            syllables << letters.mid(from, next - from);
            from = next;
        }
    }
    syllables << letters.mid(from);
    syllables.first().prepend(word.left(first));
    syllables.last().append(word.mid(last));
    return syllables;
}
