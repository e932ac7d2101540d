#pragma once

#include "core/host/Host.h"
#include "core/link/Channel.h"
#include "core/link/ChannelTurn.h"
#include "core/link/DirectoryListing.h"
#include "core/link/FrameBuffer.h"
#include "core/link/ReceivedFile.h"
#include "core/link/Replies.h"
#include "core/link/SatelliteReplies.h"
#include "core/platform/FileOperations.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace fieldcore {

struct ListingTarget;
class Questions;

/// The receiver command channel: the one object through which the library and its host talk to
/// the receiver. Every request is a method that answers 1, or 0 on failure; Fault() and
/// LastError() then say why, and the out argument is left as it was. docs/protocol.md has the
/// bytes.
///
/// It is a face of the line to the receiver: it has the buffer in which a request is built and its
/// answer read, and what went wrong last. Several faces can share the line, one for each thread;
/// the requests of one thread wait while another one's is under way. All calls of a face come from
/// one thread.
///
/// An exchange blocks the calling thread for two reply time-outs plus 550 ms at most (one that
/// changes the receiver may first wait for the line to become quiet, see ChannelTurn), and lets the
/// host breathe meanwhile. One that is started from inside such a breath is refused
/// (CommandFault::Busy) and leaves the running one alone.
class CCommand : public FrameBuffer
{
public:
    /// The kinds of answer; who is told of bytes.
    using Answer = fieldcore::Answer;
    using BytesArrived = fieldcore::BytesArrived;

    /// A line of its own.
    explicit CCommand(const Environment& environment = {});
    /// Another face of the same line, for another thread.
    /// @param host  that is asked and breathes here; must outlive the object
    CCommand(const CCommand& shared, Host& host);
    ~CCommand();
    CCommand(const CCommand&) = delete;
    CCommand& operator=(const CCommand&) = delete;

    /// Whom to ask and to let breathe from now on. @p host must outlive the face or the next call.
    void SetHost(Host& host) { m_environment.host = &host; }
    /// The world around it: what was given, with the host of this face.
    [[nodiscard]] const Environment& GetEnvironment() const { return m_environment; }
    [[nodiscard]] Host& GetHost() const { return m_environment.GetHost(); }
    [[nodiscard]] const Clock& GetClock() const { return m_environment.GetClock(); }

    /// What is asked over this line in the background; its thread begins with the first call.
    [[nodiscard]] Questions& Background();
    [[nodiscard]] bool HasBackground() const { return m_questions != nullptr; }

    // What is known of the receiver at the other end, one value for all faces of the line; who asks
    // puts the answers there, in one go for each. Any thread.

    [[nodiscard]] Receiver Heard() const;
    void Hear(const std::function<void(Receiver& known)>& put);
    [[nodiscard]] KnownReceiver& Known() const { return m_channel->Known(); }

    // The port. Close an open one before opening it with other parameters.

    /// @param portNumber  1 for COM1 and so on
    /// @return 1 if the port is open
    int OpenPort(int portNumber, const PortSettings& settings = {});
    /// @param devicePath  a serial device of this machine; "sim:" or "sim:SCENARIO" is a simulated
    /// receiver, in a program that has called UseSimulator()
    /// @param portNumber  the COM number that it counts as; 0: none
    int OpenPort(const std::string& devicePath, const PortSettings& settings = {},
                 int portNumber = 0);
    /// Does nothing from inside a breath of this thread.
    void ClosePort();
    [[nodiscard]] int IsPortOpen() const { return m_channel->IsOpen() ? 1 : 0; }
    /// Of the open port: its COM number, 0 if it has none or none is open.
    [[nodiscard]] int GetPortNumber() const { return m_channel->PortNumber(); }
    /// Of the open port, bit/s; 0 if none is open.
    [[nodiscard]] std::uint32_t GetBaudRate() const { return m_channel->BaudRate(); }
    /// Empties the queues and forgets what is half received.
    int PurgePort();

    /// Of the requests of this face from now on; 0, as at first: that of the port.
    void SetReplyTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    // These need an open port; without one they do nothing.
    void SetFraming(SerialLink::Framing framing);
    void SetHandOver(bool on);
    /// The transport's last error; reading it clears it.
    LinkError TakeLinkError() { return m_channel->TakeLinkError(); }

    // Exchanges of whatever was built in the buffer.

