// The antenna of a station: heights reduced, settings of each role, antennas from elsewhere.

#include "core/equipment/AntennaSettings.h"

#include "core/resources/StringTable.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(AntennaMethod, IsSplitAtItsCommas)
{
    const std::tuple<const char*, const wchar_t*, double, double, const wchar_t*> rows[] = {
        {"a good one", L"0.10000,0.05000,0.00000,\"縁\"", 0.1, 0.05, L"縁"},
        {"an empty field skipped", L",0.05,,\"縁\"", 0.0, 0.05, L"縁"},
        {"too few fields", L"0.1", 0.1, 0.0, L""},
        {"no quotes", L"0.1,0.05,0,縁", 0.1, 0.05, L"縁"},
        {"no closing quote", L"0.1,0.05,0,\"縁下", 0.1, 0.05, L"縁"},
        {"one quote alone", L"0.1,0.05,0,\"", 0.1, 0.05, L""},
        {"a comma in the name", L"0.1,0.05,0,\"縁,下\"", 0.1, 0.05, L""},
        {"no numbers", L"nan,inf,x,\"縁\"", 0.0, 0.0, L"縁"},
    };
    for (const auto& [fault, text, radiusM, verticalM, name] : rows) {
        SCOPED_TRACE(fault);
        const AntennaMethod method = ParseAntennaMethod(text);
        EXPECT_EQ(method.radiusM, radiusM);
        EXPECT_EQ(method.verticalM, verticalM);
        EXPECT_EQ(method.name, name);
    }
}

TEST(AntennaHeight, IsReducedByPythagoras)
{
    // In metres: what is measured, radius, vertical part and what it comes to.
    const std::tuple<const char*, double, double, double, double, AntennaReduction> rows[] = {
        {"3, 4 and 5", 5.0, 3.0, 0.25, 4.25, AntennaReduction::Slant},
        {"as far as the radius", 0.5, 0.5, 0.05, 0.55, AntennaReduction::TooShort},
        {"shorter than the radius", 0.05, 0.1, 0.05, 0.1, AntennaReduction::TooShort},
        {"no radius", 1.5, 0.0, -0.25, 1.25, AntennaReduction::Upright},
        {"nothing measured", 0.0, 0.0, 0.25, 0.25, AntennaReduction::Upright},
    };
    for (const auto& [fault, measuredM, radiusM, verticalM, resultM, reduction] : rows) {
        SCOPED_TRACE(fault);
        const AntennaHeight height = ReduceAntennaHeight(measuredM, {radiusM, verticalM, L""});
        EXPECT_DOUBLE_EQ(height.verticalM, resultM);
        EXPECT_EQ(height.reduction, reduction);
    }
    // The two squares are rounded before they are subtracted; fused, this would not be 0.
    EXPECT_EQ(ReduceAntennaHeight(1.1, {1.1, 0.0, L""}).squareM2, 0.0);
    EXPECT_TRUE(std::isnan(ReduceAntennaHeight(std::nan(""), {0.1, 0.0, L""}).verticalM));
}

TEST(AntennaInput, IsANumberThatCanBe)
{
    const std::pair<const wchar_t*, int> rows[] = {
        {L"0", 0},
        {L"100", 0},
        {L"", text::kAntennaBadHeight},
        {L".", text::kAntennaBadHeight},
        {L"1e0", text::kAntennaBadHeight},
        {L"-0.001", text::kAntennaNegativeHeight},
        {L"100.001", text::kAntennaHighHeight},
    };
    for (const auto& [typed, fault] : rows) {
        EXPECT_EQ(AntennaHeightFault(typed), fault == 0 ? L"" : FormatText(fault, kHighestAntennaM))
            << typed;
    }
    EXPECT_EQ(AntennaSerialFault(L"A-0001"), L"");
    EXPECT_NE(AntennaSerialFault(L"A 1"), L"");
    EXPECT_NE(AntennaSerialFault(L"12345678901234567"), L"");
}

