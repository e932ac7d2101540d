#include "core/settings/Reg.h"

#include "core/settings/HostReg.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using Bytes = std::vector<std::uint8_t>;

class Reg : public ::testing::Test
{
protected:
    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    CReg m_reg{m_roots};

    /// @return 0xDEAD, which no test writes, where there is none
    [[nodiscard]] std::uint32_t NumberIn(std::wstring_view key, std::wstring_view name = L"n") const
    {
        std::uint32_t number = 0;
        const int found = m_reg.ReadNumber(key, name, number, 0xDEAD);
        EXPECT_EQ(found, number == 0xDEAD ? 0 : 1);
        return number;
    }
};

TEST_F(Reg, GivesTheDefaultForWhatItCannotRead)
{
    m_reg.WriteNumber(L"K", L"number", 7);
    m_reg.WriteString(L"K", L"text", L"seven");
    m_reg.WriteBinary(L"K", L"bytes", Bytes{7, 7, 7});
    m_reg.WriteString(L"K", L"digits", L"7");
    m_reg.WriteNumber(L"K\\Removed", L"number", 7);
    m_reg.DeleteKey(L"K", L"Removed");
    const std::tuple<const char*, const wchar_t*, const wchar_t*, int, int, int> rows[] = {
        {"a number read as text or bytes", L"K", L"number", 0, 1, 0},
        {"a text read as number or bytes", L"K", L"text", 1, 0, 0},
        {"bytes read as text or number", L"K", L"bytes", 0, 0, 1},
        {"a text of digits taken for a number", L"K", L"digits", 1, 0, 0},
        {"found without its name", L"K", L"missing", 0, 0, 1}, // bytes get their default written
        {"found in a removed key", L"K\\Removed", L"number", 0, 0, 1},
    };
    for (const auto& [fault, key, name, asText, asNumber, asBytes] : rows) {
        SCOPED_TRACE(fault);
        std::wstring text = L"before";
        EXPECT_EQ(m_reg.ReadString(key, name, text, L"default"), asText);
        EXPECT_EQ(text == L"default", asText == 0);
        std::uint32_t number = 1;
        EXPECT_EQ(m_reg.ReadNumber(key, name, number, 99), asNumber);
        EXPECT_EQ(number, asNumber != 0 ? 7U : 99U);
        std::array<std::uint8_t, 3> bytes{1, 1, 1};
        EXPECT_EQ(m_reg.ReadBinary(key, name, bytes, Bytes{9, 9, 9}), asBytes);
        EXPECT_EQ(bytes[2], asBytes != 0 && bytes[0] == 7 ? 7 : 9);
    }
}

TEST_F(Reg, ReadsTextOfAtMost255Units)
{
    const std::tuple<const char*, std::wstring, int> rows[] = {
        {"the longest text refused", std::wstring(255, L'x'), 1},
        {"one too many accepted", std::wstring(256, L'x'), 0},
        {"units not counted, but bytes", std::wstring(255, L'\u6E2C'), 1},
        {"a pair counted once", std::wstring(127, L'\U0002000B') + L"xx", 0},
        {"a pair counted twice", std::wstring(127, L'\U0002000B') + L"x", 1},
        {"empty text taken for missing", L"", 1},
        {"not cut at a NUL", std::wstring(L"a\0b", 3), 1},
    };
    for (const auto& [fault, stored, read] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(m_reg.WriteString(L"K", L"text", stored), 1);
        std::wstring text;
        EXPECT_EQ(m_reg.ReadString(L"K", L"text", text, L"default"), read);
        EXPECT_EQ(text, read != 0 ? stored.c_str() : L"default");
    }
}

