#include "core/link/DownloadCommand.h"

#include "core/link/FileReplies.h"
#include "core/platform/PosixFileOperations.h"

namespace fieldcore {

namespace {

constexpr std::uint8_t kFetch = 0x96;
constexpr int kMostAsks = 4; // for one block: the first and three more

} // namespace

/// How one row of blocks, asked for by one request, ended.
enum class DownloadCommand::RunEnd
{
    GoesOn, ///< it has not
    Whole,
    AskAgain,
    GivenUp,
};

std::int64_t DownloadCommand::DownloadFile(const std::filesystem::path& folder,
                                           std::wstring_view name, std::uint32_t expectedSize,
                                           const BytesArrived& arrived)
{
    m_downloadFault = DownloadFault::None;
    m_fileError = {};
    if (!IsReceivableName(name) || !IsReceiverFileName(name)) {
        return FailDownload(DownloadFault::Name);
    }
    if (!MayStart()) {
        return FailDownload(DownloadFault::Link);
    }
    ReceivedFile file(folder, name, expectedSize,
                      m_operations != nullptr ? *m_operations : PosixFileOperations::Instance());
    if (!file.Open()) {
        return FailDownload(file.Fault(), file.Error());
    }
    if (!FetchFile(name, file, arrived)) {
        if (file.Fault() != DownloadFault::None) {
            return FailDownload(file.Fault(), file.Error());
        }
        return FailDownload(Fault() == CommandFault::Cancelled ? DownloadFault::Cancelled
                                                               : DownloadFault::Link);
    }
    Succeed(); // whatever went wrong on the way was made good
    if (!file.Finish()) {
        const std::int64_t failed = FailDownload(file.Fault(), file.Error());
        return file.Fault() == DownloadFault::WrongSize ? std::int64_t{file.Offset()} : failed;
    }
    return file.Offset();
}

std::int64_t DownloadCommand::FailDownload(DownloadFault fault, std::error_code error)
{
    m_downloadFault = fault;
    m_fileError = error;
    return -1;
}

/// @return whether the receiver has sent its last block
bool DownloadCommand::FetchFile(std::wstring_view name, ReceivedFile& file,
                                const BytesArrived& arrived)
{
    for (int ask = 0; ask < kMostAsks; ++ask) {
        const std::uint32_t from = file.Offset();
        BeginPacket(kFetch, kLongestFileName + 6);
        PutText(name, kLongestFileName);
        PutLong(from);
        PutWord(0); // to the end
        EndPacket();
        KeepRequest();
        RunEnd end = RunEnd::GivenUp;
        {
            const BusyGuard busy(*this);
            SetHandOver(true);
            end = FetchRun(file, arrived);
            SetHandOver(false);
        }
        if (end == RunEnd::Whole) {
            return true;
        }
        if (Fault() == CommandFault::Refused || Fault() == CommandFault::LinkLost) {
            return false;
        }
        AbortTransmission();
        if (end == RunEnd::GivenUp || Fault() == CommandFault::LinkLost) {
            return false;
        }
        if (file.Offset() != from) {
            ask = 0; // this request, for the next block, was the first
        }
    }
    return false;
}

DownloadCommand::RunEnd DownloadCommand::FetchRun(ReceivedFile& file, const BytesArrived& arrived)
{
    if (!ForgetLateAnswers()) {
        return RunEnd::GivenUp;
    }
    if (!WriteRequest()) {
        return Fault() == CommandFault::Cancelled ? RunEnd::GivenUp : RunEnd::AskAgain;
    }
    bool first = true;
    for (;;) { // ends: every block that is taken brings the file nearer to its expected size
        switch (WaitForAnswer().state) {
        case ExchangeState::Frame:
            break;
        case ExchangeState::Nak:
            Fail(first ? CommandFault::Refused : CommandFault::WrongAnswer);
            return first ? RunEnd::GivenUp : RunEnd::AskAgain;
        case ExchangeState::Ack:
            Fail(CommandFault::WrongAnswer);
            return RunEnd::AskAgain;
        case ExchangeState::Malformed:
            Fail(CommandFault::Malformed);
            return RunEnd::AskAgain;
        case ExchangeState::Nothing:
        case ExchangeState::TimedOut:
            return Fault() == CommandFault::TimedOut ? RunEnd::AskAgain : RunEnd::GivenUp;
        }
        first = false;
        const RunEnd end = TakeBlock(file, arrived);
        if (end != RunEnd::GoesOn) {
            return end;
        }
    }
}

DownloadCommand::RunEnd DownloadCommand::TakeBlock(ReceivedFile& file, const BytesArrived& arrived)
{
    if (VerifyChecksum() == 0) {
        Fail(CommandFault::BadChecksum);
        return RunEnd::AskAgain;
    }
    const auto block = ParseFileBlock(Reader());
    if (!block) {
        FailOnType();
        return RunEnd::AskAgain;
    }
    const ReceivedFile::Verdict verdict = file.Take(*block);
    switch (verdict) {
    case ReceivedFile::Verdict::Again:
        FailOnType();
        return RunEnd::AskAgain;
    case ReceivedFile::Verdict::Ended:
        return RunEnd::GivenUp;
    case ReceivedFile::Verdict::More:
    case ReceivedFile::Verdict::Whole:
        break;
    }
    // A receiver that sends without a pause would leave the host no other moment to breathe.
    const bool wanted = !arrived || arrived(file.Offset());
    if (!GetHost().Breathe() || !wanted) {
        Fail(CommandFault::Cancelled);
        return RunEnd::GivenUp;
    }
    return verdict == ReceivedFile::Verdict::Whole ? RunEnd::Whole : RunEnd::GoesOn;
}

} // namespace fieldcore
