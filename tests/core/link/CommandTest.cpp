#include "core/link/Command.h"

#include "tests/core/link/FarEnd.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/Hex.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

class CommandTest : public ::testing::Test, protected testing::VirtualChannel
{
protected:
    /// A request whose reply does not matter.
    template <typename Reply>
    int Ask(int (CCommand::*request)(Reply&))
    {
        Reply reply{};
        return (command.*request)(reply);
    }
};

TEST_F(CommandTest, SendsTheseBytes)
{
    // A refusal ends every request at once, so each is sent exactly once.
    const ScriptedEnd receiver(line, [](const Bytes&) { return ScriptedEnd::Answer{{kNak}}; });
    std::size_t count = 0;
    const auto expectSent = [&](std::string_view typeAndData, std::int64_t /*result*/) {
        SCOPED_TRACE(typeAndData);
        const Bytes bytes = Hex(typeAndData);
        ASSERT_EQ(receiver.Requests().size(), ++count);
        EXPECT_EQ(receiver.Requests().back(),
                  Frame(bytes[0], Bytes(bytes.begin() + 1, bytes.end())));
    };
    SatelliteList list;
    AlmanacReply almanac;
    SatelliteDataReply data;
    DirectoryTable table{};
    PortSettings port;
    port.baudRate = 115200;
    port.byteSize = 7;
    port.parity = 2;
    port.stopBits = 2;
    port.flowControl = FlowControl::RtsCts;
    const Bytes signals{0x4E, 0x00, 0x00, 0x00, 0x84, 0x04};
    const TemporaryFolder folder;
    Open();
    expectSent("06", Ask(&CCommand::RequestSerial));
    expectSent("08", Ask(&CCommand::RequestStatus));
    expectSent("08", command.WakeReceiver());
    expectSent("14", Ask(&CCommand::RequestGpsTime));
    expectSent("16", Ask(&CCommand::RequestSvList));
    expectSent("16 01", command.RequestSvList(list, SatelliteListForm::Tracked));
    expectSent("16 02", command.RequestSvList(list, SatelliteListForm::InView));
    expectSent("30 12 00", Ask(&CCommand::RequestSite));
    expectSent("32 07 09", command.RequestHostData(7, 9));
    expectSent("34", Ask(&CCommand::RequestPositionStatus));
    expectSent("41", Ask(&CCommand::RequestBatteryPort));
    expectSent("4A", Ask(&CCommand::RequestOptions));
    expectSent("4A 01", Ask(&CCommand::RequestOptionsEx));
    expectSent("54 02 1F 00", command.RequestAlmanac(31, almanac));
    expectSent("54 00 00 00", command.RequestSvData(data, false));
    expectSent("54 00 00 01", command.RequestSvData(data, true));
    expectSent("58 FF 02 52 45 53 45 54", command.RequestReset());
    expectSent("5A 00 00 00 00 00 00 00 00 00", command.SendAbort());
    expectSent("5E 03 00 01 C2 00 07 02 02 02 00", command.SetReceiverPort(3, port));
    expectSent("53 4E 00 00 00 84 04", command.SetSignals(signals));
    expectSent("A3 00 00 00", command.SetBoardSignals(0, 0, 0));
    expectSent("7A 01 00", Ask(&CCommand::RequestSettingsFlags));
    expectSent("6B", Ask(&CCommand::RequestFileState));
    expectSent("64 00 00 00 03 00 01 00 07 0C 22 01 00 05 00 00 00 00 00 00 00 00",
               command.StartTiltSensor(2));
    expectSent("64 00 00 00 03 00 01 00 07 05 FF 02 00 00 00", command.StopTiltSensor(3));
    expectSent("C8 01 00", Ask(&CCommand::RequestTiltReading));
    expectSent("C8 01 01", Ask(&CCommand::RequestTiltCalibration));
    expectSent("C8 03 02 03", command.SetTiltValidity(0x0203));
    expectSent("C8 04", command.StartTiltCalibration());
    expectSent("C8 05", command.CancelTiltCalibration());
    expectSent("C8 0A 16", command.SetTiltSpeed(0));
    expectSent("C8 0A 2C", command.SetTiltSpeed(1));
    expectSent("C8 0A 58", command.SetTiltSpeed(2));
    expectSent("84 01 00", command.PowerOff());
    expectSent("85 01 02 03 00 B1 42", command.ShowLabel(1, 0x0203, L"ｱB"));
    expectSent("79 00 01 01", command.RequestFiles_Pica(1, 3010, table, nullptr));
    expectSent("79 00 00 02", command.RequestFiles_Pica(0, 3020, table, nullptr));
    expectSent("9C 2A 2E 51 30 31 20 20 20 20 20 20 20 20 20",
               command.RequestFiles_Lark(L"*.Q01", table, nullptr));
    expectSent("9C 41 2E 51 31 44 20 20 20 20 20 20 20 20 20", command.FileExists(L"A.Q1D"));
    expectSent("60 00 04", command.DeleteFile_Pica(4));
    expectSent("68 01 04", command.RecoverFile_Pica(0x0104));
    expectSent("A0 41 30 33 31 34 41 30 30 2E 51 30 31 20 20",
               command.DeleteFile_Lark(L"A0314A00.Q01"));
    expectSent("A1 41 30 33 31 34 41 30 30 2E 51 30 31 20 20",
               command.RecoverFile_Lark(L"A0314A00.Q01"));
    expectSent("96 41 2E 51 30 31 20 20 20 20 20 20 20 20 20 00 00 00 00 00 00",
               command.DownloadFile(folder.Path(), L"A.Q01", 5));
}

