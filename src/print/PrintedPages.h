#pragma once
// The printed page of the lyrics laid out on paper, a PDF file or a preview: the page's text
// flowed over as many sheets as it needs, with "Strona N z M" at the top and "Songweaver" at
// the bottom of each, both on the right, in every language.

#include <QString>

class QPagedPaintDevice;

QString PageHeader(int page, int pages);
QString PageFooter();

// Paints the page on the device's sheets; the number of sheets.
int PaintPages(const QString& html, QPagedPaintDevice& device);

// The page as a PDF file of A4 sheets; the number of sheets, 0 when the file cannot be written.
int WritePdf(const QString& html, const QString& path);
