#include "core/SettingsStore.h"

#include <QSettings>
#include <QStringList>

QSettingsStore::QSettingsStore()
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                             QStringLiteral("Tonehaven"), QStringLiteral("Songweaver")))
{
}

QSettingsStore::QSettingsStore(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{
}

QSettingsStore::~QSettingsStore() = default;

QString QSettingsStore::RegReadString(const QString& key) const
{
    const QVariant value = m_settings->value(key);
    // A hand-edited file may hold an unquoted list or a bare number; read both as text.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(u',');
    if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::LongLong)
        return QString::number(static_cast<int16_t>(value.toLongLong() & 0xFFFF));
    QString text = value.toString();
    const qsizetype nul = text.indexOf(QChar(0));
    if (nul >= 0)
        text.truncate(nul);
    return text;
}

void QSettingsStore::RegWriteString(const QString& key, const QString& text)
{
    m_settings->setValue(key, text);
}

void QSettingsStore::Sync()
{
    m_settings->sync();
}

