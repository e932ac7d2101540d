#include "core/link/Command.h"

#include "core/link/Questions.h"
#include "core/platform/Cp932.h"
#include "core/platform/PortReport.h"

#include <algorithm>

#include <fmt/format.h>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kWakePause{500};
constexpr milliseconds kBreakDuration{300};
constexpr int kMostListFrames = 256;      // they are numbered by a byte
constexpr std::size_t kLongestLine = 256; // bytes, without the CR LF that is added
constexpr std::string_view kLineEnd = "\r\n";

/// The parity, stop-bit and flow codes of the receiver are those of the port settings, but for
/// flow control: it knows none, XON/XOFF and the hardware lines.
std::uint8_t ReceiverFlowCode(FlowControl flow)
{
    return static_cast<std::uint8_t>(std::min(flow, FlowControl::RtsCts));
}

} // namespace

CCommand* GetCCommand()
{
    static CCommand command;
    return &command;
}

CCommand::CCommand(const Environment& environment)
    : m_channel(std::make_shared<Channel>(environment)), m_environment(environment)
{}

CCommand::CCommand(const CCommand& shared, Host& host)
    : m_channel(shared.m_channel), m_environment(shared.m_environment)
{
    SetHost(host);
}

CCommand::~CCommand() = default;

Questions& CCommand::Background()
{
    if (!m_questions) {
        m_questions = std::make_unique<Questions>(*this);
    }
    return *m_questions;
}

Receiver CCommand::Heard() const
{
    const KnownReceiver& known = m_channel->Known();
    const std::scoped_lock lock(known.mutex);
    return known.receiver;
}

void CCommand::Hear(const std::function<void(Receiver& known)>& put)
{
    KnownReceiver& known = m_channel->Known();
    const std::scoped_lock lock(known.mutex);
    put(known.receiver);
}

// The port.

int CCommand::OpenPort(int portNumber, const PortSettings& settings)
{
    return OpenPort(m_channel->PathOf(portNumber), settings, portNumber);
}

int CCommand::OpenPort(const std::string& devicePath, const PortSettings& settings, int portNumber)
{
    m_failed = {};
    m_failed.port = devicePath;
    ChannelTurn turn(*m_channel, GetHost());
    return Finish(turn, turn.Open(devicePath, settings, portNumber));
}

void CCommand::ClosePort()
{
    CommandFault fault = CommandFault::Cancelled; // by which nobody can keep it open
    while (IsPortOpen() == 1 && fault == CommandFault::Cancelled) {
        ChannelTurn turn(*m_channel, GetHost());
        fault = turn.Fault();
        if (turn.IsMine()) {
            turn.Close();
        }
    }
}

int CCommand::PurgePort()
{
    return InTurn(0, [](ChannelTurn& turn) { return turn.Purge(); });
}

void CCommand::SetFraming(SerialLink::Framing framing)
{
    InTurn(0, [framing](ChannelTurn& turn) {
        turn.Link().SetFraming(framing);
        return 1;
    });
}

void CCommand::SetHandOver(bool on)
{
    InTurn(0, [on](ChannelTurn& turn) {
        turn.Link().SetHandOver(on);
        return 1;
    });
}

// Exchanges.

/// Keeps how the turn went.
int CCommand::Finish(ChannelTurn& turn, int result)
{
    m_failed.fault = turn.Fault();
    m_failed.answer = GetReplyType();
    if (ClassOf(turn.Fault()) == FaultClass::Gone && turn.Fault() != CommandFault::NotOpen) {
        m_failed.device = m_channel->LastFault().text;
    }
    if (turn.Last().state == ExchangeState::Frame) {
        ReadDataLength();
    }
    return result;
}

int CCommand::Exchange(Answer expected)
{
    LastResult =
        InTurn(GetReplyType(), [&](ChannelTurn& turn) { return turn.Ask(BuiltFrame(), expected); });
    return LastResult;
}

int CCommand::SendAndCollect()
{
    return InTurn(GetReplyType(),
                  [&](ChannelTurn& turn) { return turn.Ask(BuiltFrame(), Answer::Anything); });
}

int CCommand::SendLine(std::wstring_view text)
{
    std::string line = ToCp932(text);
    line.resize(std::min(line.size(), kLongestLine));
    if (!std::string_view(line).ends_with(kLineEnd)) {
        line += kLineEnd;
    }
    std::size_t length = 0;
    const int result = InTurn(0, [&](ChannelTurn& turn) {
        if (turn.Link().GetFraming() != SerialLink::Framing::Lines) {
            return int{turn.Fail(CommandFault::WrongAnswer)};
        }
        const std::vector<std::uint8_t> raw(line.begin(), line.end());
        const bool came = turn.Send(raw, LineUnit::Line) && turn.NextFrame();
        length = turn.Last().length;
        return came ? 1 : 0;
    });
    if (result == 1) {
        SetDataLength(static_cast<std::uint32_t>(length));
    }
    return result;
}

int CCommand::SendText(std::wstring_view text)
{
    return SendText(std::string_view(ToCp932(text)));
}

int CCommand::SendText(std::string_view bytes)
{
    return InTurn(0, [&](ChannelTurn& turn) {
        const std::vector<std::uint8_t> raw(bytes.begin(), bytes.end());
        turn.NoteOdd(); // whatever answers it is not waited for
        return turn.Send(raw, LineUnit::Line) ? 1 : 0;
    });
}

int CCommand::Rest(milliseconds duration)
{
    m_failed = {};
    ChannelTurn turn(*m_channel, GetHost());
    return Finish(turn, turn.IsMine() && turn.Pause(duration) ? 1 : 0);
}

