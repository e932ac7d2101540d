#include "simulator/Receiver.h"

#include "simulator/Models.h"
#include "simulator/Replies.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kStatusRequest = 0x08;
constexpr std::uint8_t kSignalCommand = 0x53;
constexpr std::uint8_t kSetPortCommand = 0x5E;
constexpr std::uint8_t kApplicationCommand = 0x64;
constexpr std::uint8_t kPowerCommand = 0x84;
constexpr std::uint8_t kLabelCommand = 0x85;
constexpr std::uint8_t kSignalRefreshCommand = 0xA3;

bool Is(std::span<const std::uint8_t> data, std::initializer_list<std::uint8_t> wanted)
{
    return std::equal(data.begin(), data.end(), wanted.begin(), wanted.end());
}

std::uint32_t U32In(std::span<const std::uint8_t> data)
{
    return std::uint32_t{data[0]} << 24U | std::uint32_t{data[1]} << 16U |
           std::uint32_t{data[2]} << 8U | data[3];
}

std::vector<Bytes> Nak()
{
    return {Bytes{kNak}};
}

std::vector<Bytes> Ack()
{
    return {Bytes{kAck}};
}

std::vector<Bytes> IfEmpty(std::span<const std::uint8_t> data, Bytes reply)
{
    return data.empty() ? std::vector<Bytes>{std::move(reply)} : Nak();
}

} // namespace

// A type that is neither here nor one of the files' is answered with NAK.
const Receiver::Handler Receiver::kHandlers[] = {
    {0x06, &Receiver::Serial},
    {kStatusRequest, &Receiver::Status},
    {0x14, &Receiver::Time},
    {0x16, &Receiver::Satellites},
    {0x30, &Receiver::Site},
    {0x32, &Receiver::Echo},
    {0x34, &Receiver::Position},
    {0x41, &Receiver::PowerSource},
    {0x4A, &Receiver::InstalledOptions},
    {kSignalCommand, &Receiver::Signals},
    {0x54, &Receiver::SatelliteData},
    {0x58, &Receiver::Reset},
    {0x5A, &Receiver::Abort},
    {kSetPortCommand, &Receiver::SetPort},
    {kApplicationCommand, &Receiver::Application},
    {0x6B, &Receiver::Status},
    {0x7A, &Receiver::Flags},
    {kPowerCommand, &Receiver::PowerOff},
    {kLabelCommand, &Receiver::Label},
    {kSignalRefreshCommand, &Receiver::SignalRefresh},
    {0xC8, &Receiver::Tilt},
};

Receiver::Receiver(const Scenario& scenario, const Clock& clock)
    : m_scenario(scenario), m_clock(clock), m_steadyAtStart(clock.Steady()),
      m_utcAtStart(scenario.start.value_or(clock.Utc())), m_tilt(scenario.tilt, Now()),
      m_files(scenario), m_baudRate(scenario.baudRate)
{}

std::vector<Bytes> Receiver::Answer(const Request& request)
{
    if (request.kind != Request::Kind::Damaged) {
        m_files.StopAnswer();
    }
    const bool isFrame = request.kind == Request::Kind::Frame;
    const bool wakes =
        request.kind == Request::Kind::Break || (isFrame && request.Type() == kStatusRequest);
    m_isOff = m_isOff && !wakes;
    if (m_isOff) {
        return {};
    }
    switch (request.kind) {
    case Request::Kind::Frame:
        return AnswerFrame(request);
    case Request::Kind::Break:
        return {IdentityReply(m_scenario, m_baudRate)};
    case Request::Kind::Line:
        return {Bytes{'O', 'K', '\r', '\n'}};
    case Request::Kind::Damaged:
        break;
    }
    return {};
}

std::vector<Bytes> Receiver::AnswerFrame(const Request& request)
{
    for (const Handler& handler : kHandlers) {
        if (handler.type == request.Type()) {
            return (this->*handler.answer)(request.Data());
        }
    }
    std::optional<Bytes> ofFiles = m_files.Answer(request.Type(), request.Data());
    return ofFiles ? Frames{*std::move(ofFiles)} : Nak();
}

double Receiver::ElapsedS() const
{
    const std::chrono::duration<double> elapsed = m_clock.Steady() - m_steadyAtStart;
    return elapsed.count() * m_scenario.speed;
}

Clock::UtcTime Receiver::Utc() const
{
    const std::chrono::duration<double> elapsed(ElapsedS());
    return m_utcAtStart + std::chrono::duration_cast<Clock::UtcTime::duration>(elapsed);
}

GpsTime Receiver::Now() const
{
    return ToGpsTime(Utc(), m_scenario.utcOffsetS);
}

Sky Receiver::SkyNow() const
{
    return SkyAt(m_scenario, Now(), ElapsedS());
}

std::vector<Almanac> Receiver::HeldAlmanacs() const
{
    return m_wasReset ? std::vector<Almanac>() : AlmanacsAt(m_scenario, Now());
}

int Receiver::BatteryPercent() const
{
    const double drained = m_scenario.batteryDrainPerHour * ElapsedS() / 3600.0;
    return static_cast<int>(std::lround(std::max(m_scenario.batteryPercent - drained, 0.0)));
}

std::vector<Bytes> Receiver::Keep(std::uint8_t type, Data data)
{
    m_kept[type].assign(data.begin(), data.end());
    return Ack();
}

std::vector<Bytes> Receiver::Serial(Data data)
{
    return IfEmpty(data, SerialReply(m_scenario));
}

