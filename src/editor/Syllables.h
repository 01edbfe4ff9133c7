#pragma once
// Words split into their syllables by the hyphenation dictionaries the system installs
// (libhyphen's `hyph_*.dic` files, as office suites use them), for timing syllable by syllable.

#include <QString>
#include <QStringList>
#include <memory>

// The languages with a dictionary installed, by their short code ("en", "pl"), sorted.
QStringList HyphenationLanguages();
// The lyrics' language to start from: the interface's, else English.
QString DefaultLyricsLanguage(bool polishInterface);

class Hyphenator {
public:
    // The dictionary of `language` ("en", "pl", "de_CH" ...); Loaded() tells whether one was found.
    explicit Hyphenator(const QString& language);
    ~Hyphenator();
    Hyphenator(const Hyphenator&) = delete;
    Hyphenator& operator=(const Hyphenator&) = delete;

    bool Loaded() const { return m_dictionary != nullptr; }
    // The word's syllables, which joined give the word back; punctuation stays with its syllable.
    // Without a dictionary, or for a word the dictionary does not break, the word whole.
    QStringList Syllables(const QString& word) const;

private:
    QStringList SyllablesOfPart(const QString& word) const;

    struct Dictionary;
    std::unique_ptr<Dictionary> m_dictionary;
};