int CCommand::Fail(CommandFault fault)
{
    m_failed.fault = fault;
    return 0;
}

std::string CCommand::LastError() const
{
    if (m_failed.fault == CommandFault::None) {
        return {};
    }
    std::string text = MeaningOf(m_failed.fault).terminal.message;
    std::string hint = MeaningOf(m_failed.fault).terminal.hint;
    if (m_failed.fault == CommandFault::OpenFailed && IsPortOpen() == 1) {
        return "A port is open already. Close it before another one is opened.";
    }
    if (m_failed.fault == CommandFault::OpenFailed) {
        const PortNameResult named = PortNames().Parse(m_failed.port);
        if (named.port && named.port->kind == PortKind::Simulator) {
            return m_failed.device;
        }
        const PortReport report = ReportPort(m_failed.port, SystemError());
        text = report.text;
        hint = report.command.empty() ? "" : "Try: " + report.command;
    }
    return text + (hint.empty() ? "" : " " + hint) + " [" + FaultDetail() + "]";
}

std::string CCommand::FaultDetail() const
{
    if (m_failed.fault == CommandFault::None) {
        return {};
    }
    std::string text = MeaningOf(m_failed.fault).words;
    if (m_failed.request != 0) {
        text.insert(0, fmt::format("request 0x{:02X}: ", m_failed.request));
    }
    if (m_failed.fault == CommandFault::WrongType) {
        text += fmt::format(" (type 0x{:02X})", m_failed.answer);
    }
    if (!m_failed.device.empty()) {
        text += " (" + m_failed.device + ")";
    }
    return text;
}

// Building blocks of the requests.

void CCommand::Build(std::uint8_t type, std::span<const std::uint8_t> data)
{
    BeginPacket(type, static_cast<std::uint32_t>(data.size()));
    for (const std::uint8_t byte : data) {
        PutByte(byte);
    }
    EndPacket();
}

// Requests.

int CCommand::RequestIdentity(IdentificationRecord& record)
{
    const int came = InTurn(0, [](ChannelTurn& turn) {
        return turn.SendBreak(kBreakDuration) && turn.NextFrame() ? 1 : 0;
    });
    if (came == 1 && VerifyChecksum() == 0) {
        return Fail(CommandFault::BadChecksum);
    }
    return came == 1 ? Keep(ParseIdentification(Reader()), record) : 0;
}

int CCommand::WakeReceiver()
{
    Build(0x08);
    if (SendAndCollect() == 0 || Fault() == CommandFault::Cancelled) {
        return 0; // the host asks for an end only once
    }
    return Rest(kWakePause);
}

int CCommand::RequestSvList(SatelliteList& list, SatelliteListForm form)
{
    Build(0x16, {static_cast<std::uint8_t>(form)});
    SatelliteList collected;
    const int result = InTurn(0x16, [&](ChannelTurn& turn) {
        turn.TakeFramesInTurn();
        const int all = CollectFrames(turn, collected, form);
        if (all == 0) {
            turn.NoteOdd(); // frames that are still on their way are nobody's answer
        }
        return all;
    });
    if (result == 1) {
        list = std::move(collected);
    }
    return result;
}

int CCommand::CollectFrames(ChannelTurn& turn, SatelliteList& list, SatelliteListForm form)
{
    if (turn.Ask(BuiltFrame(), Answer::Reply) == 0) {
        return 0;
    }
    for (int number = 0; number < kMostListFrames; ++number) {
        if (number > 0 && !turn.NextFrame()) {
            return 0;
        }
        if (!Reader().IsIntact()) {
            return int{turn.Fail(CommandFault::BadChecksum)};
        }
        const auto last = ParseSatelliteListFrame(Reader(), form, number, list);
        if (!last) {
            break;
        }
        if (*last) {
            return 1;
        }
    }
    return int{turn.Fail(CommandFault::WrongType)};
}

int CCommand::RequestHostData(std::uint8_t first, std::uint8_t second)
{
    Build(0x32, {first, second});
    if (Exchange(Answer::Reply) == 0) {
        return 0;
    }
    if (GetReplyType() != 0x33) {
        return Fail(CommandFault::WrongType);
    }
    ResetReadPos();
    return 1;
}

int CCommand::RequestAlmanac(int prn, AlmanacReply& reply)
{
    return Query(
        0x54, {0x02, static_cast<std::uint8_t>(prn), 0x00},
        [prn](FrameReader frame) { return ParseAlmanac(frame, prn); }, reply);
}

int CCommand::RequestSvData(SatelliteDataReply& reply, bool withTriples)
{
    return Query(
        0x54, {0x00, 0x00, static_cast<std::uint8_t>(withTriples ? 0x01 : 0x00)},
        [withTriples](FrameReader frame) { return ParseSatelliteData(frame, withTriples); }, reply);
}

int CCommand::RequestSvData(SatelliteDataReply& reply, SatelliteDataExtra& extra)
{
    SatelliteDataReply first;
    if (RequestSvData(first, true) == 0 ||
        Query(0x54, {0x14, 0xC1, 0x04, 0x00}, ParseSatelliteDataExtra, extra) == 0) {
        return 0;
    }
    reply = first;
    return 1;
}

// Commands.

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

int CCommand::CommandByName(std::uint8_t type, std::wstring_view name)
{
    if (!IsReceiverFileName(name)) {
        return Fail(CommandFault::TooLong);
    }
    BeginPacket(type, kLongestFileName);
    PutText(name, kLongestFileName);
    EndPacket();
    return Exchange(Answer::Ack);
}

} // namespace fieldcore
