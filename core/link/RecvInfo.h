#pragma once

#include "core/link/Receiver.h"

#include <cstdint>
#include <utility>

namespace fieldcore {

class CCommand;

/// Who the receiver is and what it can do: reads its identity, its installed options and its
/// extended options, and gives the answers that the dialogs ask of them. A getter whose block was
/// not read answers 0 or what it says. Not tied to a channel; one thread.
class CRecvInfo
{
public:
    /// What a getter of a correction format asks about.
    enum Way : int
    {
        Output = 0, ///< sending corrections
        Input = 1,  ///< receiving corrections
    };

    CRecvInfo() = default;
    /// What has been read already, perhaps only in part.
    explicit CRecvInfo(ReceiverIdentity known) : m_known(std::move(known)) {}
    virtual ~CRecvInfo() = default;

    // Reading. Each answers 1 or 0; without an open port 1 at once, with nothing changed.

    /// All three blocks, in this order; ends at the first that fails.
    int GetOptionData(CCommand& command);
    /// The same, but asks only for the blocks that are not there yet.
    int ReadMissing(CCommand& command);
    int GetRSERIAL(CCommand& command);
    int GetRETOPT(CCommand& command);
    /// A receiver that has no extended options is no failure.
    int GetRETOPTEX(CCommand& command);

    /// The three blocks; one that is there is valid.
    [[nodiscard]] const ReceiverIdentity& Known() const { return m_known; }

    // Identity. The texts live as long as the object and are null when it was not read.

    [[nodiscard]] const wchar_t* GetRecvSN() const;
    [[nodiscard]] const wchar_t* GetRecvSNLong() const;
    [[nodiscard]] const wchar_t* GetRecvType() const;
    /// Firmware versions as people write them: 4.43. 0.0 when not read.
    [[nodiscard]] double GetNavVer() const;
    [[nodiscard]] double GetSigVer() const;
    [[nodiscard]] double GetBootVer() const;

    // Options.

    [[nodiscard]] std::uint32_t GetRecvTypeNum() const;
    [[nodiscard]] int GetRecvMemory() const;
    [[nodiscard]] int GetCurrentPortID() const;  ///< 1 when not read
    [[nodiscard]] int GetPortsAvailable() const; ///< 1 when not read
    [[nodiscard]] int GetFileNaming() const;
    [[nodiscard]] int GetL1L2Option() const;
    [[nodiscard]] int GetL2() const { return GetL1L2Option(); }
    [[nodiscard]] int GetRtkSurvey() const;
    [[nodiscard]] int GetRtkOTF() const;
    [[nodiscard]] int GetNMEA() const;
    [[nodiscard]] int GetCMR(int way) const;
    [[nodiscard]] int GetCMRp() const;
    [[nodiscard]] int GetRtkVRS() const;
    [[nodiscard]] int GetRTCM1(int way) const;
    [[nodiscard]] int GetRTCM2(int way) const;
    [[nodiscard]] int GetRTCM21(int way) const;
    [[nodiscard]] int GetRTCM22() const;
    [[nodiscard]] int GetRTCM23() const;
    [[nodiscard]] int GetRTCM30() const;
    [[nodiscard]] int GetBlueTooth() const;
    [[nodiscard]] int Get2HzLogging() const; ///< 0 or 2
    /// The receiver's rate word, times 100 unless it comes from the extended options.
    [[nodiscard]] std::uint32_t GetMaxLoggingRate() const;
    [[nodiscard]] int GetQ02Format() const;
    [[nodiscard]] int GetSolace() const; ///< 0 or 128

    // Extended options.

    [[nodiscard]] int GetL5() const;
    [[nodiscard]] int GetL2C() const;
    [[nodiscard]] int GetGLONASS() const;
    [[nodiscard]] int GetMeridian() const;
    [[nodiscard]] int GetGalileo() const;
    [[nodiscard]] int GetQZSS() const;
    [[nodiscard]] int GetTilt() const;
    [[nodiscard]] int GetCMRxInput() const;
    [[nodiscard]] int GetCMRxOutput() const;

private:
    ReceiverIdentity m_known;
};

/// The receiver's type number, in up to five attempts; 0 if none succeeds or the host cancels.
[[nodiscard]] std::uint32_t GetRecvTypeNum(CCommand& command);

/// The navigation firmware version, in up to five attempts; 0.0 if none succeeds or the host
/// cancels.
[[nodiscard]] double GetRecvVer(CCommand& command);

} // namespace fieldcore
