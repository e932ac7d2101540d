#include "core/link/ComPrmSet.h"

#include "core/platform/Assign.h"
#include "core/platform/SettingsStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kDefaultRate = 2; // flag
constexpr std::uint32_t kLinkRate = 38400;
constexpr std::uint32_t kOtherRate = 9600;

constexpr std::array kBpsTexts{L"2400", L"4800", L"9600", L"19200", L"38400", L"57600", L"115200"};
constexpr std::array kDataBitsTexts{L"8", L"7"};
constexpr std::array kParityTexts{L"None", L"Odd", L"Even"};
constexpr std::array kStopBitsTexts{L"1", L"2"};
constexpr std::array kFlowTexts{L"None", L"CTS", L"Xon/Xoff"};

/// @return @p flag, or @p otherwise if it is no choice
int Choice(std::span<const wchar_t* const> texts, int flag, int otherwise = 0)
{
    return flag >= 0 && static_cast<std::size_t>(flag) < texts.size() ? flag : otherwise;
}

std::wstring TextOf(std::span<const wchar_t* const> texts, int flag, int otherwise = 0)
{
    return texts[static_cast<std::size_t>(Choice(texts, flag, otherwise))];
}

/// @return -1 if no choice has that text
int FlagOf(std::span<const wchar_t* const> texts, const std::wstring& text)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (FoldCase(texts[i]) == FoldCase(text)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace

PortSettings LineOf(const SetRS232PortParameters& parameters)
{
    PortSettings line;
    line.baudRate = parameters.baudRate;
    line.byteSize = parameters.dataLength;
    line.parity = parameters.parity;
    line.stopBits = parameters.stopBits;
    line.flowControl = parameters.flowControl == 1   ? FlowControl::Software
                       : parameters.flowControl == 2 ? FlowControl::RtsCts
                                                     : FlowControl::None;
    return line;
}

CComPrmSet::CComPrmSet(SettingsRoots& roots) : m_reg(roots) {}

std::wstring CComPrmSet::KeyOf(int port)
{
    return L"GPS\\Com\\Com" + std::to_wstring(port);
}

int CComPrmSet::ReadRegCommPrm(int port)
{
    const std::wstring key = KeyOf(port);
    m_values = {};
    m_values.baudRate = port == kLinkPort ? kLinkRate : kOtherRate;
    const auto readByte = [&](const wchar_t* name, std::uint8_t& field) {
        std::uint32_t number = field;
        const int read = m_reg.ReadOrStoreNumber(key, name, number, field);
        field = static_cast<std::uint8_t>(number & 0xFFU);
        return read == 1;
    };
    const bool read =
        m_reg.ReadOrStoreNumber(key, L"Baudlate", m_values.baudRate, m_values.baudRate) == 1 &&
        readByte(L"Length", m_values.dataLength) && readByte(L"Parity", m_values.parity) &&
        readByte(L"Stopbit", m_values.stopBits) && readByte(L"Flow", m_values.flowControl);
    return read ? 1 : 0;
}

int CComPrmSet::WriteRegCommPrm(int port) const
{
    const std::wstring key = KeyOf(port);
    SettingsBatch batch(m_reg.Store());
    const bool written = batch.IsOpen() &&
                         m_reg.WriteNumber(key, L"Baudlate", m_values.baudRate) == 1 &&
                         m_reg.WriteNumber(key, L"Length", m_values.dataLength) == 1 &&
                         m_reg.WriteNumber(key, L"Parity", m_values.parity) == 1 &&
                         m_reg.WriteNumber(key, L"Stopbit", m_values.stopBits) == 1 &&
                         m_reg.WriteNumber(key, L"Flow", m_values.flowControl) == 1;
    return written && batch.Commit() ? 1 : 0;
}

void CComPrmSet::ConvData2Flag()
{
    m_flagBps = kDefaultRate;
    for (std::size_t i = 0; i < kBaudRates.size(); ++i) {
        if (kBaudRates[i] == m_values.baudRate) {
            m_flagBps = static_cast<int>(i);
        }
    }
    m_flagDataBits = m_values.dataLength == 7 ? 1 : 0;
    // An unknown parity is Odd, not None.
    m_flagParity = m_values.parity == 0 ? 0 : m_values.parity == 2 ? 2 : 1;
    m_flagStopBits = m_values.stopBits == 2 ? 1 : 0;
    // The list has CTS before Xon/Xoff, the values have it behind.
    m_flagFlow = m_values.flowControl == 1 ? 2 : m_values.flowControl == 2 ? 1 : 0;
}

void CComPrmSet::ConvFlag2Data()
{
    m_values.baudRate = kBaudRates[static_cast<std::size_t>(m_flagBps)];
    m_values.dataLength = m_flagDataBits == 1 ? 7 : 8;
    m_values.parity = m_flagParity == 1 ? 1 : m_flagParity == 2 ? 2 : 0;
    m_values.stopBits = m_flagStopBits == 1 ? 2 : 0;
    m_values.flowControl = m_flagFlow == 1 ? 2 : m_flagFlow == 2 ? 1 : 0;
}

int CComPrmSet::SetFlagBps(int flag)
{
    return Assign(m_flagBps, Choice(kBpsTexts, flag, kDefaultRate));
}

int CComPrmSet::SetFlagDataBits(int flag)
{
    return Assign(m_flagDataBits, Choice(kDataBitsTexts, flag));
}

int CComPrmSet::SetFlagParity(int flag)
{
    return Assign(m_flagParity, Choice(kParityTexts, flag));
}

int CComPrmSet::SetFlagStopBits(int flag)
{
    return Assign(m_flagStopBits, Choice(kStopBitsTexts, flag));
}

int CComPrmSet::SetFlagFlowCtrl(int flag)
{
    return Assign(m_flagFlow, Choice(kFlowTexts, flag));
}

int CComPrmSet::SetDataFlowCtrl(std::uint8_t flow)
{
    constexpr std::uint8_t kLast = 2;
    return Assign(m_values.flowControl, flow <= kLast ? flow : std::uint8_t{0});
}

std::wstring CComPrmSet::GetStrBps(int flag) const
{
    return TextOf(kBpsTexts, flag, kDefaultRate);
}

std::wstring CComPrmSet::GetStrDataBits(int flag) const
{
    return TextOf(kDataBitsTexts, flag);
}

std::wstring CComPrmSet::GetStrParity(int flag) const
{
    return TextOf(kParityTexts, flag);
}

std::wstring CComPrmSet::GetStrStopBits(int flag) const
{
    return TextOf(kStopBitsTexts, flag);
}

std::wstring CComPrmSet::GetStrFlowCtrl(int flag) const
{
    return TextOf(kFlowTexts, flag);
}

void CComPrmSet::GetPrmString(std::wstring& bps, std::wstring& dataBits, std::wstring& parity,
                              std::wstring& stopBits, std::wstring& flow) const
{
    bps = GetStrBps();
    dataBits = GetStrDataBits();
    parity = GetStrParity();
    stopBits = GetStrStopBits();
    flow = GetStrFlowCtrl();
}

std::wstring CComPrmSet::GetPrmString() const
{
    return GetStrBps() + L"-" + GetStrDataBits() + L"-" + GetStrParity() + L"-" + GetStrStopBits() +
           L"-" + GetStrFlowCtrl();
}

int CComPrmSet::SetPrmString(const std::wstring& text)
{
    const std::array<std::pair<std::span<const wchar_t* const>, int CComPrmSet::*>, 5> parts{{
        {kBpsTexts, &CComPrmSet::m_flagBps},
        {kDataBitsTexts, &CComPrmSet::m_flagDataBits},
        {kParityTexts, &CComPrmSet::m_flagParity},
        {kStopBitsTexts, &CComPrmSet::m_flagStopBits},
        {kFlowTexts, &CComPrmSet::m_flagFlow},
    }};
    CComPrmSet changed = *this;
    std::size_t at = 0;
    for (std::size_t part = 0; at <= text.size(); ++part) {
        const std::size_t end = std::min(text.find(L'-', at), text.size());
        const int flag =
            part < parts.size() ? FlagOf(parts[part].first, text.substr(at, end - at)) : -1;
        if (flag < 0) {
            return 0;
        }
        changed.*parts[part].second = flag;
        at = end + 1;
    }
    changed.ConvFlag2Data();
    m_values = changed.m_values;
    ConvData2Flag();
    return 1;
}

void CComPrmSet::GetSETCOMMS(int port, SetRS232PortParameters& record) const
{
    record = m_values;
    record.port = static_cast<std::uint8_t>(port);
}

void CComPrmSet::SetSETCOMMS(const SetRS232PortParameters& record)
{
    m_values = record;
    m_values.spare = 0;
    ConvData2Flag();
}

void CComPrmSet::GetOtherPorNo(int port, int& first, int& second)
{
    first = port == 1 || port == 2 ? 3 : 2;
    second = port == 1 ? 2 : 1;
}

bool CComPrmSet::HasFlagsOf(const CComPrmSet& other) const
{
    return m_flagBps == other.m_flagBps && m_flagDataBits == other.m_flagDataBits &&
           m_flagParity == other.m_flagParity && m_flagStopBits == other.m_flagStopBits &&
           m_flagFlow == other.m_flagFlow;
}

PortSettings LinkSettings(SettingsRoots& roots)
{
    CComPrmSet link(roots);
    link.ReadRegCommPrm(CComPrmSet::kLinkPort); // what cannot be read is the default
    link.ConvData2Flag();
    link.ConvFlag2Data();
    SetRS232PortParameters parameters;
    link.GetSETCOMMS(CComPrmSet::kLinkPort, parameters);
    return LineOf(parameters);
}

int StoreLink(const CComPrmSet& line)
{
    return line.WriteRegCommPrm(CComPrmSet::kLinkPort);
}

int SetLinkRate(std::uint32_t baudRate, SettingsRoots& roots)
{
    CComPrmSet link(roots);
    link.ReadRegCommPrm(CComPrmSet::kLinkPort);
    SetRS232PortParameters parameters;
    link.GetSETCOMMS(CComPrmSet::kLinkPort, parameters);
    if (parameters.baudRate == baudRate) {
        return 1;
    }
    parameters.baudRate = baudRate;
    link.SetSETCOMMS(parameters);
    link.ConvFlag2Data();
    link.GetSETCOMMS(CComPrmSet::kLinkPort, parameters);
    return parameters.baudRate == baudRate ? StoreLink(link) : 0;
}

} // namespace fieldcore
