// The antenna catalogue: a file that anybody may have written, and its copy in the settings.

#include "core/equipment/AntennaCatalogue.h"

#include "core/platform/Cp932.h"
#include "core/platform/Utf8.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

const std::wstring kTwo = L"[ANTENNATYPE]\r\nDATA0=縁付\r\nDATA1=小型\r\n"
                          L"[縁付]\r\nCharCode=E1\r\nType=21\r\n"
                          L"MeasMethod0=0.10000,0.05000,0.00000,\"縁の下端\"\r\n"
                          L"MeasMethod1=0.00000,0.06230,0.00000,\"底面\"\r\n"
                          L"[小型]\r\nMeasMethod0=0.0,0.02,0,\"ｱﾝﾃﾅﾏｳﾝﾄの底部\"\r\n";

class Catalogue : public ::testing::Test
{
protected:
    void Write(const std::string& bytes) const
    {
        std::ofstream(AntennaFilePath(m_home.Path()), std::ios::binary) << bytes;
    }

    /// What was imported, as "count: name/code/number/methods ...".
    [[nodiscard]] std::string Imported(const AntennaCatalogue& catalogue) const
    {
        std::string words = std::to_string(catalogue.GetMaxCount()) + ":";
        for (int n = 0; n < catalogue.GetMaxCount(); ++n) {
            const AntennaType type = catalogue.Type(n).value_or(AntennaType{});
            words += " " + ToUtf8(type.name) + "/" + ToUtf8(type.charCode) + "/" +
                     std::to_string(type.code) + "/" + std::to_string(catalogue.MethodCount(n));
        }
        return words;
    }

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    AntennaCatalogue m_catalogue{m_roots};
    HostReg m_reg{m_roots};
};

TEST_F(Catalogue, TakesWhateverTheFileHolds)
{
    const std::wstring half = L"[ANTENNATYPE]\nDATA0=A\nDATA2=B\n[A]\n[B]\nType=5\n";
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"code page 932", ToCp932(kTwo), "2: 縁付/E1/21/2 小型/  /0/1"},
        {"UTF-8 with a mark", "\xEF\xBB\xBF" + ToUtf8(kTwo), "2: 縁付/E1/21/2 小型/  /0/1"},
        {"a type beyond a gap", ToCp932(half), "1: A/  /0/0"},
        {"a section that is missing", "[ANTENNATYPE]\nDATA0=A\nDATA1=B\n[B]\nType=7\n",
         "2: A/  /0/0 B/  /7/0"},
        {"one section for two types", "[ANTENNATYPE]\nDATA0=A\nDATA1=A\n[A]\nType=7\n",
         "2: A/  /7/0 A/  /7/0"},
        {"a section that comes twice", "[ANTENNATYPE]\nDATA0=A\n[A]\nType=7\n[A]\nCharCode=XX\n",
         "1: A/  /7/0"},
        {"an entry that comes twice", "[ANTENNATYPE]\nDATA0=A\n[A]\nType=7\nType=8\n",
         "1: A/  /7/0"},
        {"a number with zeros in front", "[ANTENNATYPE]\nDATA00=A\nDATA0=B\n", "1: B/  /0/0"},
        {"a code that is no number", "[ANTENNATYPE]\nDATA0=A\n[A]\nType=inf\n",
         "1: A/  /9223372036854775807/0"},
        {"a million lines", ToCp932(kTwo) + std::string(1'000'000, '\n'),
         "2: 縁付/E1/21/2 小型/  /0/1"},
        {"a file beyond the limit", ToCp932(kTwo) + std::string(16U << 20U, '\n'), "0:"},
        {"bytes that mean nothing", std::string("[ANTENNATYPE]\nDATA0=\xFF\x80\n\0\0=\n", 27),
         "1: \?\?/  /0/0"},
    };
    for (const auto& [fault, bytes, imported] : rows) {
        SCOPED_TRACE(fault);
        m_reg.DeleteKey(L"", AntennaCatalogue::kKey);
        Write(bytes);
        EXPECT_EQ(m_catalogue.Update(), 1);
        EXPECT_EQ(Imported(m_catalogue), imported);
    }
}

TEST_F(Catalogue, CountsTo64)
{
    std::string list = "[ANTENNATYPE]\r\n";
    std::string sections;
    for (int n = 0; n <= 64; ++n) {
        const std::string number = std::to_string(n);
        list += "DATA" + number + "=T" + number + "\r\n";
        sections += "[T" + number + "]\r\n";
        for (int m = 0; m <= 64; ++m) {
            const std::string method = std::to_string(m);
            sections += "MeasMethod" + method + "=0." + method + ",0." + number + ",0,\"M\"\r\n";
        }
    }
    Write(list + sections);
    ASSERT_EQ(m_catalogue.Update(), 1);
    EXPECT_EQ(m_catalogue.GetMaxCount(), 64);
    EXPECT_EQ(m_catalogue.Type(63)->name, L"T63");
    EXPECT_EQ(m_catalogue.MethodCount(63), 64);
    EXPECT_FALSE(m_catalogue.Method(63, 64));
    EXPECT_FALSE(m_catalogue.Type(64));
    std::wstring text64;
    EXPECT_EQ(m_reg.ReadString(AntennaCatalogue::kKey, L"ANTENNATYPE64", text64, L""), 0);
    EXPECT_EQ(m_reg.ReadString(AntennaCatalogue::kKey, L"MeasMethod6463", text64, L""), 0);
    // Method 1 of type 11 and 11 of 1 have one value: the later type's counts.
    EXPECT_EQ(m_catalogue.Method(1, 11)->verticalM, 0.11);
    EXPECT_EQ(m_catalogue.Method(1, 11)->radiusM, 0.1);
}

