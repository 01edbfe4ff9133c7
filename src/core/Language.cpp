#include "core/Language.h"

#include "core/SettingsStore.h"
#include "core/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace {
const QString kCrLf = QStringLiteral("\r\n");
}

void LanguageTable::LoadLanguage(const SettingsStore& store)
{
    LoadTable(store.RegReadString(QStringLiteral("language")) == QLatin1String("pl"));
}

void LanguageTable::LoadTable(bool polish)
{
    IsPolish = polish;
    QFile table(polish ? QStringLiteral(":/lang/polish.lng") : QStringLiteral(":/lang/english.lng"));
    LanguageText = table.open(QIODevice::ReadOnly) ? DecodeText(table.readAll(), polish) : QString();
}

QString LanguageTable::GetRawText(const QString& key) const
{
    const qsizetype found = LanguageText.indexOf(kCrLf + key + QStringLiteral("->"));
    if (found < 0)
        return {};
    const qsizetype lineStart = found + kCrLf.size();
    // A line with no line end behind it is cut to nothing, as the table's own lookup always did.
    const qsizetype lineEnd = LanguageText.indexOf(kCrLf, lineStart);
    if (lineEnd < 0)
        return {};
    const QString line = LanguageText.mid(lineStart, lineEnd - lineStart);
    return line.mid(line.indexOf(QStringLiteral("->")) + 2);
}

QStringList LanguageTable::Keys() const
{
    QStringList keys;
    for (const QString& line : LanguageText.split(kCrLf))
        if (line.contains(QStringLiteral("->")))
            keys << line.section(QStringLiteral("->"), 0, 0);
    return keys;
}

QString LanguageTable::GetText(const QString& key) const
{
    QString text = GetRawText(key).split(u'|').join(kCrLf);
    const qsizetype caret = text.indexOf(u'^');
    if (caret >= 0)
        text[caret] = u'&';
    return text;
}

QString DialogFilter(const QString& languageText, const QString& patterns)
{
    static const QRegularExpression ownPatterns(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
    QString description = languageText.section(u'|', 0, 0);
    description.remove(ownPatterns);
    QString allFiles = languageText.section(u'|', 2, 2);
    allFiles.remove(ownPatterns);
    if (allFiles.trimmed().isEmpty())
        allFiles = QStringLiteral("All files");
    const QString list = u'(' + patterns.split(u';', Qt::SkipEmptyParts).join(u' ') + u')';
    return (description.trimmed() + u' ' + list).trimmed() + QStringLiteral(";;") + allFiles.trimmed() +
           QStringLiteral(" (*)");
}

QString MessageNamingFile(const QString& text, const QString& path)
{
    return text + kCrLf + QDir::toNativeSeparators(path);
}