    /// Sends the frame and waits for the answer, twice at the most: a time-out is tried again
    /// after 500 ms and a purge, a damaged answer at once, a refusal not at all.
    /// @return LastResult: 1 or 0. The buffer then holds what came last, zeros after a time-out.
    int Exchange(Answer expected);
    [[nodiscard]] int GetLastResult() const { return LastResult; }
    /// Sends the frame once and keeps whatever comes back, unchecked.
    /// @return 1 if the frame was written
    int SendAndCollect();
    /// Sends a line of text and waits for one, which is then in the buffer; its length is the
    /// data length. The link must be in line mode.
    /// @param text  cut to 256 bytes; CR LF is added unless it ends so
    int SendLine(std::wstring_view text);
    /// Writes text as it is. @return 1 if it was written; no answer is awaited
    int SendText(std::wstring_view text);
    int SendText(std::string_view bytes);

    /// Waits while the host breathes, and keeps the line. @return 0 if the host asked for an end
    int Rest(std::chrono::milliseconds duration);

    // Diagnostics, for developers.

    /// Whether this thread has a request under way, or waits to begin one.
    [[nodiscard]] bool IsBusy() const { return m_channel->IsMine(); }
    [[nodiscard]] CommandFault Fault() const { return m_failed.fault; }
    /// What went wrong last, why as far as it is known, and what to do about it, as the terminal
    /// says it in English, with FaultDetail() in brackets; empty if nothing did. For a port that
    /// did not open it looks at the machine, which takes some milliseconds.
    [[nodiscard]] std::string LastError() const;
    /// What went wrong last and with which request, for developers; empty if nothing did.
    [[nodiscard]] std::string FaultDetail() const;
    /// The system's number for what the port failed of last; 0 if it did not.
    [[nodiscard]] int SystemError() const { return m_channel->LastFault().code; }
    /// The last bytes, at most 256, that came over the open port and were no frame.
    [[nodiscard]] std::vector<std::uint8_t> RecentNoise() const { return m_channel->RecentNoise(); }
    /// Sees everything that passes the line: on the thread that sends, and on that which reads the
    /// port. Empty: nobody does. One for all faces of the line.
    void SetLineObserver(LineObserver observer) { m_channel->SetObserver(std::move(observer)); }

    // Requests.

    /// Sends a BREAK of 300 ms and reads the identification that follows.
    int RequestIdentity(IdentificationRecord& record);
    int RequestSerial(SerialReply& reply) { return Query(0x06, {}, ParseSerial, reply); }
    int RequestStatus(StatusReply& reply) { return Query(0x08, {}, ParseStatus, reply); }
    /// Nudges the receiver after connecting: a status request whose answer is not looked at, and
    /// half a second of peace.
    int WakeReceiver();
    int RequestGpsTime(GpsTimeReply& reply) { return Query(0x14, {}, ParseGpsTime, reply); }
    int RequestSvList(SatelliteList& list) { return Query(0x16, {}, ParseSatelliteList, list); }
    /// The same in as many frames as it takes.
    int RequestSvList(SatelliteList& list, SatelliteListForm form);
    /// The receiver's last known place, for planning.
    int RequestSite(SiteReply& reply) { return Query(0x30, {18, 0}, ParseSite, reply); }
    /// Request 0x32; the reply 0x33 is left in the buffer with the cursor on its data.
    int RequestHostData(std::uint8_t first, std::uint8_t second);
    int RequestPositionStatus(PositionStatusReply& reply)
    {
        return Query(0x34, {}, ParsePositionStatus, reply);
    }
    /// @param source  1 to 3, see ParseBatteryPort(); the next ones: their replies
    int RequestBatteryPort(int& source) { return Query(0x41, {}, ParseBatteryPort, source); }
    int RequestOptions(OptionsReply& reply) { return Query(0x4A, {}, ParseOptions, reply); }
    int RequestOptionsEx(ExtendedOptionsReply& reply)
    {
        return Query(0x4A, {1}, ParseExtendedOptions, reply);
    }
    /// @param prn  1 to 32
    int RequestAlmanac(int prn, AlmanacReply& reply);
    /// @param withTriples  ask for the longer form
    int RequestSvData(SatelliteDataReply& reply, bool withTriples);
    /// The longer form of satellite data, then the words that only some receivers have.
    int RequestSvData(SatelliteDataReply& reply, SatelliteDataExtra& extra);
    int RequestSettingsFlags(SettingsFlags& flags)
    {
        return Query(0x7A, {1, 0}, ParseSettingsFlags, flags);
    }
    /// The status of the receiver's files; then what its tilt sensor says.
    int RequestFileState(StatusReply& reply) { return Query(0x6B, {}, ParseStatus, reply); }
    int RequestTiltReading(TiltReading& reading)
    {
        return Query(0xC8, {1, 0}, ParseTiltReading, reading);
    }
    int RequestTiltCalibration(TiltCalibration& calibration)
    {
        return Query(0xC8, {1, 1}, ParseTiltCalibration, calibration);
    }