TEST_F(Catalogue, IsReadAgainOnlyWhenTheFileChanged)
{
    const fs::path file = AntennaFilePath(m_home.Path());
    EXPECT_EQ(AntennaFileStamp(m_home.Path()), L"00/00/00 00:00:00 0");
    EXPECT_EQ(m_catalogue.Update(), 1);
    EXPECT_EQ(m_catalogue.GetMaxCount(), 0);
    setenv("TZ", "JST-9", 1);
    tzset();
    using namespace std::chrono;
    const auto time = file_clock::from_sys(sys_days(2026y / January / 8) + 23h + 5min + 3s);
    const auto write = [&](const std::string& name, seconds later) {
        Write("[ANTENNATYPE]\nDATA0=" + name + "\n");
        fs::last_write_time(file, time + later);
        EXPECT_EQ(m_catalogue.Update(), 1);
        return m_catalogue.GetMaxCount() == 1 ? ToUtf8(m_catalogue.Type(0)->name) : "none";
    };
    EXPECT_EQ(write("A", 0s), "A");
    EXPECT_EQ(AntennaFileStamp(m_home.Path()), L"2026/1/9 08:05:03 22");
    EXPECT_EQ(write("B", 0s), "A") << "an unchanged stamp was not trusted";
    EXPECT_EQ(write("C", 1s), "C") << "a change of the time alone was not seen";
    EXPECT_EQ(write("DD", 1s), "DD") << "a change of the size alone was not seen";
    m_reg.WriteString(AntennaCatalogue::kKey, L"MeasMethod70", L"1,1,1,\"left over\"");
    EXPECT_EQ(write("E", 2s), "E");
    EXPECT_FALSE(m_catalogue.Method(0, 7)) << "the old values were not deleted";
    // Replaced by one of the same size: within the second, and at the very same time.
    for (const auto later : {1ns, 0ns}) {
        const std::string name = later == 1ns ? "F" : "G";
        const fs::path next = m_home.Path() / "next";
        std::ofstream(next) << "[ANTENNATYPE]\nDATA0=" << name << "\n";
        fs::last_write_time(next, time + 2s + later);
        fs::rename(next, file);
        EXPECT_EQ(m_catalogue.Update(), 1);
        EXPECT_EQ(ToUtf8(m_catalogue.Type(0)->name), name);
    }
    fs::remove(file);
    EXPECT_EQ(m_catalogue.Update(), 1);
    EXPECT_EQ(m_catalogue.GetMaxCount(), 0);
    unsetenv("TZ");
    tzset();
}

TEST_F(Catalogue, FollowsAFileThatIsReplacedWhileItIsRead)
{
    const std::string comment(300'000, ';'); // takes some milliseconds to read
    const auto write = [&](const fs::path& file, const std::string& name) {
        std::ofstream(file, std::ios::binary) << "[ANTENNATYPE]\nDATA0=" << name << "\n" << comment;
    };
    const fs::path next = m_home.Path() / "next";
    for (int round = 0; round < 60; ++round) {
        const std::string name = "new" + std::to_string(round);
        write(AntennaFilePath(m_home.Path()), "before " + name);
        write(next, name);
        std::thread writer([&] {
            std::this_thread::sleep_for(std::chrono::microseconds(30 * round));
            fs::rename(next, AntennaFilePath(m_home.Path()));
        });
        EXPECT_EQ(m_catalogue.Update(), 1);
        writer.join();
        EXPECT_EQ(m_catalogue.Update(), 1);
        ASSERT_TRUE(m_catalogue.Type(0)) << name;
        ASSERT_EQ(ToUtf8(m_catalogue.Type(0)->name), name);
    }
}

TEST_F(Catalogue, DoesNotTrustTheSettings)
{
    Write(ToCp932(kTwo));
    ASSERT_EQ(m_catalogue.Update(), 1);
    constexpr const wchar_t* kKey = AntennaCatalogue::kKey;
    m_reg.WriteNumber(kKey, L"MaxCount", 0xFFFFFFFF);
    EXPECT_EQ(m_catalogue.GetMaxCount(), AntennaCatalogue::kMaxTypes);
    EXPECT_EQ(m_catalogue.Type(40)->name, L"");
    m_reg.WriteNumber(kKey, L"MeasMethod00", 1);
    EXPECT_FALSE(m_catalogue.Method(0, 0)) << "a number was taken for a method";
    m_reg.WriteString(kKey, L"MaxCount", L"2");
    EXPECT_EQ(m_catalogue.GetMaxCount(), 0);
    m_reg.DeleteKey(L"GPS", L"Antenna");
    EXPECT_FALSE(m_catalogue.Type(0));
    EXPECT_FALSE(m_roots.Store(RootKey::CurrentUser)
                     .OpenKey(HostBasePath() + L"\\" + kKey, KeyOpening::Existing))
        << "a mere look made the key";
}

TEST_F(Catalogue, KeepsTheUsersOwnFile)
{
    Write("[ANTENNATYPE]\nDATA0=mine\n");
    EXPECT_EQ(InstallSampleAntennas(m_home.Path()), 1);
    ASSERT_EQ(m_catalogue.Update(), 1);
    EXPECT_EQ(m_catalogue.Type(0)->name, L"mine");
    EXPECT_EQ(m_catalogue.FindCharCode(L"  "), std::nullopt) << "blanks name no antenna";
}

} // namespace
} // namespace fieldcore
