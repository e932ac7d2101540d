#include "ui/input/ComboEntries.h"

#include "core/input/Parts.h"
#include "ui/controls/TComboBox.h"

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(ComboEntries, KeepWhatIsTypedAndSelected)
{
    CTComboBox combo;
    combo.setEditable(true);
    combo.setEditText(QStringLiteral("typing"));
    ComboEntries entries(combo);
    CParts::StackComboList(entries, L"P1", 10);
    EXPECT_EQ(combo.currentIndex(), -1) << "nothing selects itself";
    EXPECT_EQ(combo.currentText(), QStringLiteral("typing"));
    CParts::StackComboList(entries, L"P2", 10);
    CParts::StackComboList(entries, L"P1", 10);
    EXPECT_EQ(combo.count(), 2);
    EXPECT_EQ(combo.currentText(), QStringLiteral("P1"));
    CParts::StackComboList(entries, L"P3", 10);
    EXPECT_EQ(combo.itemText(0), QStringLiteral("P3"));
    EXPECT_EQ(combo.currentText(), QStringLiteral("P1")) << "the selection moves with its entry";
    EXPECT_EQ(entries.GetSelected(), 2);
    combo.setEditText(QStringLiteral("P4"));
    EXPECT_EQ(entries.GetSelected(), -1) << "P1 would be stored as the choice, before P4";
}

} // namespace
} // namespace fieldcore