    // Commands: 1 if the receiver acknowledged.

    /// Returns the receiver to its factory settings.
    int RequestReset() { return Command(0x58, {0xFF, 0x02, 'R', 'E', 'S', 'E', 'T'}); }
    /// Ends whatever the receiver is busy with.
    int SendAbort() { return Command(0x5A, {0, 0, 0, 0, 0, 0, 0, 0, 0}); }
    /// Sets one of the receiver's own serial ports; it answers at the old rate and changes after
    /// 200 ms. Reply time-out and queue sizes of @p settings are not sent.
    int SetReceiverPort(std::uint8_t port, const PortSettings& settings);
    /// @param data  what to track; 255 bytes at most
    int SetSignals(std::span<const std::uint8_t> data);
    int SetBoardSignals(std::uint8_t first, std::uint8_t second, std::uint8_t third)
    {
        return Command(0xA3, {first, second, third});
    }
    /// @param port  the receiver's port that the controller uses, from 1
    int StartTiltSensor(std::uint8_t port);
    int StopTiltSensor(std::uint8_t port);
    int SetTiltValidity(std::uint16_t hours) { return Command(0xC8, {3, High(hours), Low(hours)}); }
    int StartTiltCalibration() { return Command(0xC8, {4}); }
    int CancelTiltCalibration() { return Command(0xC8, {5}); }
    /// @param speed  0 fast, 1 medium, anything else slow
    int SetTiltSpeed(int speed);

    // Sent without waiting for more than whatever comes: 1 if written.

    int PowerOff();
    /// A label for the receiver's display; 251 bytes of text at most.
    int ShowLabel(std::uint8_t place, std::uint16_t number, std::wstring_view text);

    // Files of the receiver. Which of these a receiver understands depends on its family. Names are
    // those of the receiver; what names a file sends nothing and answers 0 (CommandFault::TooLong)
    // for an empty name, one of more than 14 bytes, which would be cut to that of another file, and
    // one with "*" or "?".

    // Listings fill the table and post to the window as kFileListMessage says, with the number
    // @p message; the end is always posted, also where 0 is answered. When the user cancels one, or
    // FileExists(), the receiver is told to stop.

    /// Lists the files of a Pica, a request a page and 57 pages at most. Only those that may be
    /// listed and fit @p mode are stored; page p, entry k goes to index 9p + k whatever the ones
    /// before it were.
    /// @param mode  1 live files, 0 deleted ones
    /// @param typeNumber  of the receiver: the two Pica types ask differently
    /// @param window  null: nobody is told
    /// @return 1; 0 if it failed, with what came until then in the table
    int RequestFiles_Pica(int mode, std::uint32_t typeNumber, DirectoryTable& table,
                          MessageTarget* window, unsigned message = kFileListMessage);
    /// Lists the files of a Lark that match @p pattern, such as "*.Q01". Page p, entry k goes to
    /// index 8p + k, in whatever order the pages come; one that never comes, or comes damaged,
    /// makes the result 0, with all the others in the table.
    int RequestFiles_Lark(std::wstring_view pattern, DirectoryTable& table, MessageTarget* window,
                          unsigned message = kFileListMessage);
    /// Whether the last listing had files beyond the end of the table.
    [[nodiscard]] bool HasMoreFiles() const { return m_hasMoreFiles; }
    /// Whether a Lark has a file of exactly this name. Fills no table, posts nothing.
    /// @return 1 or 0; of a 0 that is no answer Fault() says why
    int FileExists(std::wstring_view name);

    // Each 1 if the receiver acknowledged.
    int DeleteFile_Pica(std::uint16_t index) { return Command(0x60, {High(index), Low(index)}); }
    int RecoverFile_Pica(std::uint16_t index) { return Command(0x68, {High(index), Low(index)}); }
    int DeleteFile_Lark(std::wstring_view name) { return CommandByName(0xA0, name); }
    int RecoverFile_Lark(std::wstring_view name) { return CommandByName(0xA1, name); }

