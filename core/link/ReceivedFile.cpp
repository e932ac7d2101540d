#include "core/link/ReceivedFile.h"

#include "core/platform/ContentSum.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

// Bytes that are written at once: calls for single blocks are a tenth of what a fast line costs.
constexpr std::size_t kPiece = 32 * 1024;
constexpr std::size_t kBlock = 1000; // bytes of a block of the receiver
// Of the largest file: its pieces, at forty bytes each.
constexpr std::size_t kMostInfo = 0x100000000 / kPiece * 40;
constexpr std::string_view kInfoTitle = "fieldcore: beginning of ";

constexpr std::array kMeanings{
    AnewMeaning{AnewReason::None, "", 0},
    AnewMeaning{AnewReason::NotOurs,
                "the unfinished file is another user's, has a second name or is a link",
                text::kAnewNotOurs},
    AnewMeaning{AnewReason::NoRecord, "nothing says what the unfinished file is the beginning of",
                text::kAnewNoRecord},
    AnewMeaning{AnewReason::OtherFile,
                "the unfinished file is of one of another size or another time",
                text::kAnewOtherFile},
    AnewMeaning{AnewReason::Damaged, "the unfinished file is no longer what had arrived",
                text::kAnewDamaged},
    AnewMeaning{AnewReason::Changed, "the receiver's file is another one by now",
                text::kAnewChanged},
    AnewMeaning{AnewReason::NotFromMiddle, "the receiver sends files from the beginning only",
                text::kAnewNotFromMiddle},
};

/// Takes no memory: the last piece is written where there may be none.
std::string_view PieceLine(std::uint32_t end, std::uint64_t sum, std::array<char, 40>& line)
{
    char* const last = line.data() + line.size();
    char* at = std::to_chars(line.data(), last, end).ptr;
    *at++ = ' ';
    at = std::to_chars(at, last, sum, 16).ptr;
    *at++ = '\n';
    return {line.data(), at};
}

/// @return the number before the line's blank; 0 if there is none
std::uint32_t PieceEnd(std::string_view line)
{
    std::uint32_t end = 0;
    std::from_chars(line.data(), line.data() + line.size(), end);
    return end;
}

fs::path FileName(std::wstring_view name, const char* ending = "")
{
    return {ToUtf8(name) + ending};
}

} // namespace

const AnewMeaning& MeaningOf(AnewReason reason)
{
    return kMeanings[static_cast<std::size_t>(reason)];
}

ReceivedFile::ReceivedFile(const fs::path& folder, std::wstring_view name,
                           std::uint32_t expectedSize, std::optional<std::uint32_t> time,
                           FileOperations& operations, Transfer& transfer)
    : m_operations(operations), m_transfer(transfer), m_target(folder / FileName(name)),
      m_infoFile(folder / FileName(name, ".part.info")), m_expected(expectedSize), m_time(time),
      m_file(m_target, FileName(name, ".part"), operations, AtomicFile::Unfinished::Keep)
{}

ReceivedFile::~ReceivedFile()
{
    static_cast<void>(WritePiece()); // of a file that stays unfinished
    CloseInfo();
}

void ReceivedFile::CloseInfo()
{
    if (m_info >= 0) {
        m_operations.Close(m_info);
        m_info = -1;
    }
}

// Opening.

bool ReceivedFile::Open()
{
    std::error_code ignored; // what could not be made cannot be written to either
    fs::create_directory(m_target.parent_path(), ignored);
    if (fs::is_symlink(fs::symlink_status(m_target, ignored))) {
        // What it leads to may lie in another folder.
        return Fail(DownloadFault::Folder, std::make_error_code(std::errc::not_supported));
    }
    if (m_time) {
        const std::error_code error = m_file.OpenLeft();
        if (error == std::errc::timed_out) { // another program fetches it at this moment
            return Fail(DownloadFault::Folder, error);
        }
        if (error != std::errc::no_such_file_or_directory) {
            m_transfer.start.reason = error ? AnewReason::NotOurs : ReadLeft();
        }
    }
    return m_held > 0 || OpenNew();
}

