#pragma once

#include "core/link/Receiver.h"

#include <cstdint>
#include <optional>
#include <string>
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

    [[nodiscard]] const wchar_t* GetRecvSN() const { return Text(&SerialReply::shortSerial); }
    [[nodiscard]] const wchar_t* GetRecvSNLong() const { return Text(&SerialReply::longSerial); }
    [[nodiscard]] const wchar_t* GetRecvType() const;
    /// Firmware versions as people write them: 4.43. 0.0 when not read.
    [[nodiscard]] double GetNavVer() const { return Version(&SerialReply::navVersion); }
    [[nodiscard]] double GetSigVer() const { return Version(&SerialReply::sigVersion); }
    [[nodiscard]] double GetBootVer() const { return Version(&SerialReply::bootVersion); }

    // Options.

    [[nodiscard]] std::uint32_t GetRecvTypeNum() const { return m_known.TypeNumber(); }
    [[nodiscard]] int GetRecvMemory() const { return Options().memory; }
    /// 1 when not read, as the next.
    [[nodiscard]] int GetCurrentPortID() const { return Options().currentPort; }
    [[nodiscard]] int GetPortsAvailable() const { return Options().portCount; }
    [[nodiscard]] int GetFileNaming() const { return Bit(Options().flags1, 4); }
    [[nodiscard]] int GetL1L2Option() const { return Options().frequencies == 2 ? 1 : 0; }
    [[nodiscard]] int GetL2() const { return GetL1L2Option(); }
    [[nodiscard]] int GetRtkSurvey() const { return Options().rtk != 0 ? 1 : 0; }
    [[nodiscard]] int GetRtkOTF() const { return Bit(Options().rtkFlags, 3); }
    [[nodiscard]] int GetNMEA() const { return Options().nmea; }
    [[nodiscard]] int GetCMR(int way) const;
    [[nodiscard]] int GetCMRp() const { return Bit(Options().flags1, 2); }
    [[nodiscard]] int GetRtkVRS() const { return Bit(Options().flags2, 4); }
    [[nodiscard]] int GetRTCM1(int way) const;
    [[nodiscard]] int GetRTCM2(int way) const;
    [[nodiscard]] int GetRTCM21(int way) const;
    [[nodiscard]] int GetRTCM22() const { return Bit(Options().flags1, 6); }
    [[nodiscard]] int GetRTCM23() const { return Bit(Options().rtcmOutput, 1); }
    [[nodiscard]] int GetRTCM30() const { return Bit(Options().rtcmOutput, 2); }
    [[nodiscard]] int GetBlueTooth() const { return Options().bluetooth ? 1 : 0; }
    /// 0 or 2.
    [[nodiscard]] int Get2HzLogging() const { return Options().flags2 & 0x02; }
    /// The receiver's rate word, times 100 unless it comes from the extended options.
    [[nodiscard]] std::uint32_t GetMaxLoggingRate() const;
    [[nodiscard]] int GetQ02Format() const;
    /// 0 or 128.
    [[nodiscard]] int GetSolace() const { return Options().rtkFlags & 0x80; }

    // Extended options.

    [[nodiscard]] int GetL5() const { return Bit(Extended().signals, 29); }
    [[nodiscard]] int GetL2C() const { return Bit(Extended().signals, 21); }
    [[nodiscard]] int GetGLONASS() const { return Bit(Extended().systems, 0); }
    [[nodiscard]] int GetMeridian() const { return Bit(Extended().board, 6); }
    [[nodiscard]] int GetGalileo() const;
    [[nodiscard]] int GetQZSS() const { return Bit(Extended().sensors, 2); }
    [[nodiscard]] int GetTilt() const { return Bit(Extended().sensors, 1); }
    [[nodiscard]] int GetCMRxInput() const { return CMRx(4); }
    [[nodiscard]] int GetCMRxOutput() const { return CMRx(5); }

private:
    [[nodiscard]] const wchar_t* Text(std::wstring SerialReply::*field) const
    {
        return m_known.serial ? ((*m_known.serial).*field).c_str() : nullptr;
    }
    [[nodiscard]] double Version(std::wstring SerialReply::*digits) const;
    /// A block, or what stands for one that was not read.
    template <typename Block>
    static const Block& Of(const std::optional<Block>& block)
    {
        static const Block kUnread;
        return block ? *block : kUnread;
    }
    [[nodiscard]] const OptionsReply& Options() const { return Of(m_known.options); }
    [[nodiscard]] const ExtendedOptionsReply& Extended() const { return Of(m_known.extended); }
    static int Bit(std::uint32_t flags, int bit) { return (flags >> bit & 1) != 0 ? 1 : 0; }
    [[nodiscard]] int CMRx(int boardBit) const;

    ReceiverIdentity m_known;
};

/// The receiver's type number, in up to five attempts; 0 if none succeeds or the host cancels.
[[nodiscard]] std::uint32_t GetRecvTypeNum(CCommand& command);

/// The navigation firmware version, in up to five attempts; 0.0 if none succeeds or the host
/// cancels.
[[nodiscard]] double GetRecvVer(CCommand& command);

} // namespace fieldcore
