#include "core/link/Command.h"

#include "core/platform/Cp932.h"

#include <string>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kWakePause{500};
constexpr milliseconds kBreakDuration{300};
constexpr int kMostListFrames = 256; // they are numbered by a byte

/// The parity, stop-bit and flow codes of the receiver are those of the port settings, but for
/// flow control: it knows none, XON/XOFF and the hardware lines.
std::uint8_t ReceiverFlowCode(FlowControl flow)
{
    switch (flow) {
    case FlowControl::None:
        return 0;
    case FlowControl::Software:
        return 1;
    case FlowControl::RtsCts:
    case FlowControl::DsrDtr:
        break;
    }
    return 2;
}

} // namespace

CCommand* GetCCommand()
{
    static CCommand command;
    return &command;
}

// Building blocks of the requests.

template <typename Reply>
int CCommand::Keep(std::optional<Reply> parsed, Reply& reply)
{
    if (!parsed) {
        return FailOnType();
    }
    reply = std::move(*parsed);
    return 1;
}

template <typename Reply>
int CCommand::Query(std::optional<Reply> (*parse)(FrameReader), Reply& reply)
{
    return Exchange(Answer::Reply) == 1 ? Keep(parse(Reader()), reply) : 0;
}

// Requests.

int CCommand::RequestIdentity(IdentificationRecord& record)
{
    if (!MayStart()) {
        return 0;
    }
    const BusyGuard busy(*this);
    if (BreakAndCollect(kBreakDuration) == 0) {
        return 0;
    }
    return Keep(ParseIdentification(Reader()), record);
}

int CCommand::RequestSerial(SerialReply& reply)
{
    Build(0x06);
    return Query(ParseSerial, reply);
}

int CCommand::RequestStatus(StatusReply& reply)
{
    Build(0x08);
    return Query(ParseStatus, reply);
}

int CCommand::WakeReceiver()
{
    Build(0x08);
    if (SendAndCollect() == 0 || Fault() == CommandFault::Cancelled) {
        return 0; // the host asks for an end only once
    }
    return Rest(kWakePause);
}

int CCommand::RequestGpsTime(GpsTimeReply& reply)
{
    Build(0x14);
    return Query(ParseGpsTime, reply);
}

int CCommand::RequestSvList(SatelliteList& list)
{
    Build(0x16);
    return Query(ParseSatelliteList, list);
}

int CCommand::RequestSvList(SatelliteList& list, SatelliteListForm form)
{
    if (!MayStart()) {
        return 0;
    }
    Build(0x16, {static_cast<std::uint8_t>(form)});
    if (!KeepRequest()) {
        return 0;
    }
    const BusyGuard busy(*this);
    SetHandOver(true);
    SatelliteList collected;
    const int result = CollectFrames(collected, form);
    SetHandOver(false);
    if (result == 0) {
        LetLineSettle(); // frames that are still on their way are nobody's answer
        return 0;
    }
    list = std::move(collected);
    return 1;
}

int CCommand::CollectFrames(SatelliteList& list, SatelliteListForm form)
{
    if (ExchangeKept(Answer::Reply) == 0) {
        return 0;
    }
    for (int number = 0; number < kMostListFrames; ++number) {
        if (number > 0 && WaitForAnswer().state != ExchangeState::Frame) {
            return 0;
        }
        if (VerifyChecksum() == 0) {
            return Fail(CommandFault::BadChecksum);
        }
        bool last = false;
        if (Keep(ParseSatelliteListFrame(Reader(), form, number, list), last) == 0) {
            return 0;
        }
        if (last) {
            return 1;
        }
    }
    return FailOnType();
}

int CCommand::RequestSite(SiteReply& reply)
{
    Build(0x30, {18, 0});
    return Query(ParseSite, reply);
}

int CCommand::RequestHostData(std::uint8_t first, std::uint8_t second)
{
    Build(0x32, {first, second});
    if (Exchange(Answer::Reply) == 0) {
        return 0;
    }
    if (GetReplyType() != 0x33) {
        return FailOnType();
    }
    ResetReadPos();
    return 1;
}

int CCommand::RequestPositionStatus(PositionStatusReply& reply)
{
    Build(0x34);
    return Query(ParsePositionStatus, reply);
}

int CCommand::RequestBatteryPort(int& source)
{
    Build(0x41);
    return Query(ParseBatteryPort, source);
}

int CCommand::RequestOptions(OptionsReply& reply)
{
    Build(0x4A);
    return Query(ParseOptions, reply);
}

