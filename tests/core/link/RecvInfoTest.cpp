#include "core/link/RecvInfo.h"

#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/link/ReceiverTypes.h"
#include "tests/core/link/FarEnd.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <functional>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

Bytes Serial(const std::string& navVersion)
{
    return Frame(0x07, Ascii("S1234567VX1     " + navVersion + "0034500120ANT00007AT0000"));
}

using OptionBytes = std::initializer_list<std::pair<std::size_t, std::uint8_t>>; // place, value

Bytes Options(OptionBytes bytes, Bytes data = Bytes(51, 0))
{
    for (const auto& [at, value] : bytes) {
        data[at] = value;
    }
    return Frame(0x4B, data);
}

Bytes Extended(OptionBytes bytes)
{
    return Options(bytes, testing::Joined({{'['}, Bytes(33, 0)}));
}

class RecvInfoTest : public ::testing::Test, protected testing::VirtualChannel
{
protected:
    /// What @p ask answers with a receiver that answers so.
    template <typename Ask>
    auto Asked(std::vector<ScriptedEnd::Answer> answers, Ask ask)
    {
        const ScriptedEnd receiver(line, std::move(answers));
        Open();
        const auto result = ask();
        command.ClosePort();
        requests = receiver.Requests();
        return result;
    }
    /// Reads everything.
    int Read(std::vector<ScriptedEnd::Answer> answers)
    {
        return Asked(std::move(answers), [this] { return info.GetOptionData(command); });
    }

    CRecvInfo info;
    std::vector<Bytes> requests;
};

TEST_F(RecvInfoTest, AFreshOneKnowsNothing)
{
    EXPECT_EQ(info.GetRecvSN(), nullptr);
    EXPECT_EQ(info.GetRecvType(), nullptr);
    EXPECT_EQ(info.GetNavVer(), 0.0);
    EXPECT_EQ(info.GetRecvTypeNum(), 0U);
    EXPECT_EQ(info.GetCurrentPortID(), 1);
    EXPECT_EQ(info.GetPortsAvailable(), 1);
    EXPECT_EQ(info.GetCMR(CRecvInfo::Input), 0) << "clear bits that were never read are no option";
    EXPECT_EQ(info.GetOptionData(command), 1) << "without a port nothing is asked";
    EXPECT_EQ(info.GetRecvSN(), nullptr);
}

TEST_F(RecvInfoTest, ReadsAllThreeBlocks)
{
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{44, '2'}, {48, 0x80}})}, {Extended({{15, 1}})}}),
              1);
    EXPECT_EQ(requests, (std::vector{Frame(0x06), Frame(0x4A), Frame(0x4A, {1})}));
    EXPECT_STREQ(info.GetRecvSN(), L"S1234567");
    EXPECT_STREQ(info.GetRecvSNLong(), L"S1234567");
    EXPECT_STREQ(info.GetRecvType(), L"VX1");
    EXPECT_EQ(info.GetNavVer(), 4.43);
    EXPECT_EQ(info.GetSigVer(), 3.45);
    EXPECT_EQ(info.GetBootVer(), 1.2);
    EXPECT_EQ(info.GetRecvTypeNum(), 3012U);
    EXPECT_EQ(info.GetGLONASS(), 1);
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{44, '2'}, {48, 0x7F}})}}), 1);
    EXPECT_EQ(requests.size(), 2U) << "an older one was asked for more";
    EXPECT_EQ(info.GetGLONASS(), 0);
}

TEST_F(RecvInfoTest, AFailureForgetsTheBlock)
{
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{44, '2'}, {48, 0x80}})}, {Extended({{15, 1}})}}),
              1);
    ASSERT_EQ(Read({{Serial("00443")}, {{0x15}}}), 0);
    EXPECT_EQ(requests.size(), 2U) << "it must stop at the first failure";
    EXPECT_EQ(info.GetRecvTypeNum(), 0U);
    EXPECT_STREQ(info.GetRecvSN(), L"S1234567");
    ASSERT_EQ(Read({{{0x15}}}), 0);
    EXPECT_EQ(info.GetRecvSN(), nullptr);
}

