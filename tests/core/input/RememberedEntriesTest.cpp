#include "core/input/EntryList.h"
#include "core/input/Parts.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using Texts = std::vector<std::wstring>;

class RememberedEntries : public ::testing::Test
{
protected:
    Texts Stored(int count = 10)
    {
        TextEntries list;
        EXPECT_EQ(CParts::ReadRegPointName(list, count, m_reg), 1);
        EXPECT_EQ(list.GetSelected(), -1);
        return list.Texts();
    }
    void Store(const TextEntries& list, int count)
    {
        m_reg.DeleteKey(L"GPS", L"Point");
        EXPECT_EQ(CParts::WriteRegPointName(list, count, m_reg), 1);
    }

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    HostReg m_reg{m_roots};
};

TEST_F(RememberedEntries, AreStackedOnce)
{
    TextEntries list({L"B", L"A"});
    EXPECT_EQ(CParts::StackComboList(list, L"A", 10), 1);
    EXPECT_EQ(list.Texts(), (Texts{L"B", L"A"}));
    EXPECT_EQ(list.GetSelected(), 1);
    EXPECT_EQ(CParts::StackComboList(list, L"a", 2), 1); // another text, and one more than stored
    EXPECT_EQ(list.Texts(), (Texts{L"a", L"B", L"A"}));
    EXPECT_EQ(CParts::StackComboList(list, L"", 10), 1);
    EXPECT_EQ(list.Texts().size(), 3U);
}

TEST_F(RememberedEntries, ComeBackWithTheChoiceFirst)
{
    const std::wstring longest(CReg::kMaxText, L'x');
    const std::tuple<const char*, TextEntries, int, Texts> rows[] = {
        {"selected first", TextEntries({L"A", L"B", L"C"}, 1), 10, {L"B", L"A", L"C"}},
        {"no more than wanted", TextEntries({L"A", L"B", L"C"}, 1), 2, {L"B", L"A"}},
        {"nothing selected", TextEntries({L"A", L"B"}), 10, {L"A", L"B"}},
        {"selection beyond the list", TextEntries({L"A", L"B"}, 5), 10, {L"A", L"B"}},
        {"none wanted", TextEntries({L"A"}, 0), 0, {}},
        {"an empty one uses up its number", TextEntries({L"A", L"", L"C"}), 10, {L"A"}},
        {"one that cannot be read again",
         TextEntries({longest, longest + L"x", L"C"}),
         10,
         {longest, L"C"}},
    };
    for (const auto& [fault, list, count, stored] : rows) {
        SCOPED_TRACE(fault);
        Store(list, count);
        EXPECT_EQ(Stored(), stored);
    }
}

TEST_F(RememberedEntries, EndWhereTheyCannotBeRead)
{
    Store(TextEntries({L"A", L"B", L"C"}), 10);
    EXPECT_EQ(Stored(2), (Texts{L"A", L"B"}));
    Store(TextEntries({L"Z"}), 10);
    m_reg.WriteString(L"GPS\\Point", L"PointName2", L"C"); // what a longer list left behind
    EXPECT_EQ(Stored(), (Texts{L"Z"}));
    m_reg.WriteNumber(L"GPS\\Point", L"PointName1", 5);
    EXPECT_EQ(Stored(), (Texts{L"Z"})) << "a number is no text";

    // Each list has its own names, and a filled combo box gets the old entries in front.
    TextEntries numbers({L"9"});
    EXPECT_EQ(CParts::WriteRegPointNo(TextEntries({L"1", L"2"}), 10, m_reg), 1);
    EXPECT_EQ(CParts::WriteRegAttrib(TextEntries({L"杭"}), 10, m_reg), 1);
    EXPECT_EQ(CParts::ReadRegPointNo(numbers, 10, m_reg), 1);
    EXPECT_EQ(numbers.Texts(), (Texts{L"1", L"2", L"9"}));
    TextEntries attributes;
    EXPECT_EQ(CParts::ReadRegAttrib(attributes, 10, m_reg), 1);
    EXPECT_EQ(attributes.Texts(), (Texts{L"杭"}));
    EXPECT_EQ(Stored(), (Texts{L"Z"}));
}

TEST_F(RememberedEntries, AndThePageThatWasOpen)
{
    int page = 2;
    EXPECT_EQ(CParts::SetRegActivePage(1, page, L"Com", m_reg), 1);
    EXPECT_EQ(page, 2) << "nothing stored: the value given";
    EXPECT_EQ(CParts::SetRegActivePage(0, page, L"Com", m_reg), 1);
    page = 0;
    EXPECT_EQ(CParts::SetRegActivePage(1, page, L"Com", m_reg), 1);
    EXPECT_EQ(page, 2);
    EXPECT_EQ(CParts::SetRegActivePage(1, page = 1, L"Antenna", m_reg), 1);
    EXPECT_EQ(page, 1) << "every dialog has its own";
    m_reg.WriteString(L"GPS\\Com", L"ActivePage", L"two");
    EXPECT_EQ(CParts::SetRegActivePage(1, page, L"Com", m_reg), 1);
    EXPECT_EQ(page, 1);
}

} // namespace
} // namespace fieldcore
