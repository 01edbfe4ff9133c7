#include "print/PrintedPages.h"

#include <QAbstractTextDocumentLayout>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextDocument>

namespace {

constexpr int kMarginPoints = 10;

QFont MarginFont(QPagedPaintDevice& device)
{
    QFont font(QStringLiteral("Arial"));
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(9);
    return QFont(font, &device);
}

} // namespace

QString PageHeader(int page, int pages)
{
    return QStringLiteral("Strona %1 z %2").arg(page).arg(pages);
}

QString PageFooter()
{
    return QStringLiteral("Songweaver");
}

int PaintPages(const QString& html, QPagedPaintDevice& device)
{
    QTextDocument document;
    document.documentLayout()->setPaintDevice(&device);
    document.setHtml(html);

    const QFont marginFont = MarginFont(device);
    const qreal band = QFontMetricsF(marginFont, &device).height() + kMarginPoints * device.logicalDpiY() / 72.0;
    const QRectF sheet(0, 0, device.width(), device.height());
    const QRectF body(0, band, sheet.width(), std::max<qreal>(1, sheet.height() - 2 * band));
    document.setPageSize(body.size());
    const int pages = document.pageCount();

    QPainter painter(&device);
    if (!painter.isActive())
        return 0;
    for (int page = 0; page < pages; ++page) {
        if (page > 0)
            device.newPage();
        painter.save();
        painter.translate(body.left(), body.top() - page * body.height());
        document.drawContents(&painter, QRectF(0, page * body.height(), body.width(), body.height()));
        painter.restore();
        painter.setFont(marginFont);
        painter.setPen(Qt::black);
        painter.drawText(sheet, Qt::AlignRight | Qt::AlignTop, PageHeader(page + 1, pages));
        painter.drawText(sheet, Qt::AlignRight | Qt::AlignBottom, PageFooter());
    }
    return pages;
}

int WritePdf(const QString& html, const QString& path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return 0;
    int pages = 0;
    {
        QPdfWriter pdf(&file);
        pdf.setTitle(QFileInfo(path).completeBaseName());
        pdf.setCreator(PageFooter());
        pdf.setPageSize(QPageSize(QPageSize::A4));
        pdf.setPageMargins(QMarginsF(20, 15, 20, 15), QPageLayout::Millimeter);
        pages = PaintPages(html, pdf);
    }
    return pages > 0 && file.commit() ? pages : 0;
}