std::vector<Bytes> Receiver::Status(Data data)
{
    const Sky sky = SkyNow();
    return IfEmpty(data, StatusReply(m_scenario, sky, SolutionAt(m_scenario, sky, ElapsedS()),
                                     BatteryPercent(), Files().FreeTenths()));
}

std::vector<Bytes> Receiver::Time(Data data)
{
    return IfEmpty(data, TimeReply(Now(), m_scenario.utcOffsetS));
}

std::vector<Bytes> Receiver::Satellites(Data data)
{
    if (data.empty()) {
        return {SatelliteList(m_scenario, SkyNow())};
    }
    if (Is(data, {1}) || Is(data, {2})) {
        return SatelliteFrames(m_scenario, SkyNow(), data[0]);
    }
    return Nak();
}

std::vector<Bytes> Receiver::Site(Data data)
{
    return Is(data, {18, 0}) ? Frames{SiteReply(m_scenario)} : Nak();
}

std::vector<Bytes> Receiver::Echo(Data data)
{
    constexpr std::uint8_t kEcho = 0x33;
    return data.size() == 2 ? Frames{MakeFrame(kEcho, data)} : Nak();
}

std::vector<Bytes> Receiver::Position(Data data)
{
    const Sky sky = SkyNow();
    return IfEmpty(data,
                   PositionReply(m_scenario, sky, SolutionAt(m_scenario, sky, ElapsedS()), Now()));
}

std::vector<Bytes> Receiver::PowerSource(Data data)
{
    constexpr std::uint8_t kPowerSource = 0x41;
    if (m_scenario.typeNumber == kFirstPica) {
        return Nak(); // it has one source and does not know the question
    }
    const Bytes reply{static_cast<std::uint8_t>(
        ValueAt(m_scenario.laterPowerSources, ElapsedS(), m_scenario.powerSource))};
    return IfEmpty(data, MakeFrame(kPowerSource, reply));
}

std::vector<Bytes> Receiver::InstalledOptions(Data data)
{
    if (data.empty()) {
        return {OptionsReply(m_scenario)};
    }
    const bool extended = Is(data, {1}) && m_scenario.options.extended;
    return extended ? Frames{ExtendedOptionsReply(m_scenario)} : Nak();
}

std::vector<Bytes> Receiver::SatelliteData(Data data)
{
    if (Is(data, {0x00, 0x00, 0x00}) || Is(data, {0x00, 0x00, 0x01})) {
        return {SatelliteStateReply(m_scenario, SkyNow(), HeldAlmanacs(), data[2] == 1)};
    }
    if (data.size() == 4 && data[0] == 0x14 && data[2] == 4 && data[3] == 0) {
        return {OtherSatelliteReply(SkyNow(), data[1])};
    }
    if (data.size() == 3 && data[0] == 2 && data[2] == 0) {
        for (const Almanac& almanac : HeldAlmanacs()) {
            if (almanac.prn == data[1]) {
                return {AlmanacReply(almanac)};
            }
        }
    }
    return Nak();
}

std::vector<Bytes> Receiver::Flags(Data data)
{
    constexpr std::uint8_t kFlags = 0x7A;
    DataWriter out;
    out.U8(1).U8(0).U8(0).U8(0).U8(m_scenario.signalsLocked ? 1 : 0);
    return Is(data, {1, 0}) ? Frames{out.Frame(kFlags)} : Nak();
}

std::vector<Bytes> Receiver::Tilt(Data data)
{
    return m_scenario.options.tilt ? Frames{m_tilt.Answer(data, Now(), ElapsedS())} : Nak();
}

std::vector<Bytes> Receiver::Signals(Data data)
{
    const bool good = data.size() == 3 || data.size() == 5 || data.size() == 6;
    return good ? Keep(kSignalCommand, data) : Nak();
}

std::vector<Bytes> Receiver::SignalRefresh(Data data)
{
    return data.size() == 3 ? Keep(kSignalRefreshCommand, data) : Nak();
}

std::vector<Bytes> Receiver::Application(Data data)
{
    const bool good = data.size() == 14 || data.size() == 21;
    return good ? Keep(kApplicationCommand, data) : Nak();
}

std::vector<Bytes> Receiver::Reset(Data data)
{
    if (!Is(data, {0xFF, 0x02, 'R', 'E', 'S', 'E', 'T'})) {
        return Nak();
    }
    m_wasReset = true;
    m_kept.fill({});
    m_tilt = TiltSensor(m_scenario.tilt, Now());
    return Ack();
}

std::vector<Bytes> Receiver::Abort(Data data)
{
    return data.size() == 9 ? Ack() : Nak();
}

std::vector<Bytes> Receiver::SetPort(Data data)
{
    constexpr std::uint32_t kRates[] = {1200,  2400,  4800,   9600,   19200,
                                        38400, 57600, 115200, 230400, 460800};
    if (data.size() != 10 || data[0] == 0 || data[0] > m_scenario.portCount) {
        return Nak();
    }
    const std::uint32_t rate = U32In(data.subspan(1));
    if (std::find(std::begin(kRates), std::end(kRates), rate) == std::end(kRates)) {
        return Nak();
    }
    if (data[0] == m_scenario.port) {
        m_baudRate = rate;
    }
    return Keep(kSetPortCommand, data);
}

std::vector<Bytes> Receiver::PowerOff(Data data)
{
    if (data.size() != 2) {
        return Nak();
    }
    m_isOff = Is(data, {1, 0});
    return Keep(kPowerCommand, data);
}

std::vector<Bytes> Receiver::Label(Data data)
{
    return data.size() >= 4 && data[3] == 0 ? Keep(kLabelCommand, data) : Nak();
}

} // namespace fieldcore::simulator
