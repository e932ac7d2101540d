#pragma once

#include "core/platform/Folders.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace fieldcore {

/// Where fetched files go, and the summary that the user sees before: what the destination dialog
/// knows. A screen or a terminal shows it and changes the choices. One thread.
class FileDestination
{
public:
    enum Kind : int
    {
        Card = 0,
        MainMemory = 1, ///< the user's documents
    };

    /// @param totalBytes  of all selected files
    /// @param portNumber  of the receiver's link; above 3 it is a Bluetooth port
    /// @param baudRate    of a serial port, bit/s
    FileDestination(std::uint64_t totalBytes, int portNumber, std::uint32_t baudRate,
                    const Folders& folders = Folders());

    // The choices.

    int kind = Card;      ///< MainMemory from the start if there is no card
    int dateFolders = 1;  ///< 1: a folder for each day of observation
    bool onlyNew = false; ///< leave out what is at the destination already, in the same size

    /// Whether the card can be chosen.
    [[nodiscard]] bool HasCard() const { return !m_card.empty(); }
    /// The chosen folder, without a date folder. Empty if a card is chosen and there is none.
    [[nodiscard]] std::filesystem::path Folder() const;
    [[nodiscard]] const std::filesystem::path& CardFolder() const { return m_card; }
    [[nodiscard]] const std::filesystem::path& DocumentsFolder() const { return m_documents; }

    // What is shown.

    [[nodiscard]] std::uint64_t TotalBytes() const { return m_totalBytes; }
    [[nodiscard]] std::uint32_t BitRate() const { return m_bitRate; }
    /// The total size and the estimated time, in two lines.
    [[nodiscard]] std::wstring Summary() const;
    /// Bytes that the user may still write to the chosen folder; nothing if the system does not
    /// say.
    [[nodiscard]] std::optional<std::uint64_t> FreeBytes() const;
    /// A line with the free space of the chosen folder.
    [[nodiscard]] std::wstring FreeSpaceText() const;

    /// Free bytes of a folder that is there.
    [[nodiscard]] static std::optional<std::uint64_t>
    FreeBytesOf(const std::filesystem::path& folder);

private:
    std::uint64_t m_totalBytes;
    std::uint32_t m_bitRate;
    std::filesystem::path m_card; // empty if there is none
    std::filesystem::path m_documents;
};

/// Whether @p folder, or its folder for the day of @p date, has a regular file of this name and
/// size.
[[nodiscard]] bool IsFetchedFile(const std::filesystem::path& folder, std::wstring_view date,
                                 std::wstring_view name, std::uint32_t size);

} // namespace fieldcore
