#include "ui/remote/RemoteWindow.h"

#include "core/Language.h"
#include "core/WindowPosition.h"
#include "remote/QrCode.h"
#include "remote/RemoteShared.h"
#include "ui/kit/Palette.h"

#include <QLabel>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kModulePixels = 6;

} // namespace

RemoteWindow::RemoteWindow(const LanguageTable& language, RemoteShared& shared, SettingsStore& store, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_language(language),
      m_shared(shared),
      m_store(store),
      m_status(new QLabel),
      m_code(new QLabel),
      m_guests(new QListWidget),
      m_block(new QPushButton(Text("RemoteBlock")))
{
    setObjectName(QStringLiteral("RemoteWindow"));
    setPalette(ControlsPalette());
    setAutoFillBackground(true);
    setWindowTitle(Text("RemoteTitle"));
    m_status->setWordWrap(true);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_code->setAlignment(Qt::AlignCenter);
    m_guests->setObjectName(QStringLiteral("RemoteGuests"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_status);
    column->addWidget(m_code);
    column->addWidget(new QLabel(Text("RemoteGuests")));
    column->addWidget(m_guests, 1);
    column->addWidget(m_block);
    connect(m_guests, &QListWidget::currentRowChanged, this, [this] {
        const QListWidgetItem* item = m_guests->currentItem();
        m_block->setEnabled(item && !item->data(Qt::UserRole + 1).toBool());
    });
    connect(m_block, &QPushButton::clicked, this, [this] {
        if (const QListWidgetItem* item = m_guests->currentItem(); item && BlockGuest)
            BlockGuest(item->data(Qt::UserRole).toString());
        RefreshGuests();
    });
    m_block->setEnabled(false);
    resize(340, 520);
}

void RemoteWindow::hideEvent(QHideEvent* event)
{
    WriteWindowPosition(m_store, QLatin1String(kPlaceKey), geometry());
    QWidget::hideEvent(event);
}

QString RemoteWindow::Text(const char* key) const
{
    return m_language.GetText(QLatin1String(key));
}

void RemoteWindow::ShowState(const QString& address, const QString& pin, const QString& failure)
{
    if (!failure.isEmpty())
        m_status->setText(Text("RemoteFailed").arg(failure));
    else if (address.isEmpty())
        m_status->setText(Text("RemoteOff"));
    else
        m_status->setText(Text("RemoteAddress").arg(address, pin));
    const QImage code = address.isEmpty() ? QImage() : QrCodeImage(address, kModulePixels);
    m_code->setPixmap(code.isNull() ? QPixmap() : QPixmap::fromImage(code));
    m_code->setVisible(!code.isNull());
}

void RemoteWindow::RefreshGuests()
{
    const QString selected = m_guests->currentItem() ? m_guests->currentItem()->data(Qt::UserRole).toString() : QString();
    m_guests->clear();
    for (const GuestSummary& guest : m_shared.Guests()) {
        QString line = QStringLiteral("%1 (%2)").arg(guest.name, guest.address);
        if (guest.blocked)
            line += u' ' + Text("RemoteBlocked");
        auto* item = new QListWidgetItem(line, m_guests);
        item->setData(Qt::UserRole, guest.id);
        item->setData(Qt::UserRole + 1, guest.blocked);
        if (guest.id == selected)
            m_guests->setCurrentItem(item);
    }
}