TEST_F(RecvInfoTest, OptionsByBitAndVersion)
{
    struct Row
    {
        std::string_view option;
        Bytes options;
        std::function<int(const CRecvInfo&)> get;
        int value;
        std::string version = "00443";
    };
    const auto way = [](int (CRecvInfo::*getter)(int) const, int which) {
        return [getter, which](const CRecvInfo& i) { return (i.*getter)(which); };
    };
    const auto q02 = &CRecvInfo::GetQ02Format;
    constexpr int kIn = CRecvInfo::Input;
    constexpr int kOut = CRecvInfo::Output;
    const Row rows[] = {
        {"port", Options({{6, 3}}), &CRecvInfo::GetCurrentPortID, 3},
        {"ports", Options({{7, 4}}), &CRecvInfo::GetPortsAvailable, 4},
        {"memory", Options({{29, 1}, {30, 2}}), &CRecvInfo::GetRecvMemory, 258},
        {"file naming", Options({{46, 0x10}}), &CRecvInfo::GetFileNaming, 1},
        {"L1 and L2", Options({{8, 2}}), &CRecvInfo::GetL1L2Option, 1},
        {"L1 only", Options({{8, 3}}), &CRecvInfo::GetL2, 0},
        {"RTK survey", Options({{40, 8}}), &CRecvInfo::GetRtkSurvey, 1},
        {"OTF", Options({{42, 0x08}}), &CRecvInfo::GetRtkOTF, 1},
        {"NMEA", Options({{18, 9}}), &CRecvInfo::GetNMEA, 9},
        {"CMR in, bit clear", Options({{42, 0xDF}}), way(&CRecvInfo::GetCMR, kIn), 1},
        {"CMR in, bit set", Options({{42, 0x20}}), way(&CRecvInfo::GetCMR, kIn), 0},
        {"CMR out, bit clear", Options({{42, 0xBF}}), way(&CRecvInfo::GetCMR, kOut), 1},
        {"CMR out, bit set", Options({{42, 0x40}}), way(&CRecvInfo::GetCMR, kOut), 0},
        {"CMR+", Options({{46, 0x04}}), &CRecvInfo::GetCMRp, 1},
        {"VRS", Options({{48, 0x10}}), &CRecvInfo::GetRtkVRS, 1},
        {"RTCM 1 in", Options({{19, 7}}), way(&CRecvInfo::GetRTCM1, kIn), 7},
        {"RTCM 1 out", Options({{21, 1}}), way(&CRecvInfo::GetRTCM1, kOut), 1},
        {"RTCM 1 out, of version bits", Options({{21, 2}}), way(&CRecvInfo::GetRTCM1, kOut), 0},
        {"RTCM 2 in", Options({{20, 5}}), way(&CRecvInfo::GetRTCM2, kIn), 5},
        {"RTCM 2 out", Options({{22, 6}}), way(&CRecvInfo::GetRTCM2, kOut), 6},
        {"RTCM 2.1 in", Options({{43, 0x02}}), way(&CRecvInfo::GetRTCM21, kIn), 1},
        {"RTCM 2.1 out", Options({{43, 0x04}}), way(&CRecvInfo::GetRTCM21, kOut), 1},
        {"RTCM 2.2", Options({{46, 0x40}}), &CRecvInfo::GetRTCM22, 1},
        {"RTCM 2.3", Options({{21, 0x02}}), &CRecvInfo::GetRTCM23, 1},
        {"RTCM 3.0", Options({{21, 0x04}}), &CRecvInfo::GetRTCM30, 1},
        {"Bluetooth", Options({{45, 0x10}}), &CRecvInfo::GetBlueTooth, 1},
        {"2 Hz, masked", Options({{48, 0x02}}), &CRecvInfo::Get2HzLogging, 2},
        {"Solace, masked", Options({{42, 0x80}}), &CRecvInfo::GetSolace, 128},
        {"rate in hundreds", Options({{4, 0xFF}, {5, 0xFF}}), &CRecvInfo::GetMaxLoggingRate,
         6553500},
        {"Q02: 4.42 taken", Options({}), q02, 0, "00442"},
        {"Q02: 4.43 refused", Options({}), q02, 1},
        {"Q02: G needs no version", Options({{44, 'G'}}), q02, 1, "00100"},
        {"Q02: comma taken", Options({{44, ','}}), q02, 0},
        {"Q02: 3 taken", Options({{44, '3'}}), q02, 0},
        {"Q02: 5 taken", Options({{44, '5'}}), q02, 0},
        {"Q02: @ taken", Options({{44, '@'}}), q02, 0},
        {"Q02: r taken", Options({{44, 'r'}}), q02, 0},
        {"Q02: 4 refused", Options({{44, '4'}}), q02, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.option);
        ASSERT_EQ(Read({{Serial(row.version)}, {row.options}}), 1);
        EXPECT_EQ(row.get(info), row.value);
    }
}

