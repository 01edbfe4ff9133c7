#include "ui/kit/Pickers.h"

#include "core/Colors.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>

QIcon Swatch(const QColor& colour)
{
    QPixmap pixmap(kSwatchSize * 2);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 0, 0, 140), 1));
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(0.5, 0.5, kSwatchSize.width() - 1, kSwatchSize.height() - 1), 3, 3);
    return QIcon(pixmap);
}

ColorButton::ColorButton(Picker picker, const QString& text, QWidget* parent)
    : QPushButton(text, parent), m_picker(std::move(picker))
{
    setIconSize(kSwatchSize);
    setCursor(Qt::PointingHandCursor);
    SetWin32(0);
    connect(this, &QPushButton::clicked, this, [this] {
        if (const auto colour = m_picker(ColorFromWin32(m_colour))) {
            SetWin32(Win32FromColor(*colour));
            emit Changed(m_colour);
        }
    });
}

void ColorButton::SetWin32(int32_t colour)
{
    m_colour = colour;
    setIcon(Swatch(ColorFromWin32(colour)));
}

FontButton::FontButton(Picker picker, QWidget* parent) : QPushButton(parent), m_picker(std::move(picker))
{
    setCursor(Qt::PointingHandCursor);
    connect(this, &QPushButton::clicked, this, [this] {
        if (const auto font = m_picker(m_font)) {
            SetFont(*font);
            emit Changed(m_font);
        }
    });
}

void FontButton::SetFont(const QFont& font)
{
    m_font = font;
    QStringList styles;
    if (font.bold())
        styles << tr("bold");
    if (font.italic())
        styles << tr("italic");
    const QString size = QString::number(font.pointSize()) + QStringLiteral(" pt");
    setText(QStringList{font.family(), size}.join(QStringLiteral(", ")) +
            (styles.isEmpty() ? QString() : QStringLiteral(", ") + styles.join(QStringLiteral(", "))));
    QFont shown = font;
    shown.setPointSizeF(QWidget::font().pointSizeF());
    setFont(shown);
}

PathPicker::PathPicker(Picker picker, QWidget* parent)
    : QWidget(parent), m_picker(std::move(picker)), m_edit(new QLineEdit)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    auto* browse = new QToolButton;
    browse->setText(QStringLiteral("…"));
    browse->setObjectName(QStringLiteral("Browse"));
    layout->addWidget(m_edit, 1);
    layout->addWidget(browse);
    connect(browse, &QToolButton::clicked, this, [this] {
        const QString chosen = m_picker(Path());
        if (!chosen.isEmpty()) {
            SetPath(chosen);
            emit Changed(chosen);
        }
    });
    connect(m_edit, &QLineEdit::editingFinished, this, [this] { emit Changed(Path()); });
}

QString PathPicker::Path() const
{
    return m_edit->text().trimmed();
}

void PathPicker::SetPath(const QString& path)
{
    m_edit->setText(path);
}
