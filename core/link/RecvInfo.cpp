#include "core/link/RecvInfo.h"

#include "core/input/Parts.h"
#include "core/link/Command.h"

#include <algorithm>
#include <string_view>

namespace fieldcore {

namespace {

constexpr int kAttempts = 5;
constexpr int kL1AndL2 = 2;
constexpr double kFirstQ02Version = 4.43;
constexpr std::string_view kWithoutQ02 = ",35@r"; // type codes

constexpr int Bit(unsigned value, int bit)
{
    return static_cast<int>(value >> bit & 1U);
}

/// Five digits that count hundredths.
double Version(const std::wstring& digits)
{
    return CParts::atof(digits) / 100.0;
}

/// Asks for one block: it is valid exactly when the request succeeded.
template <typename Block, typename Request>
int Fetch(std::optional<Block>& block, Request request)
{
    Block fresh;
    const int result = request(fresh);
    block.reset();
    if (result == 1) {
        block = std::move(fresh);
    }
    return result;
}

int FetchAll(CRecvInfo& info, CCommand& command)
{
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (info.GetOptionData(command) == 1) {
            return 1;
        }
        if (command.Fault() == CommandFault::Cancelled) {
            break; // who cancels one question means all of them
        }
    }
    return 0;
}

} // namespace

// Reading.

int CRecvInfo::GetOptionData(CCommand& command)
{
    return GetRSERIAL(command) == 1 && GetRETOPT(command) == 1 && GetRETOPTEX(command) == 1 ? 1 : 0;
}

int CRecvInfo::ReadMissing(CCommand& command)
{
    const bool isRead = (m_known.serial || GetRSERIAL(command) == 1) &&
                        (m_known.options || GetRETOPT(command) == 1) &&
                        (m_known.extended || GetRETOPTEX(command) == 1);
    return isRead ? 1 : 0;
}

int CRecvInfo::GetRSERIAL(CCommand& command)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    return Fetch(m_known.serial, [&](SerialReply& reply) { return command.RequestSerial(reply); });
}

int CRecvInfo::GetRETOPT(CCommand& command)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    return Fetch(m_known.options,
                 [&](OptionsReply& reply) { return command.RequestOptions(reply); });
}

int CRecvInfo::GetRETOPTEX(CCommand& command)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    if (!m_known.options || Bit(m_known.options->flags2, 7) == 0) {
        m_known.extended.reset();
        return 1;
    }
    return Fetch(m_known.extended,
                 [&](ExtendedOptionsReply& reply) { return command.RequestOptionsEx(reply); });
}

// Identity.

const wchar_t* CRecvInfo::GetRecvSN() const
{
    return m_known.serial ? m_known.serial->shortSerial.c_str() : nullptr;
}

const wchar_t* CRecvInfo::GetRecvSNLong() const
{
    return m_known.serial ? m_known.serial->longSerial.c_str() : nullptr;
}

const wchar_t* CRecvInfo::GetRecvType() const
{
    if (!m_known.serial) {
        return nullptr;
    }
    return m_known.options && m_known.options->typeCode == 'r'
               ? L"VX4"
               : m_known.serial->receiverType.c_str();
}

double CRecvInfo::GetNavVer() const
{
    return m_known.serial ? Version(m_known.serial->navVersion) : 0.0;
}

double CRecvInfo::GetSigVer() const
{
    return m_known.serial ? Version(m_known.serial->sigVersion) : 0.0;
}

double CRecvInfo::GetBootVer() const
{
    return m_known.serial ? Version(m_known.serial->bootVersion) : 0.0;
}

// Options.

std::uint32_t CRecvInfo::GetRecvTypeNum() const
{
    return m_known.TypeNumber();
}

int CRecvInfo::GetRecvMemory() const
{
    return m_known.options ? m_known.options->memory : 0;
}

int CRecvInfo::GetCurrentPortID() const
{
    return m_known.options ? m_known.options->currentPort : 1;
}

int CRecvInfo::GetPortsAvailable() const
{
    return m_known.options ? m_known.options->portCount : 1;
}

int CRecvInfo::GetFileNaming() const
{
    return m_known.options ? Bit(m_known.options->flags1, 4) : 0;
}

int CRecvInfo::GetL1L2Option() const
{
    return m_known.options && m_known.options->frequencies == kL1AndL2 ? 1 : 0;
}

int CRecvInfo::GetRtkSurvey() const
{
    return m_known.options && m_known.options->rtk != 0 ? 1 : 0;
}

