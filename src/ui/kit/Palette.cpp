#include "ui/kit/Palette.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPalette>

void PaintWindowBody(QPainter& painter, const QRectF& rect)
{
    QLinearGradient body(rect.topLeft(), rect.bottomLeft());
    body.setColorAt(0, Palette::BodyTop);
    body.setColorAt(1, Palette::BodyBottom);
    painter.setBrush(body);
    painter.setPen(QPen(Palette::Edge, 1));
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), 12, 12);
}

void PaintCaption(QPainter& painter, const QRectF& box, const QString& text)
{
    QFont caption = painter.font();
    caption.setPixelSize(9);
    caption.setBold(true);
    caption.setLetterSpacing(QFont::AbsoluteSpacing, 2);
    painter.setFont(caption);
    painter.setPen(Palette::CaptionText);
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, text.toUpper());
}

void PaintCloseButton(QPainter& painter, QPointF centre)
{
    painter.setBrush(QColor(0x5a, 0x2a, 0x44));
    painter.setPen(QColor(0xa0, 0x4f, 0x74));
    painter.drawEllipse(centre, 6, 6);
    painter.setPen(QPen(QColor(0xff, 0xd6, 0xe4), 1.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre + QPointF(-2.4, -2.4), centre + QPointF(2.4, 2.4));
    painter.drawLine(centre + QPointF(2.4, -2.4), centre + QPointF(-2.4, 2.4));
}

void PaintWell(QPainter& painter, const QRectF& rect, qreal radius)
{
    painter.setBrush(Palette::Well);
    painter.setPen(Palette::WellEdge);
    painter.drawRoundedRect(rect, radius, radius);
}

void PaintButtonFace(QPainter& painter, const QRectF& rect, qreal radius, bool hover)
{
    QLinearGradient face(rect.topLeft(), rect.bottomLeft());
    face.setColorAt(0, hover ? Palette::HoverTop : Palette::FaceTop);
    face.setColorAt(1, hover ? Palette::HoverBottom : Palette::FaceBottom);
    painter.setBrush(face);
    painter.setPen(hover ? QColor(0x8f, 0xa3, 0xf2) : Palette::Edge);
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

QPalette ControlsPalette()
{
    QPalette palette;
    const QColor text(0xe4, 0xe9, 0xff);
    const QColor muted(0x7c, 0x86, 0xb4);
    palette.setColor(QPalette::Window, QColor(0x1b, 0x22, 0x47));
    palette.setColor(QPalette::WindowText, Palette::ButtonText);
    palette.setColor(QPalette::Base, Palette::Well);
    palette.setColor(QPalette::AlternateBase, QColor(0x13, 0x19, 0x38));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, Palette::FaceTop);
    palette.setColor(QPalette::ButtonText, Palette::ButtonText);
    palette.setColor(QPalette::Highlight, QColor(0x4a, 0x5c, 0xc0));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, Palette::FaceBottom);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, muted);
    palette.setColor(QPalette::Light, Palette::HoverTop);
    palette.setColor(QPalette::Midlight, Palette::Edge);
    palette.setColor(QPalette::Mid, Palette::WellEdge);
    palette.setColor(QPalette::Dark, Palette::BodyBottom);
    palette.setColor(QPalette::Shadow, QColor(0x05, 0x07, 0x12));
    palette.setColor(QPalette::BrightText, Palette::LitAmber);
    palette.setColor(QPalette::Link, Palette::LitBlue);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, muted);
    return palette;
}
