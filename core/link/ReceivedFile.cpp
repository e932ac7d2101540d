#include "core/link/ReceivedFile.h"

#include "core/link/DirectoryListing.h"
#include "core/platform/Cp932.h"
#include "core/platform/FileNameCheck.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <string>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

// Bytes that are written at once: calls for single blocks are a tenth of what a fast line costs.
constexpr std::size_t kPiece = 32 * 1024;
constexpr std::wstring_view kUnfinished = L".part";

fs::path FileName(std::wstring_view name)
{
    return {ToUtf8(name)};
}

} // namespace

bool IsReceivableName(std::wstring_view name)
{
    if (!IsPlainFileName(name)) {
        return false;
    }
    // A card does not tell capitals from small letters.
    std::wstring end(name.substr(name.size() - std::min(name.size(), kUnfinished.size())));
    std::transform(end.begin(), end.end(), end.begin(), [](wchar_t c) {
        return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
    });
    return end != kUnfinished;
}

ReceivedFile::ReceivedFile(const fs::path& folder, std::wstring_view name,
                           std::uint32_t expectedSize, FileOperations& operations)
    : m_target(folder / FileName(name)), m_expected(expectedSize),
      m_file(m_target, FileName(std::wstring(name) + std::wstring(kUnfinished)), operations,
             AtomicFile::Unfinished::Keep)
{}

ReceivedFile::~ReceivedFile()
{
    static_cast<void>(WritePiece()); // of a file that stays unfinished
}

bool ReceivedFile::Open()
{
    std::error_code ignored; // what could not be made cannot be written to either
    fs::create_directory(m_target.parent_path(), ignored);
    if (fs::is_symlink(fs::symlink_status(m_target, ignored))) {
        // What it leads to may lie in another folder.
        return Fail(DownloadFault::Folder, std::make_error_code(std::errc::not_supported));
    }
    const std::error_code error = m_file.Open();
    return !error || Fail(DownloadFault::Folder, error);
}

ReceivedFile::Verdict ReceivedFile::Take(const FileBlock& block)
{
    if ((block.flags & FileBlock::NoSuchFile) != 0) {
        return End(DownloadFault::NoSuchFile);
    }
    if ((block.flags & FileBlock::Open) != 0) {
        return End(DownloadFault::BeingLogged);
    }
    const bool last = (block.flags & FileBlock::Last) != 0;
    if (block.offset != m_taken || (block.bytes.empty() && !last)) {
        return Verdict::Again;
    }
    if (block.bytes.size() > m_expected - m_taken) {
        return End(DownloadFault::WrongSize);
    }
    m_unwritten.append(reinterpret_cast<const char*>(block.bytes.data()), block.bytes.size());
    m_taken += static_cast<std::uint32_t>(block.bytes.size());
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
    m_unwritten.clear();
    return error;
}

bool ReceivedFile::Finish()
{
    if (m_taken != m_expected) {
        return Fail(DownloadFault::WrongSize);
    }
    const std::error_code error = m_file.Commit();
    return !error || Fail(DownloadFault::Write, error);
}

bool ReceivedFile::Fail(DownloadFault fault, std::error_code error)
{
    m_fault = fault;
    m_error = error;
    return false;
}

ReceivedFile::Verdict ReceivedFile::End(DownloadFault fault, std::error_code error)
{
    Fail(fault, error);
    return Verdict::Ended;
}

bool IsReceiverFileName(std::wstring_view name)
{
    return !name.empty() && ToCp932(name).size() <= kLongestFileName &&
           name.find_first_of(L"*?") == std::wstring_view::npos;
}

} // namespace fieldcore