int CRecvInfo::GetRtkOTF() const
{
    return m_known.options ? Bit(m_known.options->rtkFlags, 3) : 0;
}

int CRecvInfo::GetNMEA() const
{
    return m_known.options ? m_known.options->nmea : 0;
}

int CRecvInfo::GetCMR(int way) const
{
    return m_known.options ? 1 - Bit(m_known.options->rtkFlags, way != Output ? 5 : 6) : 0;
}

int CRecvInfo::GetCMRp() const
{
    return m_known.options ? Bit(m_known.options->flags1, 2) : 0;
}

int CRecvInfo::GetRtkVRS() const
{
    return m_known.options ? Bit(m_known.options->flags2, 4) : 0;
}

int CRecvInfo::GetRTCM1(int way) const
{
    if (!m_known.options) {
        return 0;
    }
    if (way != Output) {
        return m_known.options->rtcm1Input;
    }
    return m_known.options->rtcmOutput < 2 ? m_known.options->rtcmOutput : 0;
}

int CRecvInfo::GetRTCM2(int way) const
{
    if (!m_known.options) {
        return 0;
    }
    return way != Output ? m_known.options->rtcm2Input : m_known.options->rtcm2Output;
}

int CRecvInfo::GetRTCM21(int way) const
{
    return m_known.options ? Bit(m_known.options->rtcm21, way != Output ? 1 : 2) : 0;
}

int CRecvInfo::GetRTCM22() const
{
    return m_known.options ? Bit(m_known.options->flags1, 6) : 0;
}

int CRecvInfo::GetRTCM23() const
{
    return m_known.options ? Bit(m_known.options->rtcmOutput, 1) : 0;
}

int CRecvInfo::GetRTCM30() const
{
    return m_known.options ? Bit(m_known.options->rtcmOutput, 2) : 0;
}

int CRecvInfo::GetBlueTooth() const
{
    return m_known.options && m_known.options->bluetooth ? 1 : 0;
}

int CRecvInfo::Get2HzLogging() const
{
    return m_known.options ? m_known.options->flags2 & 0x02 : 0;
}

std::uint32_t CRecvInfo::GetMaxLoggingRate() const
{
    if (m_known.extended && m_known.extended->loggingRate != 0) {
        return m_known.extended->loggingRate;
    }
    return m_known.options ? m_known.options->loggingRate : 0;
}

int CRecvInfo::GetQ02Format() const
{
    if (!m_known.options) {
        return 0;
    }
    const char code = static_cast<char>(m_known.options->typeCode);
    const bool has = code == 'G' || (GetNavVer() >= kFirstQ02Version &&
                                     kWithoutQ02.find(code) == std::string_view::npos);
    return has ? 1 : 0;
}

int CRecvInfo::GetSolace() const
{
    return m_known.options ? m_known.options->rtkFlags & 0x80 : 0;
}

// Extended options.

int CRecvInfo::GetL5() const
{
    return m_known.extended && m_known.extended->l5 ? 1 : 0;
}

int CRecvInfo::GetL2C() const
{
    return m_known.extended && m_known.extended->l2c ? 1 : 0;
}

int CRecvInfo::GetGLONASS() const
{
    return m_known.extended && m_known.extended->glonass ? 1 : 0;
}

int CRecvInfo::GetMeridian() const
{
    return m_known.extended && m_known.extended->meridian ? 1 : 0;
}

int CRecvInfo::GetGalileo() const
{
    return m_known.extended && m_known.extended->galileo ? 1 : 0;
}

int CRecvInfo::GetQZSS() const
{
    return m_known.extended && m_known.extended->qzss ? 1 : 0;
}

int CRecvInfo::GetTilt() const
{
    return m_known.extended && m_known.extended->tilt ? 1 : 0;
}

int CRecvInfo::GetCMRxInput() const
{
    return GetSolace() != 0 && m_known.extended && m_known.extended->cmrxInput ? 1 : 0;
}

int CRecvInfo::GetCMRxOutput() const
{
    return GetSolace() != 0 && m_known.extended && m_known.extended->cmrxOutput ? 1 : 0;
}

std::uint32_t GetRecvTypeNum(CCommand& command)
{
    CRecvInfo info;
    return FetchAll(info, command) == 1 ? info.GetRecvTypeNum() : 0;
}

double GetRecvVer(CCommand& command)
{
    CRecvInfo info;
    return FetchAll(info, command) == 1 ? info.GetNavVer() : 0.0;
}

} // namespace fieldcore