/// Makes an empty NAME.part, and its info file.
bool ReceivedFile::OpenNew()
{
    CloseInfo();
    m_opensNew = false;
    const std::error_code error = m_file.Open();
    if (error) {
        return Fail(DownloadFault::Folder, error);
    }
    m_written = 0;
    m_sum = kSumOfNothing;
    // Without one the transfer works as well; it cannot be gone on with.
    if (!m_time) {
        m_operations.Remove(m_infoFile);
    } else if (m_operations.Open(m_infoFile, m_infoFile, m_info) ||
               m_operations.Write(m_info, InfoHead())) {
        CloseInfo();
    }
    return true;
}

std::string ReceivedFile::InfoHead() const
{
    return std::string(kInfoTitle) + m_target.filename().string() + "\nsize " +
           std::to_string(m_expected) + "\ntime " + std::to_string(m_time.value_or(0)) + "\n";
}

// Going on with what an earlier transfer has left.

/// Leaves of the two files what can be gone on with.
AnewReason ReceivedFile::ReadLeft()
{
    if (m_operations.OpenLeft(m_infoFile, m_info)) {
        return AnewReason::NoRecord;
    }
    std::string info;
    std::string piece(kPiece, '\0');
    for (std::size_t count = 1; count > 0 && info.size() < kMostInfo;) {
        if (m_operations.Read(m_info, piece, count)) {
            return AnewReason::NoRecord;
        }
        info.append(piece, 0, count);
    }
    const std::string head = InfoHead();
    if (!info.starts_with(head)) {
        return info.starts_with(kInfoTitle) ? AnewReason::OtherFile : AnewReason::NoRecord;
    }
    return ReadPieces(std::string_view(info).substr(head.size()));
}

/// @param pieces  the lines of the info file behind its head
AnewReason ReceivedFile::ReadPieces(std::string_view pieces)
{
    std::size_t good = 0; // bytes of the lines that hold
    std::uint64_t sum = kSumOfNothing;
    std::string tail;
    std::array<char, 40> expected{};
    for (std::size_t next = 0; (next = pieces.find('\n', good)) != std::string_view::npos;) {
        const std::string_view line = pieces.substr(good, next + 1 - good);
        const std::uint32_t end = PieceEnd(line);
        if (end <= m_written || end > m_expected || !ReadPiece(end - m_written, sum, tail) ||
            line != PieceLine(end, sum, expected)) {
            break;
        }
        good = next + 1;
        m_written = end;
        m_sum = sum;
        m_tail = tail;
    }
    if (m_written == 0) {
        return pieces.empty() ? AnewReason::None : AnewReason::Damaged;
    }
    if (m_file.Cut(m_written) || m_operations.Cut(m_info, InfoHead().size() + good)) {
        return AnewReason::Damaged;
    }
    // A block ends where the file does, or a thousand bytes behind the one before it.
    m_tail.erase(0, m_tail.size() - ((m_written - 1) % kBlock + 1));
    m_held = m_written;
    m_taken = m_held - static_cast<std::uint32_t>(m_tail.size());
    return AnewReason::None;
}

/// Reads on in NAME.part.
/// @param tail  its last bytes, those of a block or more
/// @return false if there are fewer than @p size
bool ReceivedFile::ReadPiece(std::uint32_t size, std::uint64_t& sum, std::string& tail)
{
    std::string piece(kPiece, '\0');
    while (size > 0) {
        std::size_t count = 0;
        if (m_file.Read(std::span(piece).first(std::min<std::size_t>(size, kPiece)), count) ||
            count == 0) {
            return false;
        }
        const std::string_view read(piece.data(), count);
        sum = ContentSum(read, sum);
        tail.append(read);
        tail.erase(0, tail.size() - std::min(tail.size(), kBlock));
        size -= static_cast<std::uint32_t>(count);
    }
    return true;
}