class Settings : public ::testing::Test
{
protected:
    Settings()
    {
        std::ofstream(AntennaFilePath(m_home.Path()))
            << "[ANTENNATYPE]\nDATA0=Rim\nDATA1=Small\nDATA2=Built-in\n"
               "[Rim]\nCharCode=01\nType=21\n"
               "MeasMethod0=0.1,0.05,0,\"rim\"\nMeasMethod1=0,0.0623,0,\"\"\n"
               "[Small]\nCharCode=S \nType=7\nMeasMethod0=0.0,0.02,0,\"base\"\n"
               "[Built-in]\nCharCode=ZZ\nType=3017\n";
        m_antenna.CheckReg();
    }

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    HostReg m_reg{m_roots};
    CCommand m_command{{.roots = &m_roots}};
    AntennaSettings m_antenna{&m_command, 0, 0};
};

TEST_F(Settings, ReduceByTheChosenMethod)
{
    EXPECT_EQ(m_antenna.GetAntCalcH(1.5, 0, 0), 1.5);
    EXPECT_EQ(m_antenna.GetAntCalcH(1.5, 0, 1), std::sqrt(1.5 * 1.5 - 0.1 * 0.1) + 0.05);
    EXPECT_EQ(m_antenna.GetAntCalcH(0.05, 0, 1), 0.05 + 0.05);
    EXPECT_EQ(m_antenna.GetAntCalcH(1.5, 0, 3), 1.5) << "no such method";
    EXPECT_EQ(m_antenna.GetAntCalcH(1.5, -1, 1), 1.5) << "no such type";
    double r = 9.0;
    double v = 9.0;
    std::wstring name = L"before";
    EXPECT_EQ(m_antenna.GetMeasMethod(0, 2, r, v, name), 0);
    EXPECT_EQ(r + v, 0.0);
    EXPECT_EQ(name, L"before");
    EXPECT_EQ(m_antenna.GetMeasMethod(0, 0, r, v, name), 1);
    EXPECT_EQ(name, L"rim");
    EXPECT_EQ(m_antenna.GetAntWayStr(0, 0), L"公称アンテナ位相中心 / 垂直高");
    EXPECT_EQ(m_antenna.GetAntWayStr(0, 2), L"アンテナ底面");
}

TEST_F(Settings, AreKeptForEachRole)
{
    const std::tuple<std::wstring, int, int> rows[] = {
        {L"PrmRef", 0, 0}, {L"PrmRov", 1, 0}, {L"PrmRovf", 1, 1}, {L"PrmRovf", 0, 1}};
    int type = 0;
    for (const auto& [role, rover, second] : rows) {
        SCOPED_TRACE(role);
        type = (type + 1) % 2;
        m_antenna.SetRov(rover);
        m_antenna.SetRovf(second);
        m_antenna.SetAntTypeFlag(type);
        m_antenna.SetAntWayFlag(1);
        m_antenna.SetAntInputH(1.0 + type);
        m_antenna.SetAntSN(L"SN" + std::to_wstring(type));
        ASSERT_EQ(m_antenna.WriteRegAnt(), 1);
        const std::wstring key = L"GPS\\Antenna\\" + role;
        std::uint32_t stored = 9;
        EXPECT_EQ(m_reg.ReadNumber(key, L"AntType", stored, 9), 1);
        EXPECT_EQ(stored, static_cast<std::uint32_t>(type));
        std::wstring text;
        m_reg.ReadString(key, L"AntH0", text, L"");
        EXPECT_EQ(text, type == 0 ? L"1.000" : L"2.000");
    }
    m_antenna.SetRole(AntennaRole::Reference);
    EXPECT_EQ(m_antenna.ReadRegAnt(), 1);
    EXPECT_EQ(m_antenna.GetAntTypeStr(), L"Small");
    EXPECT_EQ(m_antenna.GetAntInputH(), 2.0);
    EXPECT_EQ(m_antenna.GetAntSN(), L"SN1");
    EXPECT_EQ(m_antenna.GetAntHEx(), L"2.000");
}

