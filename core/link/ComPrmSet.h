#pragma once

#include "core/link/ConnectChoice.h"
#include "core/settings/HostReg.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fieldcore {

/// The parameters of one of the receiver's serial ports, as they are sent to it.
struct SetRS232PortParameters
{
    std::uint8_t port = 1; ///< of the receiver, from 1
    std::uint32_t baudRate = 9600;
    std::uint8_t dataLength = 8;  ///< 8 or 7
    std::uint8_t parity = 0;      ///< 0 none, 1 odd, 2 even
    std::uint8_t stopBits = 0;    ///< 0 one, 2 two
    std::uint8_t flowControl = 0; ///< 0 none, 1 Xon/Xoff, 2 CTS
    std::uint8_t spare = 0;

    bool operator==(const SetRS232PortParameters&) const = default;
};

/// One set of serial parameters: stored in the settings under a port's number, and shown as
/// indexes into lists of choices, which are called flags. Port 0 is the controller's own link to
/// the receiver, 1 to 3 are the ports of the receiver.
///
/// Values and flags are two states, and ConvData2Flag() and ConvFlag2Data() lead from one to the
/// other; a stored value that is no choice becomes one on that way. One thread at a time, together
/// with all others that use the same settings.
class CComPrmSet
{
public:
    /// The port that leads to the receiver.
    static constexpr int kLinkPort = 0;
    static constexpr int kMostPorts = 3; ///< of a receiver

    /// 9600-8-None-1-None.
    /// @param roots  must outlive the object
    explicit CComPrmSet(SettingsRoots& roots = SettingsRoots::Instance());

    /// Reads the values of a port. A missing one is the default (8-None-1-None with 38400 for port
    /// 0, else 9600) and gets stored. Of a number larger than its field the low 8 bits count.
    /// @return 0 at the first value that can be neither read nor made, such as a text in its place:
    ///         it and the values behind it are the defaults then
    int ReadRegCommPrm(int port);
    /// Stores the five values, or none of them.
    int WriteRegCommPrm(int port) const;

    /// Brings the flags to the data, and the data to the flags.
    void ConvData2Flag();
    void ConvFlag2Data();

    // Flags. Setting one answers 1 if it was another before. One beyond its list becomes the
    // default choice: 9600, 8, None, 1, None.
    [[nodiscard]] int GetFlagBps() const { return m_flags[Bps]; }
    [[nodiscard]] int GetFlagDataBits() const { return m_flags[DataBits]; }
    [[nodiscard]] int GetFlagParity() const { return m_flags[Parity]; }
    [[nodiscard]] int GetFlagStopBits() const { return m_flags[StopBits]; }
    [[nodiscard]] int GetFlagFlowCtrl() const { return m_flags[FlowCtrl]; }
    int SetFlagBps(int flag) { return SetFlag(Bps, flag); }
    int SetFlagDataBits(int flag) { return SetFlag(DataBits, flag); }
    int SetFlagParity(int flag) { return SetFlag(Parity, flag); }
    int SetFlagStopBits(int flag) { return SetFlag(StopBits, flag); }
    int SetFlagFlowCtrl(int flag) { return SetFlag(FlowCtrl, flag); }

    /// The stored value of flow control itself: 0 none, 1 Xon/Xoff, 2 CTS; any other becomes 0.
    [[nodiscard]] std::uint8_t GetDataFlowCtrl() const { return ByteOf(FlowCtrl); }
    int SetDataFlowCtrl(std::uint8_t flow);

    // What the lists show: for a flag, or for the one that is set.
    [[nodiscard]] std::wstring GetStrBps(int flag) const { return TextOf(Bps, flag); }
    [[nodiscard]] std::wstring GetStrDataBits(int flag) const { return TextOf(DataBits, flag); }
    [[nodiscard]] std::wstring GetStrParity(int flag) const { return TextOf(Parity, flag); }
    [[nodiscard]] std::wstring GetStrStopBits(int flag) const { return TextOf(StopBits, flag); }
    [[nodiscard]] std::wstring GetStrFlowCtrl(int flag) const { return TextOf(FlowCtrl, flag); }
    [[nodiscard]] std::wstring GetStrBps() const { return GetStrBps(GetFlagBps()); }
    [[nodiscard]] std::wstring GetStrDataBits() const { return GetStrDataBits(GetFlagDataBits()); }
    [[nodiscard]] std::wstring GetStrParity() const { return GetStrParity(GetFlagParity()); }
    [[nodiscard]] std::wstring GetStrStopBits() const { return GetStrStopBits(GetFlagStopBits()); }
    [[nodiscard]] std::wstring GetStrFlowCtrl() const { return GetStrFlowCtrl(GetFlagFlowCtrl()); }

    /// The five texts of the flags: rate, data bits, parity, stop bits, flow.
    void GetPrmString(std::wstring& bps, std::wstring& dataBits, std::wstring& parity,
                      std::wstring& stopBits, std::wstring& flow) const
    {
        bps = GetStrBps();
        dataBits = GetStrDataBits();
        parity = GetStrParity();
        stopBits = GetStrStopBits();
        flow = GetStrFlowCtrl();
    }
    /// The same as one text: 9600-8-None-1-None.
    [[nodiscard]] std::wstring GetPrmString() const;
    /// Sets flags and values from such a text, in any case; what is left out at its end stays.
    /// @return 0, and nothing changes, if a part is in none of the lists or there are too many
    int SetPrmString(const std::wstring& text);

    /// Fills the record for the receiver from the values.
    void GetSETCOMMS(int port, SetRS232PortParameters& record) const;
    /// How the controller runs a line with the values.
    [[nodiscard]] PortSettings Line() const;
    /// Takes the values of such a line over, and sets the flags from them.
    void SetLine(const PortSettings& line);

    /// The other two ports of the receiver, the higher number first.
    static void GetOtherPorNo(int port, int& first, int& second);

    /// Whether the flags are the same.
    [[nodiscard]] bool HasFlagsOf(const CComPrmSet& other) const
    {
        return m_flags == other.m_flags;
    }

private:
    /// The five parameters, in the order in which they are stored and shown.
    enum Part : std::size_t
    {
        Bps,
        DataBits,
        Parity,
        StopBits,
        FlowCtrl,
        PartCount,
    };

    int SetFlag(Part part, int flag);
    [[nodiscard]] static std::wstring TextOf(std::size_t part, int flag);
    [[nodiscard]] std::uint8_t ByteOf(Part part) const
    {
        return static_cast<std::uint8_t>(m_values[part]);
    }

    HostReg m_reg;
    std::array<std::uint32_t, PartCount> m_values{};
    std::array<int, PartCount> m_flags{2, 0, 0, 0, 0};
};

/// The parameters with which the controller's own line is to be run: those of port 0, brought to
/// what the lists offer.
[[nodiscard]] PortSettings LinkSettings(SettingsRoots& roots);

/// Stores the parameters of the controller's own line: all that changes it comes through here.
/// @return 1, or 0 if they could not be stored
int StoreLink(const CComPrmSet& line);

/// Stores another rate for the controller's own line; the other parameters stay.
/// @return 1; 0 if the rate is none of kBaudRates, or could not be stored
int SetLinkRate(std::uint32_t baudRate, SettingsRoots& roots);

} // namespace fieldcore
