#include "core/platform/ReplaceFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

/// A descriptor, closed in the end.
class Descriptor
{
public:
    Descriptor(const fs::path& path, int flags)
        : m_fd(::open(path.c_str(), flags | O_CLOEXEC, 0644))
    {}
    ~Descriptor()
    {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_fd >= 0; }
    [[nodiscard]] int Get() const { return m_fd; }

private:
    int m_fd;
};

std::error_code LastError()
{
    return {errno, std::generic_category()};
}

} // namespace

std::error_code WriteWholeFile(const fs::path& file, std::span<const std::uint8_t> content)
{
    const Descriptor out(file, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    if (!out.IsOpen()) {
        return LastError();
    }
    while (!content.empty()) {
        const ssize_t written = ::write(out.Get(), content.data(), content.size());
        if (written >= 0) {
            content = content.subspan(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return LastError();
        }
    }
    return {};
}

std::error_code ReplaceFile(const fs::path& temporary, const fs::path& target)
{
    {
        const Descriptor content(temporary, O_RDONLY | O_NOFOLLOW);
        if (!content.IsOpen() || ::fsync(content.Get()) != 0) {
            return LastError();
        }
    }
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
        return LastError();
    }
    const Descriptor folder(target.parent_path(), O_RDONLY | O_DIRECTORY);
    if (folder.IsOpen()) {
        static_cast<void>(::fsync(folder.Get()));
    }
    return {};
}

std::vector<std::uint8_t> ReadWholeFile(const fs::path& file, std::size_t limit)
{
    // Without O_NONBLOCK, opening a pipe that lies under the name would wait for its other end.
    const Descriptor in(file, O_RDONLY | O_NONBLOCK);
    struct stat info = {};
    if (!in.IsOpen() || ::fstat(in.Get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return {};
    }
    std::vector<std::uint8_t> content(limit);
    std::size_t length = 0;
    while (length < limit) {
        const ssize_t count = ::read(in.Get(), content.data() + length, limit - length);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            length += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return {};
        }
    }
    content.resize(length);
    return content;
}

} // namespace fieldcore
