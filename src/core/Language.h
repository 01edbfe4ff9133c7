#pragma once
// The language table: every text the user sees, looked up by key in "Key->Text" lines.

#include <QString>
#include <QStringList>

class SettingsStore;

class LanguageTable {
public:
    // The whole table as loaded, CR LF line ends, beginning with an empty line.
    QString LanguageText;
    bool IsPolish = false;

    // Chooses the table by the stored "language" value: exactly "pl" is Polish.
    void LoadLanguage(const SettingsStore& store);
    // Loads the built-in English or Polish table.
    void LoadTable(bool polish);
    // The text after "->" on the first line that begins with key + "->"; empty when none.
    QString GetRawText(const QString& key) const;
    // The display form: "|" breaks the line (CR LF), the first "^" becomes the "&" accelerator.
    QString GetText(const QString& key) const;
    // The key of every "Key->Text" row, in table order, repeats included.
    QStringList Keys() const;
};

// A file dialog's filter: the description that a language text holds (up to any "|", without
// its own pattern list) with the command's patterns ("*.lrs", "*.mp3;*.ogg;"), then the
// language's "All files" entry, as Qt lists them.
QString DialogFilter(const QString& languageText, const QString& patterns);

// A message that names a file on a line of its own under the text, as the desktop shows paths.
QString MessageNamingFile(const QString& text, const QString& path);
