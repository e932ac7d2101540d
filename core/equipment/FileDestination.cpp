#include "core/equipment/FileDestination.h"

#include "core/equipment/FileTexts.h"
#include "core/platform/FileNameCheck.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <system_error>

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
                                 const Folders& folders)
    : m_totalBytes(totalBytes), m_bitRate(portNumber > kLastSerialPort ? kBluetoothRate : baudRate),
      m_documents(folders.Documents())
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

std::wstring FileDestination::Summary() const
{
    return FormatText(text::kDownloadSummary, TotalSizeText(m_totalBytes).c_str(),
                      TransferTimeText(m_totalBytes, m_bitRate).c_str());
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

bool IsFetchedFile(const fs::path& folder, std::wstring_view date, std::wstring_view name,
                   std::uint32_t size)
{
    if (folder.empty() || !IsPlainFileName(name)) {
        return false;
    }
    const fs::path file = ToUtf8(name);
    const std::wstring day = DateFolderName(date);
    return IsFileOfSize(folder / file, size) ||
           (!day.empty() && IsFileOfSize(folder / ToUtf8(day) / file, size));
}

} // namespace fieldcore
