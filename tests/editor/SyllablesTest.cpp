// Words split into syllables by the system's hyphenation dictionaries, in English and Polish,
// and the editor's syllable split: a syllable a row, the blank behind a word's last.

#include "editor/EditorDocument.h"
#include "editor/Syllables.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QStringList Split(const Hyphenator& hyphenator, const QString& line)
{
    QStringList parts;
    for (const QString& word : line.split(u' ', Qt::SkipEmptyParts))
        parts << hyphenator.Syllables(word).join(u'-');
    return parts;
}

} // namespace

TEST(Syllables, EnglishAndPolishLinesSplitAsTheirDictionariesSay)
{
    EXPECT_TRUE(HyphenationLanguages().contains("en"));
    EXPECT_TRUE(HyphenationLanguages().contains("pl"));

    const Hyphenator english("en");
    ASSERT_TRUE(english.Loaded());
    EXPECT_EQ(Split(english, "Amazing grace, how sweet the sound"),
              (QStringList{"Amaz-ing", "grace,", "how", "sweet", "the", "sound"}));
    EXPECT_EQ(Split(english, "Wonderful beautiful everybody remember yesterday"),
              (QStringList{"Won-der-ful", "beau-ti-ful", "ev-ery-body", "re-mem-ber", "yes-ter-day"}))
        << "letters keep their case";
    EXPECT_EQ(Split(english, "singing tonight"), (QStringList{"singing", "tonight"})) << "where the dictionary has no break";

    const Hyphenator polish("pl");
    ASSERT_TRUE(polish.Loaded());
    EXPECT_EQ(Split(polish, "Śpiewamy piosenkę, źdźbło trawy"),
              (QStringList{"Śpie-wa-my", "pio-sen-kę,", "źdźbło", "tra-wy"}));
    EXPECT_EQ(Split(polish, "Szczęśliwego \"Nowego\" roku! Wlazł kotek na płotek"),
              (QStringList{"Szczę-śli-we-go", "\"No-we-go\"", "ro-ku!", "Wlazł", "ko-tek", "na", "pło-tek"}))
        << "marks before and behind a word stay with its syllables";
    EXPECT_EQ(english.Syllables("well-remembered"), (QStringList{"well-", "re", "mem", "bered"}))
        << "a hyphen breaks first";
}

TEST(Syllables, AWordIsLeftWholeWhenNoDictionaryOrNoBreakFits)
{
    const Hyphenator klingon("tlh");
    EXPECT_FALSE(klingon.Loaded());
    EXPECT_EQ(klingon.Syllables("Qapla'"), QStringList{"Qapla'"});

    const Hyphenator english("en_US");
    ASSERT_TRUE(english.Loaded()) << "a country's code finds its language";
    for (const QString& word : {QString(), QStringLiteral("..."), QStringLiteral("a"), QStringLiteral("42"),
                                QString(500, u'x'), QStringLiteral("日本語")})
        EXPECT_EQ(english.Syllables(word), QStringList{word}) << word.toStdString();

    QTemporaryDir empty;
    qputenv("SONGWEAVER_HYPHEN_DIR", empty.path().toUtf8());
    EXPECT_TRUE(HyphenationLanguages().isEmpty());
    EXPECT_FALSE(Hyphenator("en").Loaded());
    qunsetenv("SONGWEAVER_HYPHEN_DIR");
}

TEST(Syllables, TheSyllableSplitMakesASyllableARowAndMergeGivesTheTextBack)
{
    LyricsState lyrics;
    EditorDocument document(lyrics);
    const Hyphenator english("en");
    const QString text = QStringLiteral("Wonderful singing\r\nwell-remembered again");
    ASSERT_TRUE(document.Split(text));
    EXPECT_EQ(document.Count(), 4) << "a word a row without a dictionary";
    const QString words = document.Merge();

    ASSERT_TRUE(document.Split(text, &english));
    QStringList rows;
    for (int row = 1; row <= document.Count(); ++row)
        rows << document.Entry(row).Text + (document.Entry(row).LineEnd ? QStringLiteral("|") : QString());
    EXPECT_EQ(rows, (QStringList{"Won", "der", "ful ", "singing |", "well-", "re", "mem", "bered ", "again |"}))
        << "a word's last syllable keeps the blank and ends the line";
    EXPECT_EQ(document.Entry(2).LineText, "Wonderful singing ");
    EXPECT_EQ(document.Merge(), words) << "the syllables merge back into the same text";
}
