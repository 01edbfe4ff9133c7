#include "core/Numbers.h"
#include "core/TextCodec.h"

#include <gtest/gtest.h>

TEST(Numbers, NumericValueReadsTheLeadingNumber)
{
    EXPECT_EQ(NumericValue(QStringLiteral("42")), 42);
    EXPECT_EQ(NumericValue(QStringLiteral("  -7")), -7);
    EXPECT_EQ(NumericValue(QStringLiteral("1 2 3")), 123) << "blanks inside are skipped";
    EXPECT_EQ(NumericValue(QStringLiteral("12abc")), 12);
    EXPECT_EQ(NumericValue(QStringLiteral("0.125")), 0.125);
    EXPECT_EQ(NumericValue(QStringLiteral(".5")), 0.5);
    EXPECT_EQ(NumericValue(QStringLiteral("1,5")), 1) << "a comma ends the number";
    EXPECT_EQ(NumericValue(QStringLiteral("2e3")), 2000);
    EXPECT_EQ(NumericValue(QStringLiteral("2e")), 2);
    EXPECT_EQ(NumericValue(QStringLiteral("&H1F")), 31);
    EXPECT_EQ(NumericValue(QStringLiteral("&o17")), 15);
    EXPECT_EQ(NumericValue(QStringLiteral("abc")), 0);
    EXPECT_EQ(NumericValue(QStringLiteral("-")), 0);
    EXPECT_EQ(NumericValue(QString()), 0);
    EXPECT_EQ(NumericValue(QStringLiteral("1e999")), 0) << "an overflow is no number";

    EXPECT_EQ(ToInt16(2.5), 2) << "half to even";
    EXPECT_EQ(ToInt16(3.5), 4);
    EXPECT_EQ(ToInt16(-40000), -32768);
    EXPECT_EQ(ToInt32(1e12), 2147483647);
}

TEST(Numbers, FormatTime)
{
    EXPECT_EQ(FormatTime(0), "00:00");
    EXPECT_EQ(FormatTime(59.999), "00:59") << "seconds are truncated";
    EXPECT_EQ(FormatTime(61), "01:01");
    EXPECT_EQ(FormatTime(6000), "100:00");
    EXPECT_EQ(FormatTime(-3.5), "00:00");
}

TEST(TextCodec, Utf8WhenValidElseTheLegacyCodePage)
{
    const QByteArray utf8 = QString::fromUtf8("Żółć ąę").toUtf8();
    EXPECT_EQ(DecodeText(utf8, false), QString::fromUtf8("Żółć ąę"));
    EXPECT_EQ(DecodeText("\xEF\xBB\xBFhej", true), "hej") << "a byte order mark is dropped";

    const QByteArray cp1250("\xAF\xF3\xB3\xE6 \xB9\xEA");  // "Żółć ąę" in Windows-1250
    EXPECT_EQ(DecodeText(cp1250, true), QString::fromUtf8("Żółć ąę"));
    EXPECT_EQ(DecodeText("caf\xE9 \x80", false), QString::fromUtf8("café €"));
    EXPECT_EQ(EncodeText(QString::fromUtf8("Żółć")), QString::fromUtf8("Żółć").toUtf8());
}
