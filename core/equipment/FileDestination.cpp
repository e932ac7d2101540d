#include "core/equipment/FileDestination.h"

#include "core/equipment/FileTexts.h"
#include "core/platform/FileNameCheck.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr int kLastSerialPort = 3;
constexpr std::uint32_t kBluetoothRate = 262144; // bit/s

bool IsFileOfSize(const fs::path& file, std::uint32_t size)
{
    std::error_code error;
    return fs::is_regular_file(file, error) && fs::file_size(file, error) == size && !error;
}

} // namespace

FileDestination::FileDestination(std::uint64_t totalBytes, int portNumber, std::uint32_t baudRate,
                                 const Folders& folders,
                                 std::function<std::uint64_t(const fs::path&)> alreadyIn)
    : m_totalBytes(totalBytes), m_bitRate(portNumber > kLastSerialPort ? kBluetoothRate : baudRate),
      m_alreadyIn(std::move(alreadyIn)), m_documents(folders.Documents())
{
    const auto cards = folders.StorageCards();
    if (!cards.empty()) {
        m_card = cards.front();
    } else {
        kind = MainMemory;
    }
}

fs::path FileDestination::Folder() const
{
    return kind == MainMemory ? m_documents : m_card;
}

std::uint64_t FileDestination::TotalBytes() const
{
    return onlyNew && m_alreadyIn ? m_totalBytes - std::min(m_totalBytes, m_alreadyIn(Folder()))
                                  : m_totalBytes;
}

std::wstring FileDestination::Summary() const
{
    const std::uint64_t bytes = TotalBytes();
    return FormatText(text::kDownloadSummary, TotalSizeText(bytes).c_str(),
                      TransferTimeText(bytes, m_bitRate).c_str());
}

std::optional<std::uint64_t> FileDestination::FreeBytes() const
{
    fs::path folder = Folder();
    std::error_code ignored;
    // The documents folder is made when it is needed; a card that is not there is no destination.
    while (kind == MainMemory && !fs::exists(folder, ignored) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return FreeBytesOf(folder);
}

std::wstring FileDestination::FreeSpaceText() const
{
    const auto free = FreeBytes();
    return free ? FormatText(text::kFreeSpace, TotalSizeText(*free).c_str())
                : std::wstring(Text(text::kFreeSpaceUnknown));
}

std::optional<std::uint64_t> FileDestination::FreeBytesOf(const fs::path& folder)
{
    std::error_code error;
    const fs::space_info space = fs::space(folder, error);
    if (error || space.available == static_cast<std::uintmax_t>(-1)) {
        return std::nullopt;
    }
    return space.available;
}

bool IsFetchedFile(const fs::path& folder, const DirectoryListingData& record,
                   std::wstring_view name)
{
    if (folder.empty() || !IsPlainFileName(name)) {
        return false;
    }
    const fs::path file = ToUtf8(name);
    return IsFileOfSize(folder / file, record.size) ||
           IsFileOfSize(folder / ToUtf8(DateFolderName(record.time)) / file, record.size);
}

} // namespace fieldcore