TEST_F(CommandTest, AnAnswerOfAnotherTypeFailsTheRequest)
{
    const ScriptedEnd receiver(line, {{Frame(0x15, Bytes(60, '1'))}, {Frame(0x55, Bytes(60, 0))}});
    Open();
    StatusReply status;
    status.batteryPercent = -7;
    EXPECT_EQ(command.RequestStatus(status), 0);
    EXPECT_EQ(command.GetLastResult(), 1) << "the exchange itself went well";
    EXPECT_EQ(command.Fault(), CommandFault::WrongType);
    EXPECT_NE(command.LastError().find("0x15"), std::string::npos) << command.LastError();
    EXPECT_EQ(status.batteryPercent, -7) << "a failed request must not touch its result";
    EXPECT_EQ(command.RequestHostData(1, 2), 0);
}

/// A frame of a list in several frames, with one satellite.
Bytes ListFrame(std::uint8_t form, std::uint8_t number, bool last, std::uint8_t satellite)
{
    return Frame(0x17, {form, number, std::uint8_t{last}, 0x01, 1, satellite, 90, 45, 160});
}

TEST_F(CommandTest, CollectsAListInSeveralFrames)
{
    const Bytes first = ListFrame(2, 0, false, 5);
    const Bytes second = ListFrame(2, 1, false, 6);
    const Bytes third = ListFrame(2, 2, true, 7);
    const Bytes early = ListFrame(2, 1, true, 8);
    Bytes damaged = second;
    damaged[6] ^= 0x10;
    const auto listed = [this](const ScriptedEnd::Answer& pieces) {
        const ScriptedEnd receiver(line, {pieces, {Frame(0x09, Ascii("1008000080 1.85    10"))}});
        Open();
        SatelliteList list;
        const bool isWhole = command.RequestSvList(list, SatelliteListForm::InView) == 1;
        EXPECT_TRUE(isWhole || list.satellites.empty());
        StatusReply status;
        // A frame behind the last one is nobody's; at worst it is taken for one answer.
        EXPECT_TRUE(command.RequestStatus(status) == 1 ||
                    (isWhole && command.RequestStatus(status) == 1))
            << "what was left of the list spoils the line: " << command.LastError();
        return isWhole ? std::ssize(list.satellites) : -1;
    };
    EXPECT_EQ(listed({first, second, third}), 3) << "frames by themselves lost";
    EXPECT_EQ(listed({Joined({first, second, third})}), 3) << "frames in one piece lost";
    EXPECT_EQ(listed({Joined({first, early, third})}), 2) << "frames after the last one taken";
    EXPECT_EQ(listed({first, third, second}), -1) << "a frame out of order taken";
    EXPECT_EQ(listed({first, first, second, third}), -1) << "a repeated frame taken";
    EXPECT_EQ(listed({first, damaged, third}), -1) << "a damaged frame taken";
    EXPECT_EQ(listed({first, second}), -1) << "a missing end waited for without end";
    EXPECT_EQ(listed({ListFrame(1, 0, true, 5)}), -1) << "another form taken";
    EXPECT_EQ(listed({first, {0x06}, second}), -1) << "an acknowledgement in between taken";
}

TEST_F(CommandTest, EndsAnEndlessList)
{
    const ScriptedEnd receiver(line, [](const Bytes&) {
        Bytes all;
        for (int i = 0; i < 1000; ++i) {
            const Bytes next = ListFrame(2, static_cast<std::uint8_t>(i), false, 5);
            all.insert(all.end(), next.begin(), next.end());
        }
        return ScriptedEnd::Answer{all};
    });
    Open();
    SatelliteList list;
    EXPECT_EQ(command.RequestSvList(list, SatelliteListForm::InView), 0);
    EXPECT_EQ(receiver.Requests().size(), 1U);
}

TEST_F(CommandTest, IdentifiesAfterABreak)
{
    const auto faultOf = [this](const Bytes& answer) {
        const ScriptedEnd receiver(line, {{answer}});
        Open();
        IdentificationRecord record;
        const bool isRead = command.RequestIdentity(record) == 1;
        EXPECT_EQ(isRead, command.Fault() == CommandFault::None);
        EXPECT_EQ(receiver.Requests(), (std::vector<Bytes>{{0x00}})) << "a BREAK is sent once";
        return command.Fault();
    };
    const Bytes text = Ascii("ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,");
    Bytes damaged = Frame(0x6E, text);
    damaged[10] ^= 1;
    EXPECT_EQ(faultOf(Frame(0x6E, text)), CommandFault::None);
    EXPECT_EQ(faultOf(damaged), CommandFault::BadChecksum);
    EXPECT_EQ(faultOf(Frame(0x09, text)), CommandFault::WrongType);
    EXPECT_EQ(faultOf({0x06}), CommandFault::WrongAnswer);
    EXPECT_EQ(faultOf({}), CommandFault::TimedOut);
}

} // namespace
} // namespace fieldcore
