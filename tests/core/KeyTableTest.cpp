// The one key table: no key shadowed by another in its window, every listed key named in both
// languages, and the modifier rules the handlers rely on.

#include "core/KeyTable.h"
#include "core/Language.h"

#include <gtest/gtest.h>

namespace {

bool Needs(Qt::KeyboardModifiers held, Qt::KeyboardModifiers needed)
{
    return (held & needed) == needed;
}

} // namespace

TEST(KeyTable, EveryRowCanBeReachedInItsWindow)
{
    const auto table = KeyTable();
    for (size_t later = 0; later < table.size(); ++later)
        for (size_t earlier = 0; earlier < later; ++earlier) {
            const KeyBinding& a = table[earlier];
            const KeyBinding& b = table[later];
            if (a.window != b.window || a.key == 0 || a.key != b.key)
                continue;
            EXPECT_FALSE(Needs(b.modifiers, a.modifiers) && a.command != b.command)
                << b.label << " is taken first by the row of " << a.label;
        }
}

TEST(KeyTable, ListedKeysAreNamedInBothLanguages)
{
    for (bool polish : {false, true}) {
        LanguageTable language;
        language.LoadTable(polish);
        for (const KeyBinding& binding : KeyTable()) {
            if (!binding.action)
                continue;
            EXPECT_FALSE(language.GetText(QString::fromLatin1(binding.action)).isEmpty()) << binding.action;
            EXPECT_FALSE(language.GetText(QString::fromLatin1(KeyWindowText(binding.window))).isEmpty())
                << "the section of " << binding.action;
        }
    }
}

TEST(KeyTable, PlainKeysFireWithModifiersHeldAndCombinationsNeedTheirs)
{
    const KeyBinding* stop = FindKey(KeyWindow::Player, Qt::Key_V, Qt::ControlModifier);
    ASSERT_NE(stop, nullptr);
    EXPECT_EQ(stop->command, KeyCommand::Stop);
    EXPECT_EQ(FindKey(KeyWindow::Player, Qt::Key_O, Qt::NoModifier), nullptr) << "O alone opens nothing";
    ASSERT_NE(FindKey(KeyWindow::Player, Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier), nullptr);

    EXPECT_EQ(FindKey(KeyWindow::Editor, Qt::Key_Plus, Qt::NoModifier), nullptr) << "only the keypad's plus corrects";
    const KeyBinding* up = FindKey(KeyWindow::Editor, Qt::Key_Plus, Qt::KeypadModifier);
    ASSERT_NE(up, nullptr);
    EXPECT_EQ(up->command, KeyCommand::CorrectUp);

    const KeyBinding* paste = FindKey(KeyWindow::Editor, Qt::Key_V, Qt::ControlModifier);
    ASSERT_NE(paste, nullptr);
    EXPECT_EQ(paste->command, KeyCommand::PasteRows) << "the editor's Ctrl+V is its own, not the player's stop";
    EXPECT_EQ(FindKey(KeyWindow::Editor, Qt::Key_V, Qt::NoModifier), nullptr);

    EXPECT_EQ(FindKey(KeyWindow::Karaoke, 0, Qt::NoModifier), nullptr) << "the mouse-only row is no key";
}
