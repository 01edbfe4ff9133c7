#pragma once
// The guests' phones: the page's address and PIN with a QR code to scan, the guests who joined,
// and blocking one of them.

#include <QWidget>
#include <functional>

class LanguageTable;
class QLabel;
class QListWidget;
class QPushButton;
class RemoteShared;
class SettingsStore;

class RemoteWindow final : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kPlaceKey = "remote position";

    RemoteWindow(const LanguageTable& language, RemoteShared& shared, SettingsStore& store, QWidget* parent = nullptr);

    // The page's address when it listens, else empty, with why it does not when it failed.
    void ShowState(const QString& address, const QString& pin, const QString& failure);
    // The guests as the server knows them now.
    void RefreshGuests();

    std::function<void(const QString& guestId)> BlockGuest;

    QLabel& Status() { return *m_status; }
    QLabel& Code() { return *m_code; }
    QListWidget& Guests() { return *m_guests; }

protected:
    // Where it was is kept for the next time it opens.
    void hideEvent(QHideEvent* event) override;

private:
    QString Text(const char* key) const;

    const LanguageTable& m_language;
    RemoteShared& m_shared;
    SettingsStore& m_store;
    QLabel* m_status;
    QLabel* m_code;
    QListWidget* m_guests;
    QPushButton* m_block;
};
