#pragma once
// Where settings and window positions live: text values under one key per name.

#include <QString>
#include <memory>

class QSettings;

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    // The text of a value, empty when there is none.
    virtual QString RegReadString(const QString& key) const = 0;
    virtual void RegWriteString(const QString& key, const QString& text) = 0;
    // Puts written values on disk.
    virtual void Sync() {}
};

// The user's store: QSettings of organisation "Tonehaven", application "Songweaver",
// or an INI file given by path (tools and tests).
class QSettingsStore final : public SettingsStore {
public:
    QSettingsStore();
    explicit QSettingsStore(const QString& iniPath);
    ~QSettingsStore() override;

    QString RegReadString(const QString& key) const override;
    void RegWriteString(const QString& key, const QString& text) override;
    void Sync() override;

private:
    std::unique_ptr<QSettings> m_settings;
};
