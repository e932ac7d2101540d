#include "core/link/RecvInfo.h"

#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "core/link/ReceiverTypes.h"

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

int CRecvInfo::GetRSERIAL(CCommand& command)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    return Fetch(m_identity, [&](SerialReply& reply) { return command.RequestSerial(reply); });
}

int CRecvInfo::GetRETOPT(CCommand& command)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    return Fetch(m_options, [&](OptionsReply& reply) { return command.RequestOptions(reply); });
}

int CRecvInfo::GetRETOPTEX(CCommand& command)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    if (!m_options || Bit(m_options->flags2, 7) == 0) {
        m_extended.reset();
        return 1;
    }
    return Fetch(m_extended,
                 [&](ExtendedOptionsReply& reply) { return command.RequestOptionsEx(reply); });
}

// Identity.

const wchar_t* CRecvInfo::GetRecvSN() const
{
    return m_identity ? m_identity->shortSerial.c_str() : nullptr;
}

const wchar_t* CRecvInfo::GetRecvSNLong() const
{
    return m_identity ? m_identity->longSerial.c_str() : nullptr;
}

const wchar_t* CRecvInfo::GetRecvType() const
{
    if (!m_identity) {
        return nullptr;
    }
    return m_options && m_options->typeCode == 'r' ? L"VX4" : m_identity->receiverType.c_str();
}

double CRecvInfo::GetNavVer() const
{
    return m_identity ? Version(m_identity->navVersion) : 0.0;
}

double CRecvInfo::GetSigVer() const
{
    return m_identity ? Version(m_identity->sigVersion) : 0.0;
}

double CRecvInfo::GetBootVer() const
{
    return m_identity ? Version(m_identity->bootVersion) : 0.0;
}

// Options.

std::uint32_t CRecvInfo::GetRecvTypeNum() const
{
    return m_options ? TypeNumberOfCode(m_options->typeCode, m_options->modelWord) : 0;
}

int CRecvInfo::GetRecvMemory() const
{
    return m_options ? m_options->memory : 0;
}

int CRecvInfo::GetCurrentPortID() const
{
    return m_options ? m_options->currentPort : 1;
}

int CRecvInfo::GetPortsAvailable() const
{
    return m_options ? m_options->portCount : 1;
}

int CRecvInfo::GetFileNaming() const
{
    return m_options ? Bit(m_options->flags1, 4) : 0;
}

int CRecvInfo::GetL1L2Option() const
{
    return m_options && m_options->frequencies == kL1AndL2 ? 1 : 0;
}

int CRecvInfo::GetRtkSurvey() const
{
    return m_options && m_options->rtk != 0 ? 1 : 0;
}

int CRecvInfo::GetRtkOTF() const
{
    return m_options ? Bit(m_options->rtkFlags, 3) : 0;
}

int CRecvInfo::GetNMEA() const
{
    return m_options ? m_options->nmea : 0;
}

int CRecvInfo::GetCMR(int way) const
{
    return m_options ? 1 - Bit(m_options->rtkFlags, way != Output ? 5 : 6) : 0;
}

int CRecvInfo::GetCMRp() const
{
    return m_options ? Bit(m_options->flags1, 2) : 0;
}

int CRecvInfo::GetRtkVRS() const
{
    return m_options ? Bit(m_options->flags2, 4) : 0;
}

int CRecvInfo::GetRTCM1(int way) const
{
    if (!m_options) {
        return 0;
    }
    if (way != Output) {
        return m_options->rtcm1Input;
    }
    return m_options->rtcmOutput < 2 ? m_options->rtcmOutput : 0;
}

int CRecvInfo::GetRTCM2(int way) const
{
    if (!m_options) {
        return 0;
    }
    return way != Output ? m_options->rtcm2Input : m_options->rtcm2Output;
}

int CRecvInfo::GetRTCM21(int way) const
{
    return m_options ? Bit(m_options->rtcm21, way != Output ? 1 : 2) : 0;
}

int CRecvInfo::GetRTCM22() const
{
    return m_options ? Bit(m_options->flags1, 6) : 0;
}

int CRecvInfo::GetRTCM23() const
{
    return m_options ? Bit(m_options->rtcmOutput, 1) : 0;
}

int CRecvInfo::GetRTCM30() const
{
    return m_options ? Bit(m_options->rtcmOutput, 2) : 0;
}

int CRecvInfo::GetBlueTooth() const
{
    return m_options && m_options->bluetooth ? 1 : 0;
}

int CRecvInfo::Get2HzLogging() const
{
    return m_options ? m_options->flags2 & 0x02 : 0;
}

std::uint32_t CRecvInfo::GetMaxLoggingRate() const
{
    if (m_extended && m_extended->loggingRate != 0) {
        return m_extended->loggingRate;
    }
    return m_options ? m_options->loggingRate : 0;
}

int CRecvInfo::GetQ02Format() const
{
    if (!m_options) {
        return 0;
    }
    const char code = static_cast<char>(m_options->typeCode);
    const bool has = code == 'G' || (GetNavVer() >= kFirstQ02Version &&
                                     kWithoutQ02.find(code) == std::string_view::npos);
    return has ? 1 : 0;
}

int CRecvInfo::GetSolace() const
{
    return m_options ? m_options->rtkFlags & 0x80 : 0;
}

// Extended options.

int CRecvInfo::GetL5() const
{
    return m_extended && m_extended->l5 ? 1 : 0;
}

int CRecvInfo::GetL2C() const
{
    return m_extended && m_extended->l2c ? 1 : 0;
}

int CRecvInfo::GetGLONASS() const
{
    return m_extended && m_extended->glonass ? 1 : 0;
}

int CRecvInfo::GetMeridian() const
{
    return m_extended && m_extended->meridian ? 1 : 0;
}

int CRecvInfo::GetGalileo() const
{
    return m_extended && m_extended->galileo ? 1 : 0;
}

int CRecvInfo::GetQZSS() const
{
    return m_extended && m_extended->qzss ? 1 : 0;
}

int CRecvInfo::GetTilt() const
{
    return m_extended && m_extended->tilt ? 1 : 0;
}

int CRecvInfo::GetCMRxInput() const
{
    return GetSolace() != 0 && m_extended && m_extended->cmrxInput ? 1 : 0;
}

int CRecvInfo::GetCMRxOutput() const
{
    return GetSolace() != 0 && m_extended && m_extended->cmrxOutput ? 1 : 0;
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