TEST_F(Reg, MeansTheSameKeyByDifferentPaths)
{
    m_reg.WriteNumber(L"Software\\Host\\GPS", L"Mask", 15);
    m_reg.WriteNumber(L"ключ\\Ωμέγα\\ＡＢＣ", L"Mask", 15);
    using Row =
        std::tuple<const char*, const wchar_t*, const wchar_t*, const wchar_t*, std::uint32_t>;
    const Row rows[] = {
        {"base and subkey not joined", L"Software\\Host", L"GPS", L"Mask", 15},
        {"base alone", L"Software\\Host\\GPS", L"", L"Mask", 15},
        {"subkey alone", L"", L"Software\\Host\\GPS", L"Mask", 15},
        {"separator at the end", L"Software\\Host\\", L"GPS\\", L"Mask", 15},
        {"case of a key", L"SOFTWARE\\host", L"gps", L"Mask", 15},
        {"case of a value", L"Software\\Host", L"GPS", L"MASK", 15},
        {"case of Greek, Cyrillic and wide letters", L"КЛЮЧ", L"ωΜέΓα\\ａｂｃ", L"Mask", 15},
        {"another key", L"Software\\Host", L"GPS2", L"Mask", 0xDEAD},
        {"the key above", L"Software", L"Host", L"Mask", 0xDEAD},
    };
    for (const auto& [fault, base, subkey, name, number] : rows) {
        SCOPED_TRACE(fault);
        m_reg.SetRootKey(RootKey::CurrentUser, 0);
        ASSERT_EQ(m_reg.SetBasePath(base), 1);
        EXPECT_EQ(NumberIn(subkey, name), number);
    }
}

TEST_F(Reg, MakesKeysOnlyWithTheCreateFlag)
{
    std::uint32_t number = 0;
    std::array<std::uint8_t, 1> bytes{};
    // The result is that with the create flag.
    const std::tuple<const char*, std::function<int(const CReg&)>, int> rows[] = {
        {"write", [](const CReg& reg) { return reg.WriteNumber(L"A\\B", L"n", 1); }, 1},
        {"read", [&](const CReg& reg) { return reg.ReadNumber(L"A\\B", L"n", number, 1); }, 0},
        {"read binary",
         [&](const CReg& reg) { return reg.ReadBinary(L"A\\B", L"n", bytes, bytes); }, 1},
        {"delete", [](const CReg& reg) { return reg.DeleteKey(L"A\\B", L"C"); }, 0},
    };
    for (const auto& [fault, operation, result] : rows) {
        SCOPED_TRACE(fault);
        m_reg.DeleteKey(L"", L"A");
        m_reg.SetRootKey(RootKey::CurrentUser, 0);
        EXPECT_EQ(operation(m_reg), 0);
        EXPECT_FALSE(m_reg.Store().OpenKey(L"A", KeyOpening::Existing));
        m_reg.SetRootKey(RootKey::CurrentUser, 1);
        EXPECT_EQ(operation(m_reg), result);
        EXPECT_TRUE(m_reg.Store().OpenKey(L"a\\b", KeyOpening::Existing));
    }
}

TEST_F(Reg, ReadsBytesOfAnotherLength)
{
    const std::pair<Bytes, Bytes> rows[] = {
        {{}, {9, 9, 9, 0}}, {{1, 2}, {1, 2, 9, 0}}, {{1, 2, 3, 4, 5}, {9, 9, 9, 0}}};
    for (const auto& [stored, expected] : rows) {
        m_reg.WriteBinary(L"K", L"bytes", stored);
        Bytes bytes(4, 0x55);
        EXPECT_EQ(m_reg.ReadBinary(L"K", L"bytes", bytes, Bytes{9, 9, 9}),
                  stored.size() < 4 ? 1 : 0);
        EXPECT_EQ(bytes, expected);
        EXPECT_EQ(m_reg.Store().Get(L"K", L"bytes").value, SettingsValue(stored)) << "lost";
    }
}

