// The printed pages as a PDF, read back as text by pdftotext.

#include "print/PrintedPages.h"

#include "lyrics/LyricsData.h"
#include "print/LyricsDocument.h"
#include "print/PrintSettings.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

std::vector<LyricItem> Lines(const QString& title, int count)
{
    std::vector<LyricItem> lyrics(1);
    lyrics[0].Title = title;
    for (int i = 1; i <= count; ++i) {
        LyricItem item;
        item.Text = item.LineText = QStringLiteral("Line number %1 of the song").arg(i);
        item.LineEnd = i < count;
        lyrics.push_back(item);
    }
    return lyrics;
}

QString PdfText(const QString& pdf)
{
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (tool.isEmpty())
        return QStringLiteral("pdftotext is missing: run scripts/bootstrap");
    QProcess process;
    process.start(tool, {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    process.waitForFinished(30000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

TEST(PrintedPages, APdfShowsTheLyricsTheHeaderAndTheFooter)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("song.pdf"));
    ASSERT_EQ(WritePdf(BuildDocument(Lines(QStringLiteral("Zażółć"), 3), PrintSettings{}), pdf), 1);

    const QString text = PdfText(pdf);
    EXPECT_TRUE(text.contains("Zażółć")) << text.toStdString();
    for (int i = 1; i <= 3; ++i)
        EXPECT_TRUE(text.contains(QStringLiteral("Line number %1 of the song").arg(i))) << text.toStdString();
    EXPECT_TRUE(text.contains("Strona 1 z 1")) << text.toStdString();
    EXPECT_TRUE(text.contains("Songweaver")) << text.toStdString();
    EXPECT_LT(text.indexOf("Strona 1 z 1"), text.indexOf("Line number 1")) << "the header is above the lyrics";
    EXPECT_GT(text.lastIndexOf("Songweaver"), text.indexOf("Line number 3")) << "the footer is below them";
}

TEST(PrintedPages, ALongSongFlowsOverSheetsEachNumbered)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("long.pdf"));
    const int pages = WritePdf(BuildDocument(Lines(QStringLiteral("Long"), 120), PrintSettings{}), pdf);
    ASSERT_GE(pages, 2);

    const QString text = PdfText(pdf);
    EXPECT_EQ(text.count(QStringLiteral("Songweaver")), pages) << text.toStdString();
    for (int page = 1; page <= pages; ++page)
        EXPECT_TRUE(text.contains(PageHeader(page, pages))) << PageHeader(page, pages).toStdString();
    EXPECT_TRUE(text.contains("Line number 1 of the song"));
    EXPECT_TRUE(text.contains("Line number 120 of the song")) << "no line lost at a sheet's end";
}

TEST(PrintedPages, AnUnwritableFileIsNoPdf)
{
    EXPECT_EQ(WritePdf(QStringLiteral("<p>x</p>"), QStringLiteral("/nonexistent-folder/x.pdf")), 0);
}
