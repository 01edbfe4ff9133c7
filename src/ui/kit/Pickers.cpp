#include "ui/kit/Pickers.h"

#include "core/Colors.h"
#include "karaoke/Transitions.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSlider>
#include <QToolButton>
#include <algorithm>
#include <utility>

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

// ---- EffectPicker --------------------------------------------------------------------------------

namespace {

constexpr int kSlowest = 1;
constexpr int kFastest = 10;

} // namespace

EffectPicker::EffectPicker(const Texts& texts, QWidget* parent)
    : QWidget(parent), m_noDetails(texts.noDetails), m_effect(new QComboBox), m_detail(new QComboBox),
      m_speed(new QSlider(Qt::Horizontal)), m_speedValue(new QLabel)
{
    m_effect->setObjectName(QStringLiteral("Effect"));
    m_effect->addItem(texts.noEffect, QString());
    for (const EffectRow& row : EffectTable())
        m_effect->addItem(row.Name, row.Name);
    m_detail->setObjectName(QStringLiteral("Detail"));
    m_speed->setObjectName(QStringLiteral("Speed"));
    m_speed->setRange(kSlowest, kFastest);
    m_speed->setPageStep(1);
    m_speed->setTickPosition(QSlider::TicksBelow);
    m_speedValue->setMinimumWidth(24);

    auto* speedRow = new QHBoxLayout;
    speedRow->addWidget(m_speed, 1);
    speedRow->addWidget(m_speedValue);
    auto* form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(texts.effect, m_effect);
    form->addRow(texts.detail, m_detail);
    form->addRow(texts.speed, speedRow);

    const auto changed = [this] {
        if (!m_showing)
            emit Changed();
    };
    connect(m_effect, &QComboBox::currentIndexChanged, this, [this, changed] {
        if (m_showing)
            return;
        ShowDetails(QString());
        changed();
    });
    connect(m_detail, &QComboBox::currentIndexChanged, this, changed);
    connect(m_speed, &QSlider::valueChanged, this, [this, changed](int value) {
        m_speedValue->setNum(value);
        changed();
    });
    ShowDetails(QString());
    m_speedValue->setNum(m_speed->value());
}

void EffectPicker::SetChoice(const QString& effect, const QString& detail, int speed)
{
    m_showing = true;
    m_effect->setCurrentIndex(std::max(0, m_effect->findData(effect)));
    ShowDetails(detail);
    m_speed->setValue(std::clamp(speed, kSlowest, kFastest));
    m_speedValue->setNum(m_speed->value());
    m_showing = false;
}

void EffectPicker::ShowDetails(const QString& chosen)
{
    const bool showing = std::exchange(m_showing, true);
    m_detail->clear();
    const auto effect = FindEffect(EffectName(), chosen);
    m_detail->setEnabled(effect.has_value());
    m_speed->setEnabled(effect.has_value());
    if (effect) {
        m_detail->addItems(effect->Table().Details);
        m_detail->setCurrentIndex(effect->Detail);
    } else {
        m_detail->addItem(m_noDetails);
    }
    m_showing = showing;
}

QString EffectPicker::EffectName() const
{
    return m_effect->currentData().toString();
}

QString EffectPicker::Detail() const
{
    return m_detail->isEnabled() ? m_detail->currentText() : QString();
}

int EffectPicker::Speed() const
{
    return m_speed->value();
}
