#include "core/link/ComPrmSet.h"

#include "core/platform/Assign.h"
#include "core/settings/Setting.h"

#include <algorithm>
#include <span>

namespace fieldcore {

namespace {

constexpr std::uint32_t kLinkRate = 38400;

/// What a parameter can be. Its place in the list is its flag.
struct Choice
{
    const wchar_t* text;
    std::uint32_t value; ///< that is stored, and sent
};
constexpr Choice kRates[] = {{L"2400", 2400},    {L"4800", 4800},   {L"9600", 9600},
                             {L"19200", 19200},  {L"38400", 38400}, {L"57600", 57600},
                             {L"115200", 115200}};
static_assert(std::ranges::equal(kRates, kBaudRates, {}, &Choice::value));
constexpr Choice kDataBits[] = {{L"8", 8}, {L"7", 7}};
constexpr Choice kParities[] = {{L"None", 0}, {L"Odd", 1}, {L"Even", 2}};
constexpr Choice kStopBits[] = {{L"1", 0}, {L"2", 2}};
constexpr Choice kFlows[] = {{L"None", 0}, {L"CTS", 2}, {L"Xon/Xoff", 1}};

struct Parameter
{
    KnownSetting setting;
    std::span<const Choice> choices;
    int byDefault = 0; ///< flag in place of one beyond the list
    int unknown = 0;   ///< flag of a value that is no choice: of a parity Odd, not None
};
constexpr Parameter kParameters[] = {{L"GPS\\Com\\Com*\\Baudlate", kRates, 2, 2},
                                     {L"GPS\\Com\\Com*\\Length", kDataBits},
                                     {L"GPS\\Com\\Com*\\Parity", kParities, 0, 1},
                                     {L"GPS\\Com\\Com*\\Stopbit", kStopBits},
                                     {L"GPS\\Com\\Com*\\Flow", kFlows}};

/// @return the flag of the first choice of which @p is holds, or @p otherwise
template <typename Is>
int FlagOf(const Parameter& parameter, int otherwise, Is is)
{
    const auto found = std::ranges::find_if(parameter.choices, is);
    return found != parameter.choices.end() ? static_cast<int>(found - parameter.choices.begin())
                                            : otherwise;
}

/// @return @p flag, or the default one if it is none
int Checked(const Parameter& parameter, int flag)
{
    return flag >= 0 && flag < static_cast<int>(parameter.choices.size()) ? flag
                                                                          : parameter.byDefault;
}

const Choice& ChoiceOf(const Parameter& parameter, int flag)
{
    return parameter.choices[static_cast<std::size_t>(Checked(parameter, flag))];
}

} // namespace

CComPrmSet::CComPrmSet(SettingsRoots& roots) : m_reg(roots)
{
    ConvFlag2Data();
}

int CComPrmSet::ReadRegCommPrm(int port)
{
    std::ranges::transform(kParameters, m_values.begin(),
                           [](const Parameter& p) { return p.setting->number.byDefault; });
    m_values[Bps] = port == kLinkPort ? kLinkRate : m_values[Bps];
    for (std::size_t part = 0; part < PartCount; ++part) {
        std::uint32_t& value = m_values[part];
        const KnownSetting setting = kParameters[part].setting;
        const int read = m_reg.ReadOrStoreNumber(setting->Key(std::to_wstring(port)),
                                                 setting->Name(), value, value);
        value &= part == Bps ? 0xFFFFFFFF : 0xFF;
        if (read == 0) {
            return 0;
        }
    }
    return 1;
}

int CComPrmSet::WriteRegCommPrm(int port) const
{
    std::vector<SettingWrite> writes;
    for (std::size_t part = 0; part < PartCount; ++part) {
        writes.push_back({kParameters[part].setting, m_values[part], std::to_wstring(port)});
    }
    return StoreAll(m_reg, writes);
}

void CComPrmSet::ConvData2Flag()
{
    for (std::size_t part = 0; part < PartCount; ++part) {
        m_flags[part] = FlagOf(kParameters[part], kParameters[part].unknown,
                               [&](const Choice& c) { return c.value == m_values[part]; });
    }
}

void CComPrmSet::ConvFlag2Data()
{
    for (std::size_t part = 0; part < PartCount; ++part) {
        m_values[part] = ChoiceOf(kParameters[part], m_flags[part]).value;
    }
}

int CComPrmSet::SetFlag(Part part, int flag)
{
    return Assign(m_flags[part], Checked(kParameters[part], flag));
}

int CComPrmSet::SetDataFlowCtrl(std::uint8_t flow)
{
    constexpr std::uint8_t kLast = 2;
    return Assign(m_values[FlowCtrl], flow <= kLast ? flow : std::uint8_t{0});
}

std::wstring CComPrmSet::TextOf(std::size_t part, int flag)
{
    return ChoiceOf(kParameters[part], flag).text;
}

std::wstring CComPrmSet::GetPrmString() const
{
    std::wstring text;
    for (std::size_t part = 0; part < PartCount; ++part) {
        text += (part == 0 ? L"" : L"-") + TextOf(part, m_flags[part]);
    }
    return text;
}

int CComPrmSet::SetPrmString(const std::wstring& text)
{
    auto flags = m_flags;
    std::size_t at = 0;
    for (std::size_t part = 0; at <= text.size(); ++part) {
        const std::size_t end = std::min(text.find(L'-', at), text.size());
        const std::wstring named = FoldCase(text.substr(at, end - at));
        const int flag = part < PartCount
                             ? FlagOf(kParameters[part], -1,
                                      [&](const Choice& c) { return FoldCase(c.text) == named; })
                             : -1;
        if (flag < 0) {
            return 0;
        }
        flags[part] = flag;
        at = end + 1;
    }
    m_flags = flags;
    ConvFlag2Data();
    return 1;
}

void CComPrmSet::GetSETCOMMS(int port, SetRS232PortParameters& record) const
{
    record = {static_cast<std::uint8_t>(port),
              m_values[Bps],
              ByteOf(DataBits),
              ByteOf(Parity),
              ByteOf(StopBits),
              ByteOf(FlowCtrl),
              0};
}

PortSettings CComPrmSet::Line() const
{
    PortSettings line;
    line.baudRate = m_values[Bps];
    line.byteSize = ByteOf(DataBits);
    line.parity = ByteOf(Parity);
    line.stopBits = ByteOf(StopBits);
    const auto flow = static_cast<FlowControl>(ByteOf(FlowCtrl));
    line.flowControl = flow <= FlowControl::RtsCts ? flow : FlowControl::None;
    return line;
}

void CComPrmSet::SetLine(const PortSettings& line)
{
    m_values = {line.baudRate, line.byteSize, line.parity, line.stopBits,
                static_cast<std::uint8_t>(line.flowControl)};
    ConvData2Flag();
}

void CComPrmSet::GetOtherPorNo(int port, int& first, int& second)
{
    first = port == 1 || port == 2 ? 3 : 2;
    second = port == 1 ? 2 : 1;
}

PortSettings LinkSettings(SettingsRoots& roots)
{
    CComPrmSet link(roots);
    link.ReadRegCommPrm(CComPrmSet::kLinkPort); // what cannot be read is the default
    link.ConvData2Flag();
    link.ConvFlag2Data();
    return link.Line();
}

int StoreLink(const CComPrmSet& line)
{
    return line.WriteRegCommPrm(CComPrmSet::kLinkPort);
}

int SetLinkRate(std::uint32_t baudRate, SettingsRoots& roots)
{
    CComPrmSet link(roots);
    link.ReadRegCommPrm(CComPrmSet::kLinkPort);
    PortSettings line = link.Line();
    if (line.baudRate == baudRate) {
        return 1;
    }
    line.baudRate = baudRate;
    link.SetLine(line);
    link.ConvFlag2Data();
    return std::ranges::count(kBaudRates, baudRate) == 1 ? StoreLink(link) : 0;
}

} // namespace fieldcore
