#pragma once

#include "core/link/DirectoryListing.h"
#include "core/platform/Folders.h"

#include <cstdint>
#include <filesystem>
#include <functional>
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
    /// @param alreadyIn   how many of the bytes are in a folder already; empty: none
    FileDestination(std::uint64_t totalBytes, int portNumber, std::uint32_t baudRate,
                    const Folders& folders = Folders(),
                    std::function<std::uint64_t(const std::filesystem::path&)> alreadyIn = {});

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

    /// What will be fetched: without what is there already, if that is left out.
    [[nodiscard]] std::uint64_t TotalBytes() const;
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
    std::function<std::uint64_t(const std::filesystem::path&)> m_alreadyIn;
    std::filesystem::path m_card; // empty if there is none
    std::filesystem::path m_documents;
};

/// Whether @p folder, or its folder for the day of the file, has a regular file of its size.
/// @param name  under which it is looked for
[[nodiscard]] bool IsFetchedFile(const std::filesystem::path& folder,
                                 const DirectoryListingData& record, std::wstring_view name);
[[nodiscard]] inline bool IsFetchedFile(const std::filesystem::path& folder,
                                        const DirectoryListingData& record)
{
    return IsFetchedFile(folder, record, record.Name());
}

} // namespace fieldcore
