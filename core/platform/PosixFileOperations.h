#pragma once

#include "core/platform/FileOperations.h"

namespace fieldcore {

/// The operating system's own files. It has no state; any thread.
class PosixFileOperations : public FileOperations
{
public:
    /// The one that is used where no other is given.
    static PosixFileOperations& Instance();

    [[nodiscard]] std::error_code Open(const std::filesystem::path& file,
                                       const std::filesystem::path& like, int& handle) override;
    [[nodiscard]] std::error_code OpenLeft(const std::filesystem::path& file, int& handle) override;
    [[nodiscard]] std::error_code Read(int handle, std::span<char> bytes,
                                       std::size_t& count) override;
    [[nodiscard]] std::error_code Cut(int handle, std::uint64_t size) override;
    [[nodiscard]] std::error_code Write(int handle, std::string_view bytes) override;
    [[nodiscard]] std::error_code Sync(int handle) override;
    void Close(int handle) override;
    [[nodiscard]] std::error_code Rename(const std::filesystem::path& from,
                                         const std::filesystem::path& to) override;
    [[nodiscard]] std::error_code SyncFolder(const std::filesystem::path& folder) override;
    void Remove(const std::filesystem::path& file) override;
};

} // namespace fieldcore
