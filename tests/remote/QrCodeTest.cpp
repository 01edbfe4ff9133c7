// The QR code a phone's camera reads: a reader gives back the address it was made of.

#include "remote/QrCode.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(QrCode, AReaderGetsBackTheAddress)
{
    QTemporaryDir dir;
    for (const QString& address : {QStringLiteral("http://192.168.1.20:8777/"), QStringLiteral("http://10.0.0.5:65535/")}) {
        const QImage code = QrCodeImage(address, 3);
        ASSERT_FALSE(code.isNull());
        EXPECT_EQ(code.width(), code.height());
        const QString file = dir.filePath("code.png");
        ASSERT_TRUE(code.save(file));
        QProcess reader;
        reader.start(QStringLiteral("zbarimg"), {QStringLiteral("--raw"), QStringLiteral("-q"), file});
        ASSERT_TRUE(reader.waitForFinished(20000)) << "zbarimg (zbar-tools) reads QR codes";
        EXPECT_EQ(QString::fromUtf8(reader.readAllStandardOutput()).trimmed(), address);
    }
    EXPECT_TRUE(QrCodeImage(QStringLiteral("x"), 0).isNull()) << "no picture without a module size";
}
