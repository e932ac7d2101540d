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
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{44, 'r'}})}}), 1);
    EXPECT_STREQ(info.GetRecvType(), L"VX4") << "the type code of one model names it";
    ASSERT_EQ(Read({{{0x15}}}), 0);
    EXPECT_EQ(info.GetRecvTypeNum(), 3024U) << "the options are still known";
    EXPECT_EQ(info.GetRecvType(), nullptr) << "and the identity is not";
    ASSERT_EQ(Read({{Serial("00443")}, {{0x15}}}), 0);
    EXPECT_EQ(requests.size(), 2U) << "it must stop at the first failure";
    EXPECT_EQ(info.GetRecvTypeNum(), 0U);
    EXPECT_STREQ(info.GetRecvSN(), L"S1234567");
}

TEST_F(RecvInfoTest, OptionsByBitAndVersion)
{
    const auto read = [this](OptionBytes options, auto getter, auto... way) {
        EXPECT_EQ(Read({{Serial("00443")}, {Options(options)}}), 1);
        return static_cast<int>(std::invoke(getter, info, way...));
    };
    const auto q02 = [this](const std::string& version, std::uint8_t typeCode) {
        EXPECT_EQ(Read({{Serial(version)}, {Options({{44, typeCode}})}}), 1);
        return info.GetQ02Format();
    };
    constexpr int kIn = CRecvInfo::Input;
    constexpr int kOut = CRecvInfo::Output;
    EXPECT_EQ(read({{46, 0x10}}, &CRecvInfo::GetFileNaming), 1);
    EXPECT_EQ(read({{8, 2}}, &CRecvInfo::GetL1L2Option), 1);
    EXPECT_EQ(read({{8, 3}}, &CRecvInfo::GetL2), 0);
    EXPECT_EQ(read({{40, 8}}, &CRecvInfo::GetRtkSurvey), 1);
    EXPECT_EQ(read({{42, 0x08}}, &CRecvInfo::GetRtkOTF), 1);
    EXPECT_EQ(read({{42, 0xDF}}, &CRecvInfo::GetCMR, kIn), 1) << "bit clear";
    EXPECT_EQ(read({{42, 0x20}}, &CRecvInfo::GetCMR, kIn), 0) << "bit set";
    EXPECT_EQ(read({{42, 0xBF}}, &CRecvInfo::GetCMR, kOut), 1) << "bit clear";
    EXPECT_EQ(read({{42, 0x40}}, &CRecvInfo::GetCMR, kOut), 0) << "bit set";
    EXPECT_EQ(read({{46, 0x04}}, &CRecvInfo::GetCMRp), 1);
    EXPECT_EQ(read({{48, 0x10}}, &CRecvInfo::GetRtkVRS), 1);
    EXPECT_EQ(read({{19, 7}}, &CRecvInfo::GetRTCM1, kIn), 7);
    EXPECT_EQ(read({{21, 1}}, &CRecvInfo::GetRTCM1, kOut), 1);
    EXPECT_EQ(read({{21, 2}}, &CRecvInfo::GetRTCM1, kOut), 0) << "of version bits";
    EXPECT_EQ(read({{20, 5}}, &CRecvInfo::GetRTCM2, kIn), 5);
    EXPECT_EQ(read({{22, 6}}, &CRecvInfo::GetRTCM2, kOut), 6);
    EXPECT_EQ(read({{43, 0x02}}, &CRecvInfo::GetRTCM21, kIn), 1);
    EXPECT_EQ(read({{43, 0x04}}, &CRecvInfo::GetRTCM21, kOut), 1);
    EXPECT_EQ(read({{46, 0x40}}, &CRecvInfo::GetRTCM22), 1);
    EXPECT_EQ(read({{21, 0x02}}, &CRecvInfo::GetRTCM23), 1);
    EXPECT_EQ(read({{21, 0x04}}, &CRecvInfo::GetRTCM30), 1);
    EXPECT_EQ(read({{45, 0x10}}, &CRecvInfo::GetBlueTooth), 1);
    EXPECT_EQ(read({{48, 0x02}}, &CRecvInfo::Get2HzLogging), 2) << "masked";
    EXPECT_EQ(read({{42, 0x80}}, &CRecvInfo::GetSolace), 128) << "masked";
    EXPECT_EQ(q02("00442", 0), 0);
    EXPECT_EQ(q02("00443", 0), 1);
    EXPECT_EQ(q02("00100", 'G'), 1) << "G needs no version";
    for (const std::uint8_t without : {',', '3', '5', '@', 'r'}) {
        EXPECT_EQ(q02("00443", without), 0) << without;
    }
    EXPECT_EQ(q02("00443", '4'), 1);
}