TEST_F(Settings, RememberTenHeightsTheLastOneFirst)
{
    for (const double height : {1.0, 1.1, 1.2, 1.3, 1.4, 1.5, 1.6, 1.7, 1.8, 1.9, 2.0, 1.5432}) {
        m_antenna.SetAntInputH(height);
        ASSERT_EQ(m_antenna.WriteRegAnt(), 1);
    }
    m_antenna.SetAntInputH(1.9);
    m_antenna.WriteRegAnt();
    const std::vector<std::wstring> wanted = {L"1.900", L"1.5432", L"2.000", L"1.800", L"1.700",
                                              L"1.600", L"1.500",  L"1.400", L"1.300", L"1.200"};
    m_antenna.ReadRegAnt();
    EXPECT_EQ(m_antenna.RememberedHeights(), wanted);
    m_antenna.SetAntInputH(1.5445);
    m_antenna.WriteRegAnt();
    EXPECT_EQ(m_antenna.GetAntHEx(), L"1.545") << "another number than on the other screens";
}

TEST_F(Settings, KnowAnAntennaWithoutSerialNumber)
{
    for (const wchar_t* serial : {L"A1", L"", L"A1"}) {
        SCOPED_TRACE(serial);
        m_antenna.SetAntSN(serial);
        ASSERT_EQ(m_antenna.WriteRegAnt(), 1);
        m_antenna.SetAntSN(L"X");
        m_antenna.ReadRegAnt();
        EXPECT_EQ(m_antenna.GetAntSN(), serial) << "that of another antenna came back";
        EXPECT_EQ(m_antenna.RememberedSerials(), std::vector<std::wstring>{L"A1"});
    }
}

TEST_F(Settings, AreAsBeforeIfTheyCannotBeWritten)
{
    m_antenna.SetAntInputH(1.5);
    ASSERT_EQ(m_antenna.WriteRegAnt(), 1);
    m_antenna.SetAntTypeFlag(1);
    m_antenna.SetAntInputH(1.7);
    {
        const SettingsBatch other(m_reg.Store()); // whose writer has not finished
        ASSERT_TRUE(other.IsOpen());
        EXPECT_EQ(m_antenna.WriteRegAnt(), 0);
        EXPECT_EQ(m_antenna.RememberedHeights(), std::vector<std::wstring>{L"1.500"});
    }
    EXPECT_EQ(m_antenna.GetAntHEx(), L"1.500");
    EXPECT_EQ(m_antenna.GetAntTypeStrEx(), L"Rim");
    EXPECT_EQ(m_antenna.GetAntInputH(), 1.7) << "what was typed is lost";
    EXPECT_EQ(m_antenna.WriteRegAnt(), 1);
    EXPECT_EQ(m_antenna.GetAntHEx(), L"1.700");
}

