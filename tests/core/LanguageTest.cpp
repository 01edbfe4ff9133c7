#include "core/Language.h"
#include "support/TestSupport.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

LanguageTable TableOf(const char* text)
{
    LanguageTable table;
    table.LanguageText = QString::fromUtf8(text);
    return table;
}

} // namespace

TEST(Language, LookupRules)
{
    const LanguageTable t = TableOf("\r\nPlay->Play it\r\nMenu->^File ^Open\r\nTwo->one|two|three\r\n"
                                    "Dead=>never\r\nArrow->a->b\r\nPlay->second\r\nplay->lower\r\nLast->end");
    EXPECT_EQ(t.GetRawText(QStringLiteral("Play")), "Play it") << "the first row wins";
    EXPECT_EQ(t.GetRawText(QStringLiteral("play")), "lower") << "case is exact";
    EXPECT_EQ(t.GetText(QStringLiteral("Menu")), "&File ^Open") << "only the first ^ is an accelerator";
    EXPECT_EQ(t.GetText(QStringLiteral("Two")), "one\r\ntwo\r\nthree");
    EXPECT_EQ(t.GetRawText(QStringLiteral("Two")), "one|two|three");
    EXPECT_EQ(t.GetText(QStringLiteral("Dead")), "") << "a row without -> is never found";
    EXPECT_EQ(t.GetRawText(QStringLiteral("Arrow")), "a->b") << "the text starts after the first ->";
    EXPECT_EQ(t.GetText(QStringLiteral("Missing")), "");
    EXPECT_EQ(t.GetText(QStringLiteral("Last")), "") << "a last row with no line end behind it is cut to nothing";
    EXPECT_EQ(TableOf("Play->first line\r\n").GetText(QStringLiteral("Play")), "")
        << "a key needs the line end before it";
}

TEST(Language, ChoosingTheTable)
{
    MemoryStore store;
    LanguageTable t;
    t.LoadLanguage(store);
    EXPECT_FALSE(t.IsPolish);
    EXPECT_EQ(t.GetText(QStringLiteral("Play")), "Play");

    store.values[QStringLiteral("language")] = QStringLiteral("PL");
    t.LoadLanguage(store);
    EXPECT_FALSE(t.IsPolish) << "the comparison is exact";

    store.values[QStringLiteral("language")] = QStringLiteral("pl");
    t.LoadLanguage(store);
    EXPECT_TRUE(t.IsPolish);
    EXPECT_EQ(t.GetText(QStringLiteral("Play")), "Odtwarzaj");
    EXPECT_EQ(t.GetText(QStringLiteral("Next")), QString::fromUtf8("Następny"));
}

TEST(Language, ShippedTablesKeepTheirRowsAndQuirks)
{
    for (bool polish : {false, true}) {
        SCOPED_TRACE(polish ? "Polish" : "English");
        LanguageTable t;
        t.LoadTable(polish);
        ASSERT_TRUE(t.LanguageText.startsWith(QStringLiteral("\r\nPrevious->")));
        EXPECT_FALSE(t.LanguageText.contains(QRegularExpression(QStringLiteral("[^\r]\n"))))
            << "every line ends in CR LF";
        EXPECT_EQ(t.Keys().size(), 274 + 147 + 57)
            << "the key list, the second Fullscreen row and the texts added since: the preferences' 22, the playlist's 4, the editor's 30, the player's 11";
        EXPECT_EQ(t.Keys()[273], "ErrorCreateWav");
        EXPECT_EQ(t.Keys().last(), "WebWrongAddress");
        EXPECT_FALSE(t.GetText(QStringLiteral("ErrorCreateWav")).isEmpty()) << "the last key is found";
        EXPECT_EQ(t.GetText(QStringLiteral("EditorCaption")), "") << "the editor caption row is dead";
        EXPECT_EQ(t.GetText(QStringLiteral("PreferencesCaption")), "");
        EXPECT_FALSE(t.GetText(QStringLiteral("PreferncesCaption")).isEmpty());
        EXPECT_EQ(t.Keys().count(QStringLiteral("Fullscreen")), 2);
        for (const QString& key : t.Keys())
            EXPECT_FALSE(t.GetRawText(key).isEmpty()) << key.toStdString();
    }

    LanguageTable english;
    english.LoadTable(false);
    EXPECT_EQ(english.GetText(QStringLiteral("Fullscreen")), "Fullscreen");
    EXPECT_EQ(english.GetText(QStringLiteral("OutlineColor1")), "") << "English spells the key OutlineCOlor1";
    EXPECT_EQ(english.GetText(QStringLiteral("FileOpen")), "Open file(s)");
    EXPECT_EQ(english.GetText(QStringLiteral("ShortDecrease")), "Decrese font");
    EXPECT_EQ(english.GetText(QStringLiteral("ShortOffset+")), "TIme offste +");
    EXPECT_EQ(english.GetText(QStringLiteral("DetailsHeight")), "Hight");
    EXPECT_EQ(english.GetText(QStringLiteral("Display-Offset")), "Time offset -100 ms");
    EXPECT_EQ(english.GetText(QStringLiteral("MsgNew")), "All data inside editor will be lost.\r\nContinue anyway?");
    EXPECT_EQ(english.GetText(QStringLiteral("ErrorSoundcard")),
              "No sound device found. Please buy soundcard first\r\nor install proper drivers if you have one.");
    EXPECT_EQ(english.GetText(QStringLiteral("MenuFile")), "&File");

    LanguageTable polish;
    polish.LoadTable(true);
    EXPECT_EQ(polish.GetText(QStringLiteral("OutlineColor1")), "Kolor obrysu 1");
    EXPECT_EQ(polish.GetText(QStringLiteral("Fullscreen")), QString::fromUtf8("Pełny ekran"));
}

TEST(Language, DialogFiltersTakeTheTextsDescriptionAndTheCommandsPatternsWithAllFilesLast)
{
    EXPECT_EQ(DialogFilter("Lyrics files (*.lrs)|*.lrs|All files (*.*)|*.*", "*.lrs"),
              "Lyrics files (*.lrs);;All files (*)");
    EXPECT_EQ(DialogFilter("Karaoke files (*.kar;*.mid)|*.kar;*.mid", "*.mp3;*.ogg;*.wav;*.kar;*.mid;"),
              "Karaoke files (*.mp3 *.ogg *.wav *.kar *.mid);;All files (*)");
    EXPECT_EQ(DialogFilter(QString::fromUtf8("Utwory (*.mp3;*.ogg)|*.mp3;*.ogg|Wszystkie pliki (*.*)|*.*"), "*.mp3"),
              QString::fromUtf8("Utwory (*.mp3);;Wszystkie pliki (*)"))
        << "the language's own name for all files";
    EXPECT_EQ(DialogFilter("Text files", "*.txt"), "Text files (*.txt);;All files (*)");
    EXPECT_EQ(DialogFilter("", "*.txt"), "(*.txt);;All files (*)");
}