TEST_F(Reg, DeletesAKeyWithAllBelowIt)
{
    for (const wchar_t* key :
         {L"A\\List", L"A\\List\\Deep", L"A\\List2", L"A\\Listing", L"A\\Li", L"A"}) {
        ASSERT_EQ(m_reg.WriteNumber(key, L"n", 1), 1);
    }
    EXPECT_EQ(m_reg.DeleteKey(L"A", L""), 0);
    EXPECT_EQ(m_reg.DeleteKey(L"A", L"\\"), 0);
    EXPECT_EQ(m_reg.DeleteKey(L"A", L"LIST"), 1);
    EXPECT_EQ(m_reg.DeleteKey(L"A", L"List"), 0);
    EXPECT_EQ(m_reg.Store().Keys(L"a"), (std::vector<std::wstring>{L"Li", L"List2", L"Listing"}));
    ASSERT_EQ(m_reg.WriteNumber(L"A\\List", L"other", 1), 1);
    EXPECT_EQ(m_reg.Store().Values(L"A\\List").value().size(), 1U); // nothing old comes back
    EXPECT_TRUE(m_reg.Store().Keys(L"A\\List").value().empty());
    EXPECT_EQ(m_reg.Store().Keys(L""), (std::vector<std::wstring>{L"A"}));
}

TEST_F(Reg, RefusesNamesThatARegistryHasNoRoomFor)
{
    const std::wstring longest(255, L'n');
    const std::tuple<const char*, std::wstring, std::wstring, int> rows[] = {
        {"the longest names", longest, longest, 1},
        {"key name too long", L"A\\" + longest + L"n", L"n", 0},
        {"value name too long", L"A", longest + L"n", 0},
        {"NUL in a key", std::wstring(L"a\0b", 3), L"n", 0},
        {"NUL in a name", L"A", std::wstring(L"a\0b", 3), 0},
    };
    for (const auto& [fault, key, name, result] : rows) {
        EXPECT_EQ(m_reg.WriteNumber(key, name, 1), result) << fault;
    }
    EXPECT_EQ(m_reg.SetBasePath(std::wstring(259, L'b')), 1);
    EXPECT_EQ(m_reg.SetBasePath(std::wstring(260, L'b')), 0);
}

TEST_F(Reg, KeepsTheRootsApart)
{
    m_reg.WriteNumber(L"K", L"n", 1);
    m_reg.SetRootKey(RootKey::LocalMachine, 1);
    EXPECT_EQ(NumberIn(L"K"), 0xDEADU);
}

TEST_F(Reg, OfTheHostStartsAtItsOwnKey)
{
    EXPECT_EQ(HostReg(m_roots).WriteNumber(L"GPS\\Com\\Com0", L"Baudlate", 38400), 1);
    EXPECT_EQ(NumberIn(L"Software\\Aldex-Corvane\\olen+(GPS)\\GPS\\Com\\Com0", L"Baudlate"),
              38400U);
}

TEST_F(Reg, StoresABatchAsAWhole)
{
    {
        SettingsBatch batch(m_reg.Store());
        ASSERT_TRUE(batch.IsOpen());
        EXPECT_FALSE(SettingsBatch(m_reg.Store()).IsOpen()); // and does not end the first
        EXPECT_EQ(m_reg.WriteNumber(L"A", L"n", 1), 1);
        EXPECT_EQ(m_reg.DeleteKey(L"", L"Missing"), 0);
        EXPECT_EQ(NumberIn(L"A"), 1U);
    }
    m_reg.SetRootKey(RootKey::CurrentUser, 0);
    EXPECT_EQ(NumberIn(L"A"), 0xDEADU);
    m_reg.SetRootKey(RootKey::CurrentUser, 1);
    SettingsBatch batch(m_reg.Store());
    EXPECT_EQ(m_reg.WriteNumber(L"A", L"n", 1), 1);
    EXPECT_TRUE(batch.Commit());
    EXPECT_FALSE(batch.Commit());
    EXPECT_EQ(NumberIn(L"A"), 1U);
}

} // namespace
} // namespace fieldcore