TEST_F(Settings, WithstandWhatStandsInTheStore)
{
    constexpr const wchar_t* kKey = L"GPS\\Antenna\\PrmRef";
    m_reg.WriteNumber(kKey, L"AntType", 0xFFFFFFFF);
    m_reg.WriteString(kKey, L"AntWay", L"1");
    m_reg.WriteNumber(kKey, L"AntH0", 7);
    EXPECT_EQ(m_antenna.ReadRegAnt(), 0);
    EXPECT_EQ(m_antenna.GetAntWayFlag(), 0);
    EXPECT_EQ(m_antenna.GetAntFlag(), 0);
    m_reg.WriteString(kKey, L"AntH0", L"-1");
    m_reg.WriteString(kKey, L"AntH1", L"1.2");
    m_antenna.ReadRegAnt();
    EXPECT_EQ(m_antenna.GetAntInputH(), 1.2);
    m_reg.WriteNumber(kKey, L"AntType", 1);
    m_antenna.ReadRegAnt();
    m_reg.DeleteKey(L"", L"GPS"); // between reading and writing
    EXPECT_EQ(m_antenna.WriteRegAnt(), 1);
    EXPECT_EQ(m_antenna.ReadRegAnt(), 1);
    EXPECT_EQ(m_antenna.GetAntTypeFlag(), 1) << "without a catalogue the stored type is lost";
    EXPECT_EQ(m_antenna.SetAntInputH(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(m_antenna.SetAntInputH(-3.0), 1);
    EXPECT_EQ(m_antenna.GetAntInputH(), 0.0);
    EXPECT_EQ(m_antenna.SetAntInputH(0.0), 0) << "nothing changed";
}

TEST_F(Settings, KeepWhatTheCatalogueLacks)
{
    const std::wstring upright = Text(text::kAntennaPhaseCentre);
    using Stored = std::uint32_t;
    using Name = const wchar_t*;
    // What is stored; the two names, what 1.5 m come to, and what is said of the choice.
    const std::tuple<const char*, Stored, Stored, Name, Name, double, int> rows[] = {
        {"all of it is there", 1, 1, L"Small", L"base", 1.52, 0},
        {"a type that is gone", 5, 1, L"", L"", 1.5, text::kAntennaTypeUnknown},
        {"vertical, of a type that is gone", 5, 0, L"", upright.c_str(), 1.5,
         text::kAntennaTypeUnknown},
        {"beyond all types", 0xFFFFFFFF, 1, L"", L"", 1.5, text::kAntennaTypeUnknown},
        {"a method that is gone", 1, 2, L"Small", L"", 1.5, text::kAntennaMethodUnknown},
        {"beyond all methods", 0, 0xFFFFFFFF, L"Rim", L"", 1.5, text::kAntennaMethodUnknown},
        {"another's method under the same name", 11, 2, L"", L"", 1.5, text::kAntennaTypeUnknown},
    };
    constexpr const wchar_t* kKey = L"GPS\\Antenna\\PrmRef";
    m_reg.WriteString(AntennaCatalogue::kKey, L"MeasMethod111", L"0.5,0,0,\"of type 1\"");
    m_antenna.SetAntInputH(1.5);
    ASSERT_EQ(m_antenna.WriteRegAnt(), 1);
    for (const auto& [fault, type, way, name, method, verticalM, choice] : rows) {
        SCOPED_TRACE(fault);
        m_reg.WriteNumber(kKey, L"AntType", type);
        m_reg.WriteNumber(kKey, L"AntWay", way);
        EXPECT_EQ(m_antenna.ReadRegAnt(), 1);
        EXPECT_EQ(m_antenna.GetAntTypeStr(), name);
        EXPECT_EQ(m_antenna.GetAntWayStr(), method);
        EXPECT_DOUBLE_EQ(m_antenna.GetAntCalcH(), verticalM);
        EXPECT_EQ(m_antenna.ChoiceFault(), choice);
        const bool isUnknown = way != 0 && choice != 0;
        EXPECT_EQ(m_antenna.GetAntLine() == FormatText(text::kAntennaStripUnknown, 1.5), isUnknown);
        EXPECT_EQ(m_antenna.WriteRegAnt(), 1);
        std::uint32_t kept = 0;
        m_reg.ReadNumber(kKey, L"AntType", kept, 0);
        EXPECT_EQ(kept, type);
        m_reg.ReadNumber(kKey, L"AntWay", kept, 0);
        EXPECT_EQ(kept, way);
    }
    m_reg.WriteNumber(AntennaCatalogue::kKey, L"MaxCount", 0);
    m_antenna.SetAntWayFlag(0);
    EXPECT_EQ(m_antenna.ChoiceFault(), 0) << "without a catalogue there is no type to choose";
}

/// An antenna block with one thing of it changed.
Bytes Block(std::size_t at = 0, std::uint8_t becomes = 0x08)
{
    Bytes bytes = {0x08, 15,  '0', '1', 'A', 'B', '1',  '2', ' ',
                   ' ',  ' ', ' ', 1,   0,   0,   0x3C, 0x46}; // 15430: 1.543 m
    bytes[at] = becomes;
    return bytes;
}

TEST_F(Settings, AreTakenFromBlocks)
{
    Bytes two = Block();
    two[16] = 0x47;
    const Bytes last = Block();
    two.insert(two.end(), {0x01, 2, 0x08, 15}); // a block of another kind, with a head inside
    two.insert(two.end(), last.begin(), last.end());
    two.insert(two.end(), {0x08, 0xFF, 0x30}); // cut off
    const std::tuple<const char*, Bytes, int> rows[] = {
        {"a good one", Block(), 1},
        {"of another type", Block(0, 0x09), 0},
        {"too short", Block(1, 14), 0},
        {"longer than there is", Block(1, 16), 0},
        {"an unknown antenna", Block(2, 'X'), 0},
        {"a method that it does not have", Block(12, 3), 0},
        {"200 km high", Block(13, 0x77), 0},
        {"control characters in the serial", Block(5, 0x07), 0},
        {"among others, the last one", two, 1},
        {"nothing", {}, 0},
    };
    for (const auto& [fault, bytes, taken] : rows) {
        SCOPED_TRACE(fault);
        m_antenna.SetAntInputH(9.0);
        m_antenna.SetAntSN(L"X");
        EXPECT_EQ(m_antenna.GetAntInfoFromLoggingData(bytes), taken);
        EXPECT_EQ(m_antenna.GetAntInputH(), taken != 0 ? 1.543 : 9.0);
        EXPECT_EQ(m_antenna.GetAntSN(), taken != 0 ? L"AB12" : L"X");
    }
    const Bytes good = Block();
    EXPECT_EQ(m_antenna.SetAntInfo({0x08, std::span(good).subspan(2)}), 1);
    EXPECT_EQ(m_antenna.GetAntWayFlag(), 1);
    EXPECT_EQ(m_antenna.GetAntNo(), 21);
}

TEST_F(Settings, AreTakenFromTheReceiver)
{
    struct Row
    {
        const char* scenario;
        const char* antennaType;
        AntennaSettings::Taken taken;
        const wchar_t* name;
        const char* sent = "A0001";
        const wchar_t* serial = L"A0001";
    };
    using Taken = AntennaSettings::Taken;
    const Row rows[] = {
        {"lark", "01", Taken::Yes, L"Rim"},
        {"lark", "S", Taken::Yes, L"Small"},
        {"lark", "??", Taken::Yes, L"Built-in"},         // by the receiver's type
        {"lark", "01", Taken::Yes, L"Rim", "A_01", L""}, // not that of the antenna before
        {"pica", "??", Taken::NotListed, L"", "A0001", L"OLD"},
    };
    EXPECT_EQ(m_antenna.TakeFromReceiver(), Taken::NoAnswer);
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.scenario) + row.antennaType);
        simulator::Scenario scenario = testing::ShippedScenario(row.scenario);
        scenario.antennaType = row.antennaType;
        scenario.antennaSerial = row.sent;
        testing::VirtualReceiver receiver(scenario);
        receiver.roots.Use(testing::FoldersBelow(m_home.Path()));
        receiver.Open();
        AntennaSettings antenna(&receiver.command, 1, 0);
        antenna.SetAntSN(L"OLD");
        EXPECT_EQ(antenna.TakeFromReceiver(), row.taken);
        EXPECT_EQ(antenna.GetAntTypeStr(), row.name);
        EXPECT_EQ(antenna.GetAntSN(), row.serial);
    }
    EXPECT_EQ(m_antenna.GetAntTypeFromAntNo(7), 1);
    EXPECT_EQ(m_antenna.GetAntTypeFromAntNo(8), -1);
    EXPECT_EQ(m_antenna.GetAntTypeFromAntFlag(0), 21);
}

} // namespace
} // namespace fieldcore
