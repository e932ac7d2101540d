#include "core/platform/AtomicFile.h"

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

/// The file itself where @p file is a link to it: a rename would replace the link.
fs::path Target(const fs::path& file)
{
    std::error_code error;
    if (!fs::is_symlink(file, error)) {
        return file;
    }
    const fs::path target = fs::canonical(file, error);
    return error ? file : target;
}

fs::path FolderOf(const fs::path& file)
{
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

} // namespace

AtomicFile::AtomicFile(const fs::path& file, const fs::path& temporaryName,
                       FileOperations& operations, Unfinished unfinished)
    : m_operations(operations), m_file(Target(file)), m_temporary(FolderOf(m_file) / temporaryName),
      m_unfinished(unfinished)
{}

AtomicFile::~AtomicFile()
{
    Abandon();
}

std::error_code AtomicFile::Open()
{
    Abandon();
    std::error_code ignored; // what cannot be looked at cannot be opened beside either
    const fs::file_status status = fs::status(m_file, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        // The rename would put a file in the place of a pipe or a device.
        return std::make_error_code(std::errc::not_supported);
    }
    return m_operations.Open(m_temporary, m_file, m_handle);
}

std::error_code AtomicFile::OpenLeft()
{
    return m_operations.OpenLeft(m_temporary, m_handle);
}

std::error_code AtomicFile::Read(std::span<char> bytes, std::size_t& count)
{
    return m_operations.Read(m_handle, bytes, count);
}

std::error_code AtomicFile::Cut(std::uint64_t size)
{
    return m_operations.Cut(m_handle, size);
}

std::error_code AtomicFile::Write(std::string_view bytes)
{
    return m_operations.Write(m_handle, bytes);
}

std::error_code AtomicFile::Commit()
{
    std::error_code error = m_operations.Sync(m_handle);
    if (!error) {
        error = m_operations.Rename(m_temporary, m_file);
    }
    if (error) {
        Abandon();
        return error;
    }
    // Closing lets the next writer in: only now that the name is free again.
    m_operations.Close(m_handle);
    m_handle = -1;
    return m_operations.SyncFolder(FolderOf(m_file));
}

void AtomicFile::Abandon()
{
    if (m_handle >= 0) {
        if (m_unfinished == Unfinished::Remove) {
            m_operations.Remove(m_temporary);
        }
        m_operations.Close(m_handle);
        m_handle = -1;
    }
}

std::error_code ReplaceFile(const fs::path& file, const fs::path& temporaryName,
                            std::span<const std::byte> content)
{
    AtomicFile replacement(file, temporaryName);
    std::error_code error = replacement.Open();
    if (!error) {
        error = replacement.Write({reinterpret_cast<const char*>(content.data()), content.size()});
    }
    return error ? error : replacement.Commit();
}

} // namespace fieldcore
