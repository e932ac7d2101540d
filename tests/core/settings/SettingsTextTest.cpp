#include "core/settings/SettingsText.h"

#include "core/platform/SqliteSettingsStore.h"
#include "core/settings/HostReg.h"
#include "core/settings/StoredPorts.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {

bool operator==(const NamedSetting& a, const NamedSetting& b)
{
    return a.name == b.name && a.value == b.value;
}

bool operator==(const SettingsKey& a, const SettingsKey& b)
{
    return a.path == b.path && a.values == b.values;
}

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr auto kCreate = KeyOpening::Create;

/// One of everything that a store can hold.
const std::vector<SettingsKey> kAll = {
    {L"", {{L"at the root", 1U}}},
    {L"Software\\olen+(GPS)",
     {{L"", std::wstring(L"the value without a name")},
      {L"= \"quoted\" [x] # %41", std::wstring(L"100 % \"sure\"")},
      {L"\u6E2C\u91CF \U0002000B", std::wstring(L" C:\\My Documents\\ \r\n\t\x01\x7F\x85\uFEFF ")},
      {L"empty", std::wstring()},
      {L"largest", 0xFFFFFFFFU},
      {L"bytes", Bytes{0x00, 0x0A, 0xFF}},
      {L"no bytes", Bytes{}}}},
    {L"Software\\a key]\\ with % ends \n", {}},
};

TEST(SettingsText, ReadsBackWhatItWrote)
{
    const std::string text = FormatSettingsText(kAll);
    const SettingsTextResult result = ParseSettingsText(text);
    ASSERT_FALSE(result.fault) << result.fault->line << ": " << result.fault->message << text;
    EXPECT_EQ(result.keys, kAll);
}

TEST(SettingsText, ReadsWhatAPersonWrites)
{
    const SettingsTextResult result =
        ParseSettingsText("\xEF\xBB\xBF"
                          "fieldcore-settings 1\r\n# a comment\r\n\r\n\t [\\GPS\\\\Com\\] \r\n"
                          "\"Rate\"=number   0x9600\r\n  \"Mask\" = binary 0a0B fF\n"
                          "\"Name\"\t=\ttext\"%41%0a\"\n");
    ASSERT_FALSE(result.fault) << result.fault->line << ": " << result.fault->message;
    const std::vector<SettingsKey> expected = {{L"GPS\\Com",
                                                {{L"Rate", 0x9600U},
                                                 {L"Mask", Bytes{0x0A, 0x0B, 0xFF}},
                                                 {L"Name", std::wstring(L"A\n")}}}};
    EXPECT_EQ(result.keys, expected);
}

TEST(SettingsText, NamesTheLineAndWhatIsWrongWithIt)
{
    const std::string longName(256, 'n');
    // The texts stand behind the first line and a key, that is from line 3 on.
    const std::tuple<std::string_view, std::string, std::string_view> rows[] = {
        {"a line of something else", "Rate=1\n", "begins with"},
        {"key without its end", "[GPS\n", "]"},
        {"name in a key too long", "[" + longName + "]\n", "255"},
        {"name of a value too long", "\"" + longName + "\" = number 1\n", "255"},
        {"name without its end", "\"Rate = number 1\n", "%22"},
        {"no equals sign", "\"Rate\" number 1\n", "="},
        {"no type", "\"Rate\" = 1\n", "text, number or binary"},
        {"nothing behind the name", "\"Rate\" =\n", "text, number or binary"},
        {"number out of range", "\"Rate\" = number 4294967296\n", "4294967295"},
        {"negative number", "\"Rate\" = number -1\n", "4294967295"},
        {"no number at all", "\"Rate\" = number\n", "4294967295"},
        {"hexadecimal without 0x", "\"Rate\" = number FF\n", "4294967295"},
        {"half a byte", "\"Mask\" = binary 00 F\n", "two hexadecimal digits"},
        {"no hexadecimal digit", "\"Mask\" = binary 0G\n", "two hexadecimal digits"},
        {"text without quotes", "\"Name\" = text x\n", "quotation marks"},
        {"text without its end", "\"Name\" = text \"x\n", "quotation marks"},
        {"something behind a text", "\"Name\" = text \"x\" y\n", "%22"},
        {"NUL", "\"Name\" = text \"%00\"\n", "01 to 9F"},
        {"bytes of UTF-8 as escapes", "\"Name\" = text \"%E6%B8%AC\"\n", "01 to 9F"},
        {"half an escape", "\"Name\" = text \"%4\"\n", "01 to 9F"},
        {"no UTF-8", "\"Name\" = text \"\x83\x41\"\n", "UTF-8"},
        {"a control character as it is", "\"Name\" = text \"\x1B\"\n", "control"},
        {"twice in another case", "\"\xD0\xAF\" = number 1\n[gps]\n\"\xD1\x8F\" = number 1\n",
         "line 3"},
        {"last line cut", "\"Rate\" = number 384", "does not end"},
    };
    for (const auto& [fault, text, told] : rows) {
        SCOPED_TRACE(fault);
        const SettingsTextResult result = ParseSettingsText("fieldcore-settings 1\n[GPS]\n" + text);
        ASSERT_TRUE(result.fault);
        EXPECT_EQ(result.fault->line, fault == "twice in another case" ? 5U : 3U);
        EXPECT_NE(result.fault->message.find(told), std::string::npos) << result.fault->message;
        EXPECT_TRUE(result.keys.empty());
    }
    for (const std::string text : {"", "[GPS]\n", "fieldcore-settings 2\n"}) {
        EXPECT_EQ(ParseSettingsText(text).fault.value_or(SettingsTextFault{}).line, 1U) << text;
    }
    EXPECT_EQ(ParseSettingsText("fieldcore-settings 1\n\"a\" = number 1\n").fault->line, 2U);
}

