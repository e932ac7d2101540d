#pragma once

#include "core/link/DownloadCommand.h"
#include "core/link/Identification.h"
#include "core/link/Replies.h"
#include "core/link/SatelliteReplies.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

namespace fieldcore {

/// The receiver command channel: the one object through which the library and its host talk to
/// the receiver. Every request is a method that answers 1, or 0 on failure; Fault() and
/// LastError() then say why, and the out argument is left as it was. See CommandChannel for the
/// port, the exchange and its threads; FileCommands and DownloadCommand for the receiver's files;
/// docs/protocol.md for the bytes.
class CCommand : public DownloadCommand
{
public:
    CCommand() : CCommand(Surroundings{}) {}
    explicit CCommand(Surroundings surroundings) : DownloadCommand(std::move(surroundings)) {}

    // Requests.

    /// Sends a BREAK of 300 ms and reads the identification that follows.
    int RequestIdentity(IdentificationRecord& record);
    int RequestSerial(SerialReply& reply);
    int RequestStatus(StatusReply& reply);
    /// Nudges the receiver after connecting: a status request whose answer is not looked at, and
    /// half a second of peace.
    int WakeReceiver();
    int RequestGpsTime(GpsTimeReply& reply);
    int RequestSvList(SatelliteList& list);
    /// The same in as many frames as it takes.
    int RequestSvList(SatelliteList& list, SatelliteListForm form);
    /// The receiver's last known place, for planning.
    int RequestSite(SiteReply& reply);
    /// Request 0x32; the reply 0x33 is left in the buffer with the cursor on its data.
    int RequestHostData(std::uint8_t first, std::uint8_t second);
    int RequestPositionStatus(PositionStatusReply& reply);
    int RequestBatteryPort(int& source);
    int RequestOptions(OptionsReply& reply);
    int RequestOptionsEx(ExtendedOptionsReply& reply);
    /// @param prn  1 to 32
    int RequestAlmanac(int prn, AlmanacReply& reply);
    /// @param withTriples  ask for the longer form
    int RequestSvData(SatelliteDataReply& reply, bool withTriples);
    /// The longer form of satellite data, then the words that only some receivers have.
    int RequestSvData(SatelliteDataReply& reply, SatelliteDataExtra& extra);
    int RequestSettingsFlags(SettingsFlags& flags);
    int RequestFileState(StatusReply& reply);
    int RequestTiltReading(TiltReading& reading);
    int RequestTiltCalibration(TiltCalibration& calibration);

    // Commands: 1 if the receiver acknowledged.

    /// Returns the receiver to its factory settings.
    int RequestReset();
    /// Ends whatever the receiver is busy with.
    int SendAbort();
    /// Sets one of the receiver's own serial ports; it answers at the old rate and changes after
    /// 200 ms. Reply time-out and queue sizes of @p settings are not sent.
    int SetReceiverPort(std::uint8_t port, const PortSettings& settings);
    /// @param data  what to track; 255 bytes at most
    int SetSignals(std::span<const std::uint8_t> data);
    int SetBoardSignals(std::uint8_t first, std::uint8_t second, std::uint8_t third);
    /// @param port  the receiver's port that the controller uses, from 1
    int StartTiltSensor(std::uint8_t port);
    int StopTiltSensor(std::uint8_t port);
    int SetTiltValidity(std::uint16_t hours);
    int StartTiltCalibration();
    int CancelTiltCalibration();
    /// @param speed  0 fast, 1 medium, anything else slow
    int SetTiltSpeed(int speed);

    // Sent without waiting for more than whatever comes: 1 if written.

    int PowerOff();
    /// A label for the receiver's display; 251 bytes of text at most.
    int ShowLabel(std::uint8_t place, std::uint16_t number, std::wstring_view text);

private:
    template <typename Reply>
    int Query(std::optional<Reply> (*parse)(FrameReader), Reply& reply);
    template <typename Reply>
    int Keep(std::optional<Reply> parsed, Reply& reply);
    int CollectFrames(SatelliteList& list, SatelliteListForm form);
};

/// The library's one channel to the receiver. It exists as long as the program.
[[nodiscard]] CCommand* GetCCommand();

} // namespace fieldcore