void ReceivedFile::BeginAnew(AnewReason reason)
{
    m_transfer.start = {0, reason};
    m_taken = 0;
    m_held = 0;
    m_opensNew = true;
}

/// @param count  how many of the block's bytes are there already
/// @return whether they are the same
bool ReceivedFile::Compare(const FileBlock& block, std::size_t count)
{
    const std::string_view kept =
        std::string_view(m_tail).substr(m_tail.size() - (m_held - m_taken));
    const bool isLast = (block.flags & FileBlock::Last) != 0;
    const auto bytes = block.bytes.first(count);
    if (!std::equal(bytes.begin(), bytes.end(), kept.begin(),
                    [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); }) ||
        (isLast && count < kept.size())) {
        BeginAnew(AnewReason::Changed);
        return false;
    }
    m_taken += static_cast<std::uint32_t>(count);
    if (!IsComparing()) {
        m_transfer.start = {m_held, AnewReason::None};
    }
    return true;
}

// Blocks.

ReceivedFile::Verdict ReceivedFile::Take(const FileBlock& block)
{
    if ((block.flags & FileBlock::NoSuchFile) != 0) {
        return End(DownloadFault::NoSuchFile);
    }
    if ((block.flags & FileBlock::Open) != 0) {
        return End(DownloadFault::BeingLogged);
    }
    if (IsComparing() && block.offset == 0 && m_taken > 0) {
        BeginAnew(AnewReason::NotFromMiddle);
    }
    const bool last = (block.flags & FileBlock::Last) != 0;
    if (block.offset != m_taken || (block.bytes.empty() && !last)) {
        return Verdict::Again;
    }
    if (block.bytes.size() > m_expected - m_taken) {
        return End(DownloadFault::WrongSize);
    }
    const std::size_t known =
        IsComparing() ? std::min<std::size_t>(block.bytes.size(), m_held - m_taken) : 0;
    if (IsComparing() && !Compare(block, known)) {
        return Verdict::Again;
    }
    if (m_opensNew && !OpenNew()) {
        return Verdict::Ended;
    }
    const auto bytes = block.bytes.subspan(known);
    m_unwritten.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    m_taken += static_cast<std::uint32_t>(bytes.size());
    if (m_unwritten.size() >= kPiece || last) {
        const std::error_code error = WritePiece();
        if (error) {
            return End(DownloadFault::Write, error);
        }
    }
    return last ? Verdict::Whole : Verdict::More;
}

std::error_code ReceivedFile::WritePiece()
{
    if (m_unwritten.empty()) {
        return {};
    }
    const std::error_code error = m_file.Write(m_unwritten);
    if (!error && m_info >= 0) {
        m_written += static_cast<std::uint32_t>(m_unwritten.size());
        m_sum = ContentSum(m_unwritten, m_sum);
        std::array<char, 40> line{};
        if (m_operations.Write(m_info, PieceLine(m_written, m_sum, line))) {
            CloseInfo(); // what comes later cannot be gone on with
        }
    }
    m_unwritten.clear();
    return error;
}

bool ReceivedFile::Finish()
{
    if (m_taken != m_expected) {
        return Fail(DownloadFault::WrongSize);
    }
    const std::error_code error = m_file.Commit();
    if (error) {
        return Fail(DownloadFault::Write, error);
    }
    m_operations.Remove(m_infoFile);
    return true;
}

bool ReceivedFile::Fail(DownloadFault fault, std::error_code error)
{
    m_transfer.fault = fault;
    m_transfer.error = error;
    return false;
}

ReceivedFile::Verdict ReceivedFile::End(DownloadFault fault, std::error_code error)
{
    Fail(fault, error);
    return Verdict::Ended;
}

} // namespace fieldcore