int CCommand::RequestOptionsEx(ExtendedOptionsReply& reply)
{
    Build(0x4A, {1});
    return Query(ParseExtendedOptions, reply);
}

int CCommand::RequestAlmanac(int prn, AlmanacReply& reply)
{
    Build(0x54, {0x02, static_cast<std::uint8_t>(prn), 0x00});
    return Exchange(Answer::Reply) == 1 ? Keep(ParseAlmanac(Reader(), prn), reply) : 0;
}

int CCommand::RequestSvData(SatelliteDataReply& reply, bool withTriples)
{
    Build(0x54, {0x00, 0x00, static_cast<std::uint8_t>(withTriples ? 0x01 : 0x00)});
    if (Exchange(Answer::Reply) == 0) {
        return 0;
    }
    return Keep(ParseSatelliteData(Reader(), withTriples), reply);
}

int CCommand::RequestSvData(SatelliteDataReply& reply, SatelliteDataExtra& extra)
{
    if (RequestSvData(reply, true) == 0) {
        return 0;
    }
    Build(0x54, {0x14, 0xC1, 0x04, 0x00});
    return Query(ParseSatelliteDataExtra, extra);
}

int CCommand::RequestSettingsFlags(SettingsFlags& flags)
{
    Build(0x7A, {1, 0});
    return Query(ParseSettingsFlags, flags);
}

int CCommand::RequestFileState(StatusReply& reply)
{
    Build(0x6B);
    return Query(ParseStatus, reply);
}

int CCommand::RequestTiltReading(TiltReading& reading)
{
    Build(0xC8, {1, 0});
    return Query(ParseTiltReading, reading);
}

int CCommand::RequestTiltCalibration(TiltCalibration& calibration)
{
    Build(0xC8, {1, 1});
    return Query(ParseTiltCalibration, calibration);
}

// Commands.

int CCommand::RequestReset()
{
    return Command(0x58, {0xFF, 0x02, 'R', 'E', 'S', 'E', 'T'});
}

int CCommand::SendAbort()
{
    return Command(0x5A, {0, 0, 0, 0, 0, 0, 0, 0, 0});
}

int CCommand::SetReceiverPort(std::uint8_t port, const PortSettings& settings)
{
    BeginPacket(0x5E, 10);
    PutByte(port);
    PutLong(settings.baudRate);
    PutByte(settings.byteSize);
    PutByte(settings.parity);
    PutByte(settings.stopBits);
    PutByte(ReceiverFlowCode(settings.flowControl));
    PutByte(0);
    EndPacket();
    return Exchange(Answer::Ack);
}

int CCommand::SetSignals(std::span<const std::uint8_t> data)
{
    Build(0x53, data);
    return Exchange(Answer::Ack);
}

int CCommand::SetBoardSignals(std::uint8_t first, std::uint8_t second, std::uint8_t third)
{
    return Command(0xA3, {first, second, third});
}

int CCommand::StartTiltSensor(std::uint8_t port)
{
    const auto index = static_cast<std::uint8_t>(port - 1);
    return Command(0x64, {0, 0, 0, 3, 0, 1, 0, 7, 12, 34, index, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0});
}

int CCommand::StopTiltSensor(std::uint8_t port)
{
    const auto index = static_cast<std::uint8_t>(port - 1);
    return Command(0x64, {0, 0, 0, 3, 0, 1, 0, 7, 5, 255, index, 0, 0, 0});
}

int CCommand::SetTiltValidity(std::uint16_t hours)
{
    return Command(
        0xC8, {3, static_cast<std::uint8_t>(hours >> 8), static_cast<std::uint8_t>(hours & 0xFF)});
}

int CCommand::StartTiltCalibration()
{
    return Command(0xC8, {4});
}

int CCommand::CancelTiltCalibration()
{
    return Command(0xC8, {5});
}

int CCommand::SetTiltSpeed(int speed)
{
    const std::uint8_t code = speed == 0 ? 22 : speed == 1 ? 44 : 88;
    return Command(0xC8, {10, code});
}

int CCommand::PowerOff()
{
    Build(0x84, {1, 0});
    return SendAndCollect();
}

int CCommand::ShowLabel(std::uint8_t place, std::uint16_t number, std::wstring_view text)
{
    const std::string label = ToCp932(text);
    BeginPacket(0x85, static_cast<std::uint32_t>(label.size() + 4));
    PutByte(place);
    PutWord(number);
    PutByte(0);
    PutText(text, 0, true);
    EndPacket();
    return SendAndCollect();
}

} // namespace fieldcore
