#include "simulator/Receiver.h"

#include "simulator/IdentityReplies.h"
#include "simulator/Models.h"
#include "simulator/SatelliteReplies.h"
#include "simulator/StateReplies.h"

#include <algorithm>
#include <cmath>
#include <string_view>
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

std::uint16_t IndexIn(std::span<const std::uint8_t> data)
{
    return static_cast<std::uint16_t>(data[0] << 8U | data[1]);
}

std::uint32_t U32In(std::span<const std::uint8_t> data)
{
    return std::uint32_t{IndexIn(data)} << 16U | IndexIn(data.subspan(2));
}

constexpr std::size_t kNameBytes = 14;

/// A file's name, without the blanks that fill it up.
std::string_view NameIn(std::span<const std::uint8_t> data)
{
    const std::string_view name(reinterpret_cast<const char*>(data.data()), kNameBytes);
    const std::size_t last = name.find_last_not_of(' ');
    return name.substr(0, last == std::string_view::npos ? 0 : last + 1);
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

// A type that is not here is answered with NAK.
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
    {0x60, &Receiver::PicaDelete},
    {kApplicationCommand, &Receiver::Application},
    {0x68, &Receiver::PicaRecover},
    {0x6B, &Receiver::Status},
    {0x79, &Receiver::PicaList},
    {0x7A, &Receiver::Flags},
    {kPowerCommand, &Receiver::PowerOff},
    {kLabelCommand, &Receiver::Label},
    {0x96, &Receiver::Download},
    {0x9C, &Receiver::LarkList},
    {0xA0, &Receiver::LarkDelete},
    {0xA1, &Receiver::LarkRecover},
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
        StopAnswer();
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
    return Nak();
}

std::optional<Bytes> Receiver::NextFrame()
{
    std::optional<Bytes> frame = m_more ? m_more() : std::nullopt;
    if (!frame) {
        StopAnswer();
    }
    return frame;
}

std::vector<Bytes> Receiver::Begin(FrameSource source)
{
    m_more = std::move(source);
    std::optional<Bytes> first = NextFrame();
    return first ? Frames{*std::move(first)} : Frames();
}

bool Receiver::IsOf(Family family) const
{
    return FamilyOf(m_scenario.typeNumber) == family;
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
    return SkyAt(m_scenario, Now());
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
                                     BatteryPercent(), m_files.FreeTenths()));
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

std::vector<Bytes> Receiver::PicaList(Data data)
{
    const std::uint8_t variant = m_scenario.typeNumber == kFirstPica ? 1 : 2;
    const bool good = IsOf(Family::Pica) && data.size() == 3 && data[1] <= 1 && data[2] == variant;
    return good ? Frames{PicaPage(m_files, m_scenario.listing, data[0], data[1] == 1)} : Nak();
}

std::vector<Bytes> Receiver::PicaDelete(Data data)
{
    const bool done = IsOf(Family::Pica) && data.size() == 2 && m_files.Delete(IndexIn(data));
    return done ? Ack() : Nak();
}

std::vector<Bytes> Receiver::PicaRecover(Data data)
{
    const bool done = IsOf(Family::Pica) && data.size() == 2 && m_files.Recover(IndexIn(data));
    return done ? Ack() : Nak();
}

std::vector<Bytes> Receiver::LarkList(Data data)
{
    if (!IsOf(Family::Lark) || data.size() != kNameBytes) {
        return Nak();
    }
    return Begin(LarkPages(m_files.Matching(NameIn(data)), m_scenario.listing));
}

std::vector<Bytes> Receiver::LarkDelete(Data data)
{
    const bool good = IsOf(Family::Lark) && data.size() == kNameBytes;
    return good && m_files.Delete(NameIn(data)) ? Ack() : Nak();
}

std::vector<Bytes> Receiver::LarkRecover(Data data)
{
    const bool good = IsOf(Family::Lark) && data.size() == kNameBytes;
    return good && m_files.Recover(NameIn(data)) ? Ack() : Nak();
}

std::vector<Bytes> Receiver::Download(Data data)
{
    if (!IsOf(Family::Lark) || data.size() != kNameBytes + 6) {
        return Nak();
    }
    const Data rest = data.subspan(kNameBytes);
    const auto blocks = static_cast<std::uint16_t>(rest[4] << 8U | rest[5]);
    return Begin(FileBlocks(m_files.Find(NameIn(data)), U32In(rest), blocks));
}

} // namespace fieldcore::simulator
