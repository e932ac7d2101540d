#include "core/link/Command.h"

#include "core/platform/SimulatedPort.h"
#include "simulator/UseSimulator.h"
#include "tests/core/link/FarEnd.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/Hex.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <functional>
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
    std::function<int()> Asking(int (CCommand::*request)(Reply&))
    {
        return [this, request] {
            Reply reply{};
            return (command.*request)(reply);
        };
    }
};

TEST_F(CommandTest, SendsTheseBytes)
{
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

    struct Row
    {
        std::string_view name;
        std::function<int()> send;
        std::string_view request; ///< type and data
    };
    const Row rows[] = {
        {"serial", Asking(&CCommand::RequestSerial), "06"},
        {"status", Asking(&CCommand::RequestStatus), "08"},
        {"wake", [&] { return command.WakeReceiver(); }, "08"},
        {"time", Asking(&CCommand::RequestGpsTime), "14"},
        {"satellites", Asking(&CCommand::RequestSvList), "16"},
        {"satellites tracked",
         [&] { return command.RequestSvList(list, SatelliteListForm::Tracked); }, "16 01"},
        {"satellites in view",
         [&] { return command.RequestSvList(list, SatelliteListForm::InView); }, "16 02"},
        {"site", Asking(&CCommand::RequestSite), "30 12 00"},
        {"host data", [&] { return command.RequestHostData(7, 9); }, "32 07 09"},
        {"position", Asking(&CCommand::RequestPositionStatus), "34"},
        {"battery port", Asking(&CCommand::RequestBatteryPort), "41"},
        {"options", Asking(&CCommand::RequestOptions), "4A"},
        {"extended options", Asking(&CCommand::RequestOptionsEx), "4A 01"},
        {"almanac", [&] { return command.RequestAlmanac(31, almanac); }, "54 02 1F 00"},
        {"satellite data", [&] { return command.RequestSvData(data, false); }, "54 00 00 00"},
        {"longer satellite data", [&] { return command.RequestSvData(data, true); }, "54 00 00 01"},
        {"reset", [&] { return command.RequestReset(); }, "58 FF 02 52 45 53 45 54"},
        {"abort", [&] { return command.SendAbort(); }, "5A 00 00 00 00 00 00 00 00 00"},
        {"set port", [&] { return command.SetReceiverPort(3, port); },
         "5E 03 00 01 C2 00 07 02 02 02 00"},
        {"signals", [&] { return command.SetSignals(signals); }, "53 4E 00 00 00 84 04"},
        {"board signals", [&] { return command.SetBoardSignals(0, 0, 0); }, "A3 00 00 00"},
        {"settings flags", Asking(&CCommand::RequestSettingsFlags), "7A 01 00"},
        {"file state", Asking(&CCommand::RequestFileState), "6B"},
        {"tilt sensor on", [&] { return command.StartTiltSensor(2); },
         "64 00 00 00 03 00 01 00 07 0C 22 01 00 05 00 00 00 00 00 00 00 00"},
        {"tilt sensor off", [&] { return command.StopTiltSensor(3); },
         "64 00 00 00 03 00 01 00 07 05 FF 02 00 00 00"},
        {"tilt reading", Asking(&CCommand::RequestTiltReading), "C8 01 00"},
        {"tilt calibration", Asking(&CCommand::RequestTiltCalibration), "C8 01 01"},
        {"tilt validity", [&] { return command.SetTiltValidity(0x0203); }, "C8 03 02 03"},
        {"start calibration", [&] { return command.StartTiltCalibration(); }, "C8 04"},
        {"cancel calibration", [&] { return command.CancelTiltCalibration(); }, "C8 05"},
        {"tilt speed 0", [&] { return command.SetTiltSpeed(0); }, "C8 0A 16"},
        {"tilt speed 1", [&] { return command.SetTiltSpeed(1); }, "C8 0A 2C"},
        {"tilt speed 2", [&] { return command.SetTiltSpeed(2); }, "C8 0A 58"},
        {"power off", [&] { return command.PowerOff(); }, "84 01 00"},
        {"label", [&] { return command.ShowLabel(1, 0x0203, L"ｱB"); }, "85 01 02 03 00 B1 42"},
        {"list, first Pica", [&] { return command.RequestFiles_Pica(1, 3010, table, nullptr); },
         "79 00 01 01"},
        {"list deleted, second Pica",
         [&] { return command.RequestFiles_Pica(0, 3020, table, nullptr); }, "79 00 00 02"},
        {"list, Lark", [&] { return command.RequestFiles_Lark(L"*.Q01", table, nullptr); },
         "9C 2A 2E 51 30 31 20 20 20 20 20 20 20 20 20"},
        {"exists", [&] { return command.FileExists(L"A.Q1D"); },
         "9C 41 2E 51 31 44 20 20 20 20 20 20 20 20 20"},
        {"delete by index", [&] { return command.DeleteFile_Pica(4); }, "60 00 04"},
        {"recover by index", [&] { return command.RecoverFile_Pica(0x0104); }, "68 01 04"},
        {"delete by name", [&] { return command.DeleteFile_Lark(L"A0314A00.Q01"); },
         "A0 41 30 33 31 34 41 30 30 2E 51 30 31 20 20"},
        {"recover by name", [&] { return command.RecoverFile_Lark(L"A0314A00.Q01"); },
         "A1 41 30 33 31 34 41 30 30 2E 51 30 31 20 20"},
        {"download",
         [&] { return static_cast<int>(command.DownloadFile(folder.Path(), L"A.Q01", 5)); },
         "96 41 2E 51 30 31 20 20 20 20 20 20 20 20 20 00 00 00 00 00 00"},
    };
    // A refusal ends every request at once, so each is sent exactly once.
    const ScriptedEnd receiver(line, std::vector<ScriptedEnd::Answer>(std::size(rows), {{0x15}}));
    Open();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const std::size_t before = receiver.Requests().size();
        row.send();
        const Bytes bytes = testing::Hex(row.request);
        ASSERT_EQ(receiver.Requests().size(), before + 1);
        EXPECT_EQ(receiver.Requests().back(),
                  Frame(bytes[0], Bytes(bytes.begin() + 1, bytes.end())));
    }
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
    struct Row
    {
        std::string_view fault;
        ScriptedEnd::Answer pieces;
        int result;
        std::size_t satellites;
    };
    const Row rows[] = {
        {"frames by themselves lost", {first, second, third}, 1, 3},
        {"frames in one piece lost", {Joined({first, second, third})}, 1, 3},
        {"frames after the last one taken", {Joined({first, early, third})}, 1, 2},
        {"a frame out of order taken", {first, third, second}, 0, 0},
        {"a repeated frame taken", {first, first, second, third}, 0, 0},
        {"a damaged frame taken", {first, damaged, third}, 0, 0},
        {"a missing end waited for without end", {first, second}, 0, 0},
        {"another form taken", {ListFrame(1, 0, true, 5)}, 0, 0},
        {"an acknowledgement in between taken", {first, {0x06}, second}, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const ScriptedEnd receiver(line,
                                   {row.pieces, {Frame(0x09, Ascii("1008000080 1.85    10"))}});
        Open();
        SatelliteList list;
        EXPECT_EQ(command.RequestSvList(list, SatelliteListForm::InView), row.result)
            << command.LastError();
        EXPECT_EQ(list.satellites.size(), row.satellites);
        StatusReply status;
        // A frame behind the last one is nobody's; at worst it is taken for one answer.
        EXPECT_TRUE(command.RequestStatus(status) == 1 ||
                    (row.result == 1 && command.RequestStatus(status) == 1))
            << "what was left of the list spoils the line: " << command.LastError();
    }
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

TEST(SimulatedPort, IsOpenedByNameAndFailuresSayWhatToDo)
{
    struct Row
    {
        const char* port;
        const char* cause; ///< empty: it opens
        const char* advice;
        bool isLinked = true;
    };
    const Row rows[] = {
        {"sim:", "has no simulated receiver", "call fieldcore::UseSimulator()", false},
        {"sim:", "", ""},
        {"sim:pica", "", ""},
        {"sim:nosuch", "no scenario and no file named \"nosuch\"", "scenarios are lark"},
        {"/nowhere/ttyUSB7", "There is no /nowhere/ttyUSB7.", "Try: fieldcore-cli ports"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.port);
        SetSimulatorStarter({});
        if (row.isLinked) {
            UseSimulator();
        }
        CCommand command;
        StatusReply status;
        const bool opens = *row.cause == '\0';
        for (int time = 0; time < 2; ++time) {
            ASSERT_EQ(command.OpenPort(row.port), opens ? 1 : 0) << command.LastError();
            const std::string said = command.LastError();
            EXPECT_NE(said.find(row.cause), std::string::npos) << said;
            EXPECT_NE(said.find(row.advice), std::string::npos) << said;
            EXPECT_EQ(command.RequestStatus(status), opens ? 1 : 0) << command.LastError();
            command.ClosePort();
            EXPECT_EQ(command.RequestStatus(status), 0);
        }
    }
    SetSimulatorStarter({});
}

} // namespace
} // namespace fieldcore