TEST(SettingsText, TellsACutText)
{
    const std::string good = FormatSettingsText(kAll);
    for (std::size_t length = 0; length < good.size(); ++length) {
        const bool atLineEnd = length > 0 && good[length - 1] == '\n';
        EXPECT_EQ(!ParseSettingsText(good.substr(0, length)).fault, atLineEnd) << length;
    }
}

/// What is in a store, whole.
std::string Content(SettingsStore& store)
{
    return FormatSettingsText(ReadSettingsTree(store, L"").value());
}

TEST(SettingsTree, BringsBackWhatWasSavedAndKeepsTheRest)
{
    const TemporaryFolder folder;
    SqliteSettingsStore first(folder.Path() / "first.db");
    std::wstring refused;
    ASSERT_TRUE(StoreSettings(first, kAll, refused));
    const std::string saved = Content(first);

    SqliteSettingsStore second(folder.Path() / "second.db");
    ASSERT_TRUE(second.Set(L"software\\OLEN+(gps)", L"LARGEST", std::wstring(L"other"), kCreate));
    ASSERT_TRUE(second.Set(L"Other", L"kept", 7U, kCreate));
    ASSERT_TRUE(StoreSettings(second, ParseSettingsText(saved).keys, refused));
    EXPECT_EQ(second.Get(L"Other", L"kept").value, SettingsValue(7U));
    EXPECT_EQ(second.Get(L"Software\\olen+(GPS)", L"largest").value, SettingsValue(0xFFFFFFFFU));

    SqliteSettingsStore third(folder.Path() / "third.db");
    ASSERT_TRUE(StoreSettings(third, ParseSettingsText(saved).keys, refused));
    EXPECT_EQ(Content(third), saved);
}

TEST(SettingsTree, StoresNothingOfAListThatIsRefusedInPart)
{
    const TemporaryFolder folder;
    SqliteSettingsStore store(folder.Path() / "user.db");
    ASSERT_TRUE(store.Set(L"A", L"n", 1U, kCreate));
    const std::string before = Content(store);
    std::vector<SettingsKey> keys = {{L"A", {{L"n", 2U}}},
                                     {L"B", {{L"huge", std::wstring(3U << 20U, L'x')}}}};
    std::wstring refused;
    EXPECT_FALSE(StoreSettings(store, keys, refused));
    EXPECT_EQ(refused, L"B\\huge");
    EXPECT_EQ(Content(store), before);
    keys.pop_back();
    EXPECT_TRUE(StoreSettings(store, keys, refused)) << "the batch was left open";
}

TEST(SettingsStore, DeletesOneValue)
{
    const TemporaryFolder folder;
    SqliteSettingsStore store(folder.Path() / "user.db");
    ASSERT_TRUE(store.Set(L"A", L"n", 1U, kCreate));
    ASSERT_TRUE(store.Set(L"A", L"m", 2U, kCreate));
    ASSERT_TRUE(store.Set(L"A\\B", L"n", 3U, kCreate));
    EXPECT_FALSE(store.DeleteValue(L"A", L"missing"));
    EXPECT_TRUE(store.DeleteValue(L"a", L"N"));
    EXPECT_FALSE(store.DeleteValue(L"A", L"n"));
    EXPECT_EQ(Content(store), "fieldcore-settings 1\n\n[]\n\n[A]\n\"m\" = number 2\n\n"
                              "[A\\B]\n\"n\" = number 3\n");
}

TEST(StoredPorts, GoToTheirComNumbers)
{
    const TemporaryFolder home;
    SettingsRoots roots(testing::FoldersBelow(home.Path()));
    PortNames names;
    EXPECT_TRUE(AssignStoredPorts(names, roots).empty());
    EXPECT_FALSE(std::filesystem::exists(roots.File(RootKey::CurrentUser))) << "made by reading";

    SettingsStore& store = roots.Store(RootKey::CurrentUser);
    const std::wstring key = HostBasePath() + L"\\ports"; // names are the same in any case
    ASSERT_TRUE(store.Set(key, L"com4", std::wstring(L"/dev/ttyUSB7"), kCreate));
    for (const wchar_t* const bad : {L"COM0", L"COM257", L"COM4x", L"COM", L"Rate"}) {
        ASSERT_TRUE(store.Set(key, bad, std::wstring(L"/dev/ttyUSB8"), kCreate));
    }
    ASSERT_TRUE(store.Set(key, L"COM5", std::wstring(L"ttyUSB7"), kCreate));
    ASSERT_TRUE(store.Set(key, L"COM6", 7U, kCreate));
    EXPECT_EQ(AssignStoredPorts(names, roots).size(), 7U);
    EXPECT_EQ(names.Assigned(), (std::map<int, std::string>{{4, "/dev/ttyUSB7"}}));
}

} // namespace
} // namespace fieldcore