    /// Copies a file of a Lark into a folder of this machine. It is written to NAME.part there,
    /// block by block, synced, and renamed to NAME (replacing what has that name) once exactly
    /// @p expectedSize bytes are there; else NAME.part stays. The next transfer of a file of this
    /// name, size and time goes on there if it can, see ReceivedFile; else it begins anew.
    /// GetTransferStart() says which. A host whose Breathe() answers false, or @p arrived, ends it
    /// within one block. Memory does not grow with the file.
    ///
    /// @param folder  its last level is made if it is missing
    /// @param name  refused if CheckReceivedName() says so
    /// @param time  of the file, as the receiver lists it; nothing: it always begins anew
    /// @return the bytes written; the file is there under its name only if they are
    /// @p expectedSize and GetDownloadFault() is None. -1 when the transfer is incomplete
    std::int64_t DownloadFile(const std::filesystem::path& folder, std::wstring_view name,
                              std::uint32_t expectedSize, const BytesArrived& arrived = {},
                              std::optional<std::uint32_t> time = std::nullopt);
    /// Of the last download, as the next three.
    [[nodiscard]] DownloadFault GetDownloadFault() const { return m_transfer.fault; }
    /// Also from inside @p arrived, which is first called when it is known.
    [[nodiscard]] const TransferStart& GetTransferStart() const { return m_transfer.start; }
    /// Of DownloadFault::Name.
    [[nodiscard]] NameFault GetNameFault() const { return m_transfer.name; }
    /// What the system said to DownloadFault::Folder or Write.
    [[nodiscard]] std::error_code GetFileError() const { return m_transfer.error; }
    /// How files are written from now on. @p operations must outlive the face or the next call.
    void SetFileOperations(FileOperations& operations) { m_operations = &operations; }

private:
    /// How a request has failed.
    struct Failed
    {
        CommandFault fault = CommandFault::None;
        std::uint8_t request = 0; ///< its type; 0: it was no frame
        std::uint8_t answer = 0;  ///< type of the one that was not expected
        std::string device{};     ///< what the port says
        std::string port{};       ///< that was to be opened
    };

    static std::uint8_t High(std::uint16_t word) { return static_cast<std::uint8_t>(word >> 8); }
    static std::uint8_t Low(std::uint16_t word) { return static_cast<std::uint8_t>(word); }
    void Build(std::uint8_t type, std::span<const std::uint8_t> data);
    void Build(std::uint8_t type, std::initializer_list<std::uint8_t> data = {})
    {
        Build(type, std::span(data.begin(), data.size()));
    }
    /// A request of these bytes that is answered by an acknowledgement.
    int Command(std::uint8_t type, std::initializer_list<std::uint8_t> data)
    {
        Build(type, data);
        return Exchange(Answer::Ack);
    }
    int CommandByName(std::uint8_t type, std::wstring_view name);
    /// Does the work of a request of that type, 0 if it is no frame, in a turn on the open port.
    template <typename Work>
    int InTurn(std::uint8_t request, Work work);
    int Finish(ChannelTurn& turn, int result);
    int Fail(CommandFault fault);
    /// A request of these bytes that is answered by what @p parse reads.
    template <typename Parse, typename Reply>
    int Query(std::uint8_t type, std::initializer_list<std::uint8_t> data, Parse parse,
              Reply& reply)
    {
        Build(type, data);
        return Exchange(Answer::Reply) == 1 ? Keep(parse(Reader()), reply) : 0;
    }
    template <typename Reply>
    int Keep(std::optional<Reply> parsed, Reply& reply)
    {
        if (!parsed) {
            m_channel->NoteOdd();
            return Fail(CommandFault::WrongType);
        }
        reply = std::move(*parsed);
        return 1;
    }
    int CollectFrames(ChannelTurn& turn, SatelliteList& list, SatelliteListForm form);
    template <typename Work>
    int List(std::uint8_t request, ListingTarget target, Work list);

    const std::shared_ptr<Channel> m_channel;
    Environment m_environment;
    std::chrono::milliseconds m_timeout{}; // 0: that of the port
    Failed m_failed;
    int LastResult = 0;

    FileOperations* m_operations = &FileOperations::Instance();
    bool m_hasMoreFiles = false;
    Transfer m_transfer; // of the last download

    std::unique_ptr<Questions> m_questions; // null until they are asked for
};

template <typename Work>
int CCommand::InTurn(std::uint8_t request, Work work)
{
    m_failed = {CommandFault::None, request, 0, {}};
    ChannelTurn turn(*m_channel, GetHost(), PacketBuffer, m_timeout);
    return Finish(turn, turn.MayAsk() ? work(turn) : 0);
}

/// The library's one channel to the receiver. It exists as long as the program.
[[nodiscard]] CCommand* GetCCommand();
/// The world around a channel; without one this machine's own.
[[nodiscard]] inline Environment EnvironmentOf(const CCommand* command)
{
    return command != nullptr ? command->GetEnvironment() : Environment{};
}

} // namespace fieldcore