TEST_F(RecvInfoTest, ExtendedOptionsNeedTheirBlock)
{
    // CMRx counts only with the Solace board; the extended rate comes before the other one.
    const Bytes extended = Extended({{28, 0x30}, {31, 0x03}, {33, 50}});
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{5, 7}, {42, 0x80}, {48, 0x80}})}, {extended}}),
              1);
    EXPECT_EQ(info.GetCMRxInput(), 1);
    EXPECT_EQ(info.GetMaxLoggingRate(), 50U);
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{5, 7}, {48, 0x80}})}, {extended}}), 1);
    EXPECT_EQ(info.GetCMRxInput(), 0);
    ASSERT_EQ(Read({{Serial("00443")}, {Options({{5, 7}, {48, 0x80}})}, {Extended({})}}), 1);
    EXPECT_EQ(info.GetMaxLoggingRate(), 700U) << "a rate of 0 is none";
    const auto read = [this](OptionBytes bytes, auto getter) {
        EXPECT_EQ(Read({{Serial("00443")}, {Options({{42, 0x80}, {48, 0x80}})}, {Extended(bytes)}}),
                  1);
        return static_cast<int>(std::invoke(getter, info));
    };
    EXPECT_EQ(read({{8, 0x20}}, &CRecvInfo::GetL5), 1);
    EXPECT_EQ(read({{9, 0x20}}, &CRecvInfo::GetL2C), 1);
    EXPECT_EQ(read({{15, 0x01}}, &CRecvInfo::GetGLONASS), 1);
    EXPECT_EQ(read({{13, 0x08}}, &CRecvInfo::GetGalileo), 1);
    EXPECT_EQ(read({{13, 0x80}}, &CRecvInfo::GetGalileo), 1);
    EXPECT_EQ(read({{19, 0x04}}, &CRecvInfo::GetQZSS), 1);
    EXPECT_EQ(read({{19, 0x02}}, &CRecvInfo::GetTilt), 1);
    EXPECT_EQ(read({{28, 0x40}}, &CRecvInfo::GetMeridian), 1);
    EXPECT_EQ(read({{28, 0x10}, {31, 0x01}}, &CRecvInfo::GetCMRxInput), 1);
    EXPECT_EQ(read({{28, 0x20}, {31, 0x01}}, &CRecvInfo::GetCMRxOutput), 1);
    EXPECT_EQ(read({{28, 0xFF}, {31, 0x02}}, &CRecvInfo::GetCMRxOutput), 0) << "it does not count";
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
    CCommand command;
    CConnect connect(command, 0, ConnectTarget{});
    connect.SupportAllTypes();
    const auto expectType = [&](std::uint32_t number, double minimum, int flag,
                                const std::wstring& name) {
        SCOPED_TRACE(number);
        EXPECT_EQ(connect.stGetRecvVer(number), minimum);
        EXPECT_EQ(connect.stGetRecvTypeFlag(number), flag);
        EXPECT_EQ(connect.stCreateWarMes(number),
                  L"本ソフトウェアでは[ " + name + L" ]受信機をサポートしておりません。");
    };
    expectType(2010, 1.0, 1, L"2010");
    expectType(2030, 1.3, 1, L"2030");
    expectType(2050, 9.99, 0, L"2050");
    expectType(3010, 1.23, 1, L"3010");
    expectType(3012, 1.0, 1, L"Corvane VX1 GNSS");
    expectType(3028, 2.03, 1, L"Corvane VX2");
    expectType(3051, 1.0, 1, L"Corvane VX9s");
    expectType(3052, 9.99, 0, L"3052"); // in no table
    connect.SetRecvTypeFlag(3017, 0);
    connect.SetRecvTypeFlag(2040, 1);
    EXPECT_EQ(connect.stGetRecvTypeFlag(3017), 0);
    EXPECT_EQ(connect.stGetRecvTypeFlag(2040), 0) << "a type that can never be supported";
}

} // namespace
} // namespace fieldcore
