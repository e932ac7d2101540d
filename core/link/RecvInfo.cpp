#include "core/link/RecvInfo.h"

#include "core/input/Parts.h"
#include "core/link/Command.h"

#include <algorithm>
#include <string_view>

namespace fieldcore {

namespace {

constexpr int kAttempts = 5;
constexpr double kFirstQ02Version = 4.43;
constexpr std::string_view kWithoutQ02 = ",35@r"; // type codes

/// Asks for one block: it is valid exactly when the request succeeded.
template <typename Block, typename Request>
int Fetch(CCommand& command, std::optional<Block>& block, Request request)
{
    if (command.IsPortOpen() == 0) {
        return 1;
    }
    Block fresh;
    const int result = (command.*request)(fresh);
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
    return Fetch(command, m_known.serial, &CCommand::RequestSerial);
}

int CRecvInfo::GetRETOPT(CCommand& command)
{
    return Fetch(command, m_known.options, &CCommand::RequestOptions);
}

int CRecvInfo::GetRETOPTEX(CCommand& command)
{
    if (command.IsPortOpen() != 0 && Bit(Options().flags2, 7) == 0) {
        m_known.extended.reset();
        return 1;
    }
    return Fetch(command, m_known.extended, &CCommand::RequestOptionsEx);
}

// What it means.

/// Of five digits that count hundredths.
double CRecvInfo::Version(std::wstring SerialReply::*digits) const
{
    return m_known.serial ? CParts::atof((*m_known.serial).*digits) / 100.0 : 0.0;
}

const wchar_t* CRecvInfo::GetRecvType() const
{
    return m_known.serial && Options().typeCode == 'r' ? L"VX4" : Text(&SerialReply::receiverType);
}

int CRecvInfo::GetCMR(int way) const
{
    return m_known.options ? 1 - Bit(Options().rtkFlags, way != Output ? 5 : 6) : 0;
}

int CRecvInfo::GetRTCM1(int way) const
{
    const int output = Options().rtcmOutput;
    return way != Output ? Options().rtcm1Input : output < 2 ? output : 0;
}

int CRecvInfo::GetRTCM2(int way) const
{
    return way != Output ? Options().rtcm2Input : Options().rtcm2Output;
}

int CRecvInfo::GetRTCM21(int way) const
{
    return Bit(Options().rtcm21, way != Output ? 1 : 2);
}

std::uint32_t CRecvInfo::GetMaxLoggingRate() const
{
    const std::uint32_t extended = Extended().loggingRate;
    return extended != 0 ? extended : Options().loggingRate;
}

int CRecvInfo::GetQ02Format() const
{
    const char code = static_cast<char>(Options().typeCode);
    const bool has = code == 'G' || (m_known.options && GetNavVer() >= kFirstQ02Version &&
                                     kWithoutQ02.find(code) == std::string_view::npos);
    return has ? 1 : 0;
}

int CRecvInfo::GetGalileo() const
{
    return Bit(Extended().systems, 19) | Bit(Extended().systems, 23);
}

int CRecvInfo::CMRx(int boardBit) const
{
    const bool counts = GetSolace() != 0 && Bit(Extended().counts, 0) != 0;
    return counts ? Bit(Extended().board, boardBit) : 0;
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
