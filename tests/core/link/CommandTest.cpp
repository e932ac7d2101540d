#include "core/link/Command.h"

#include "core/platform/SimulatedPort.h"
#include "simulator/UseSimulator.h"
#include "tests/core/link/FarEnd.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <functional>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Ascii;
using testing::Bytes;
using testing::Frame;
using testing::Joined;
using testing::ScriptedEnd;

class CommandTest : public ::testing::Test, protected testing::VirtualChannel
{};

TEST_F(CommandTest, SendsTheseBytes)
{
    SerialReply serial;
    StatusReply status;
    GpsTimeReply time;
    SatelliteList list;
    SiteReply site;
    PositionStatusReply position;
    int source = 0;
    OptionsReply options;
    ExtendedOptionsReply extended;
    AlmanacReply almanac;
    SatelliteDataReply data;
    SettingsFlags flags{};
    TiltReading tilt;
    TiltCalibration calibration;
    PortSettings port;
    port.baudRate = 115200;
    port.byteSize = 7;
    port.parity = 2;
    port.stopBits = 2;
    port.flowControl = FlowControl::RtsCts;
    const Bytes signals{0x4E, 0x00, 0x00, 0x00, 0x84, 0x04};

    struct Row
    {
        std::string_view name;
        std::function<int()> send;
        Bytes request;
    };
    const Row rows[] = {
        {"serial", [&] { return command.RequestSerial(serial); }, {2, 0, 0x06, 0, 0x06, 3}},
        {"status", [&] { return command.RequestStatus(status); }, {2, 0, 0x08, 0, 0x08, 3}},
        {"wake", [&] { return command.WakeReceiver(); }, {2, 0, 0x08, 0, 0x08, 3}},
        {"time", [&] { return command.RequestGpsTime(time); }, {2, 0, 0x14, 0, 0x14, 3}},
        {"satellites", [&] { return command.RequestSvList(list); }, {2, 0, 0x16, 0, 0x16, 3}},
        {"satellites tracked",
         [&] { return command.RequestSvList(list, SatelliteListForm::Tracked); },
         {2, 0, 0x16, 1, 1, 0x18, 3}},
        {"satellites in view",
         [&] { return command.RequestSvList(list, SatelliteListForm::InView); },
         {2, 0, 0x16, 1, 2, 0x19, 3}},
        {"site", [&] { return command.RequestSite(site); }, {2, 0, 0x30, 2, 18, 0, 0x44, 3}},
        {"host data",
         [&] { return command.RequestHostData(7, 9); },
         {2, 0, 0x32, 2, 7, 9, 0x44, 3}},
        {"position",
         [&] { return command.RequestPositionStatus(position); },
         {2, 0, 0x34, 0, 0x34, 3}},
        {"battery port",
         [&] { return command.RequestBatteryPort(source); },
         {2, 0, 0x41, 0, 0x41, 3}},
        {"options", [&] { return command.RequestOptions(options); }, {2, 0, 0x4A, 0, 0x4A, 3}},
        {"extended options",
         [&] { return command.RequestOptionsEx(extended); },
         {2, 0, 0x4A, 1, 1, 0x4C, 3}},
        {"almanac",
         [&] { return command.RequestAlmanac(31, almanac); },
         {2, 0, 0x54, 3, 2, 31, 0, 0x78, 3}},
        {"satellite data",
         [&] { return command.RequestSvData(data, false); },
         {2, 0, 0x54, 3, 0, 0, 0, 0x57, 3}},
        {"longer satellite data",
         [&] { return command.RequestSvData(data, true); },
         {2, 0, 0x54, 3, 0, 0, 1, 0x58, 3}},
        {"reset",
         [&] { return command.RequestReset(); },
         {2, 0, 0x58, 7, 0xFF, 2, 0x52, 0x45, 0x53, 0x45, 0x54, 0xE3, 3}},
        {"abort",
         [&] { return command.SendAbort(); },
         {2, 0, 0x5A, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x63, 3}},
        {"set port",
         [&] { return command.SetReceiverPort(3, port); },
         {2, 0, 0x5E, 10, 3, 0x00, 0x01, 0xC2, 0x00, 7, 2, 2, 2, 0, 0x3B, 3}},
        {"signals",
         [&] { return command.SetSignals(signals); },
         {2, 0, 0x53, 6, 0x4E, 0, 0, 0, 0x84, 4, 0x2F, 3}},
        {"board signals",
         [&] { return command.SetBoardSignals(0, 0, 0); },
         {2, 0, 0xA3, 3, 0, 0, 0, 0xA6, 3}},
        {"settings flags",
         [&] { return command.RequestSettingsFlags(flags); },
         {2, 0, 0x7A, 2, 1, 0, 0x7D, 3}},
        {"file state", [&] { return command.RequestFileState(status); }, {2, 0, 0x6B, 0, 0x6B, 3}},
        {"tilt sensor on", [&] { return command.StartTiltSensor(2); },
         Frame(0x64, {0, 0, 0, 3, 0, 1, 0, 7, 12, 34, 1, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0})},
        {"tilt sensor off", [&] { return command.StopTiltSensor(3); },
         Frame(0x64, {0, 0, 0, 3, 0, 1, 0, 7, 5, 255, 2, 0, 0, 0})},
        {"tilt reading",
         [&] { return command.RequestTiltReading(tilt); },
         {2, 0, 0xC8, 2, 1, 0, 0xCB, 3}},
        {"tilt calibration",
         [&] { return command.RequestTiltCalibration(calibration); },
         {2, 0, 0xC8, 2, 1, 1, 0xCC, 3}},
        {"tilt validity",
         [&] { return command.SetTiltValidity(0x0203); },
         {2, 0, 0xC8, 3, 3, 2, 3, 0xD3, 3}},
        {"start calibration",
         [&] { return command.StartTiltCalibration(); },
         {2, 0, 0xC8, 1, 4, 0xCD, 3}},
        {"cancel calibration",
         [&] { return command.CancelTiltCalibration(); },
         {2, 0, 0xC8, 1, 5, 0xCE, 3}},
        {"tilt speed 0", [&] { return command.SetTiltSpeed(0); }, {2, 0, 0xC8, 2, 10, 22, 0xEA, 3}},
        {"tilt speed 1", [&] { return command.SetTiltSpeed(1); }, {2, 0, 0xC8, 2, 10, 44, 0x00, 3}},
        {"tilt speed 2", [&] { return command.SetTiltSpeed(2); }, {2, 0, 0xC8, 2, 10, 88, 0x2C, 3}},
        {"power off", [&] { return command.PowerOff(); }, {2, 0, 0x84, 2, 1, 0, 0x87, 3}},
        {"label",
         [&] { return command.ShowLabel(1, 0x0203, L"ｱB"); },
         {2, 0, 0x85, 6, 1, 2, 3, 0, 0xB1, 0x42, 0x84, 3}},
    };
    // A refusal ends every request at once, so each is sent exactly once.
    const ScriptedEnd receiver(line, std::vector<ScriptedEnd::Answer>(std::size(rows), {{0x15}}));
    Open();
    std::vector<Bytes> expected;
    for (const Row& row : rows) {
        row.send();
        expected.push_back(row.request);
    }
    const std::vector<Bytes>& requests = receiver.Requests();
    ASSERT_EQ(requests.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(requests[i], expected[i]) << rows[i].name;
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

TEST_F(CommandTest, HostDataStaysInTheBuffer)
{
    const ScriptedEnd receiver(line, {{Frame(0x33, {0x12, 0x34})}});
    Open();
    ASSERT_EQ(command.RequestHostData(1, 2), 1);
    EXPECT_EQ(command.GetWord(), 0x1234);
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
        {"frames after the last one taken",
         {Joined({first, ListFrame(2, 1, true, 8), third})},
         1,
         2},
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

TEST_F(CommandTest, IdentifiesAfterABreak)
{
    const std::string text = "ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,";
    Bytes damaged = Frame(0x6E, Ascii(text));
    damaged[10] ^= 1;
    struct Row
    {
        std::string_view fault;
        Bytes answer;
        int result;
        CommandFault reason;
    };
    const Row rows[] = {
        {"good packet refused", Frame(0x6E, Ascii(text)), 1, CommandFault::None},
        {"damaged packet taken", damaged, 0, CommandFault::BadChecksum},
        {"other packet taken", Frame(0x09, Ascii(text)), 0, CommandFault::WrongType},
        {"ACK taken", {0x06}, 0, CommandFault::WrongAnswer},
        {"silence not told", {}, 0, CommandFault::TimedOut},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const ScriptedEnd receiver(line, {{row.answer}});
        Open();
        IdentificationRecord record;
        EXPECT_EQ(command.RequestIdentity(record), row.result);
        EXPECT_EQ(command.Fault(), row.reason);
        EXPECT_EQ(receiver.Requests(), (std::vector<Bytes>{{0x00}})) << "a BREAK is sent once";
    }
}

TEST(SimulatedPort, IsOpenedByNameAndFailuresSayWhatToDo)
{
    struct Row
    {
        const char* port;
        bool isLinked;
        const char* cause; ///< null: it opens
        const char* advice;
    };
    const Row rows[] = {
        {"sim:", false, "has no simulated receiver", "call fieldcore::UseSimulator()"},
        {"sim:", true, nullptr, nullptr},
        {"sim:pica", true, nullptr, nullptr},
        {"sim:nosuch", true, "no scenario and no file named \"nosuch\"", "scenarios are lark"},
        {"/nowhere/ttyUSB7", true, "There is no /nowhere/ttyUSB7.", "Try: fieldcore-cli ports"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.port);
        SetSimulatorStarter({});
        if (row.isLinked) {
            UseSimulator();
        }
        CCommand command;
        StatusReply status;
        const int opened = command.OpenPort(row.port);
        EXPECT_EQ(opened, row.cause == nullptr ? 1 : 0);
        if (opened == 1) {
            EXPECT_EQ(command.RequestStatus(status), 1) << command.LastError();
            command.ClosePort();
            EXPECT_EQ(command.RequestStatus(status), 0);
            EXPECT_EQ(command.OpenPort(row.port), 1) << "a second time: " << command.LastError();
        } else {
            const std::string said = command.LastError();
            EXPECT_NE(said.find(row.cause), std::string::npos) << said;
            EXPECT_NE(said.find(row.advice), std::string::npos) << said;
        }
    }
    SetSimulatorStarter({});
}

} // namespace
} // namespace fieldcore