TEST_F(RecvInfoTest, ExtendedOptionsNeedTheirBlock)
{
    // CMRx counts only with the Solace board; the extended rate comes before the other one.
    const Bytes extended = Extended({{28, 0x30}, {31, 0x03}, {33, 50}});
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{5, 7}, {42, 0x80}, {48, 0x80}})}, {extended}}),
              1);
    EXPECT_EQ(info.GetCMRxInput(), 1);
    EXPECT_EQ(info.GetCMRxOutput(), 1);
    EXPECT_EQ(info.GetMaxLoggingRate(), 50U);
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{5, 7}, {48, 0x80}})}, {extended}}), 1);
    EXPECT_EQ(info.GetCMRxInput(), 0);
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{5, 7}, {48, 0x80}})}, {Extended({})}}), 1);
    EXPECT_EQ(info.GetMaxLoggingRate(), 700U) << "a rate of 0 is none";
}

TEST_F(RecvInfoTest, TypeCodeOfOneModelNamesIt)
{
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{44, 'r'}})}}), 1);
    EXPECT_STREQ(info.GetRecvType(), L"VX4");
    EXPECT_EQ(info.GetRecvTypeNum(), 3024U);
    ASSERT_EQ(Read({{{0x15}}}), 0);
    EXPECT_EQ(info.GetRecvTypeNum(), 3024U) << "the options are still known";
    EXPECT_EQ(info.GetRecvType(), nullptr) << "and the identity is not";
}

TEST_F(RecvInfoTest, FreeFunctionsTryFiveTimes)
{
    const ScriptedEnd::Answer serial{Serial("00443")};
    const ScriptedEnd::Answer options{Options({{44, '2'}})};
    const ScriptedEnd::Answer nak{{0x15}};
    EXPECT_EQ(Asked({nak, serial, nak, nak, nak, serial, options},
                    [this] { return GetRecvTypeNum(command); }),
              3012U);
    EXPECT_EQ(
        Asked({nak, nak, nak, nak, nak, serial, options}, [this] { return GetRecvVer(command); }),
        0.0);
    EXPECT_EQ(requests.size(), 5U);
}

TEST(ReceiverTypes, NumberOfEveryCode)
{
    constexpr std::pair<int, std::uint32_t> kRows[] = {
        {1, 2010},   {5, 2010},   {6, 2050},   {7, 2020},   {8, 2010},   {9, 2040},   {24, 2030},
        {27, 3020},  {31, 3017},  {32, 3028},  {44, 3022},  {48, 3034},  {50, 3012},  {51, 3026},
        {52, 3044},  {53, 3036},  {64, 3021},  {69, 3011},  {71, 3022},  {76, 3050},  {80, 3040},
        {100, 3030}, {114, 3024}, {115, 3015}, {136, 3046}, {151, 3042}, {152, 3038}, {168, 3051},
        {0, 3010},   {10, 3010},  {23, 3010},  {25, 3010},  {30, 3010},  {255, 3010},
    };
    for (const auto& [code, number] : kRows) {
        EXPECT_EQ(TypeNumberOfCode(static_cast<std::uint8_t>(code), 0), number) << code;
    }
    EXPECT_EQ(TypeNumberOfCode(0, 310), 3032U);
    EXPECT_EQ(TypeNumberOfCode(1, 310), 2010U);
}

TEST(ReceiverTypes, MinimaFlagsAndNames)
{
    struct Row
    {
        std::uint32_t number;
        double minimum;
        bool hasFlag;
        std::wstring_view named;
    };
    constexpr Row kRows[] = {
        {2010, 1.0, true, L"2010"},
        {2030, 1.3, true, L"2030"},
        {2050, 9.99, false, L"2050"},
        {3010, 1.23, true, L"3010"},
        {3012, 1.0, true, L"Corvane VX1 GNSS"},
        {3028, 2.03, true, L"Corvane VX2"},
        {3051, 1.0, true, L"Corvane VX9s"},
        {3052, 9.99, false, L"3052"}, // in no table
    };
    CCommand command;
    CConnect connect(command, 0, ConnectTarget{});
    connect.SupportAllTypes();
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.number);
        EXPECT_EQ(connect.stGetRecvVer(row.number), row.minimum);
        EXPECT_EQ(connect.stGetRecvTypeFlag(row.number), row.hasFlag ? 1 : 0);
        EXPECT_EQ(connect.stCreateWarMes(row.number), L"本ソフトウェアでは[ " +
                                                          std::wstring(row.named) +
                                                          L" ]受信機をサポートしておりません。");
    }
    SupportedTypeFlags none;
    none.Set(2040, 1);
    EXPECT_EQ(none.Get(2040), 0) << "a type that can never be supported";
    none.Set(3017, 1);
    EXPECT_EQ(none.Get(3017), 1);
    EXPECT_EQ(none.Get(3012), 0);
}

} // namespace
} // namespace fieldcore
