#include "core/platform/WholeFile.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Closing
{
    const int descriptor;
    ~Closing() { ::close(descriptor); }
};

std::optional<Bytes> Read(int descriptor, std::size_t limit)
{
    struct stat info = {};
    if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    Bytes content(limit);
    std::size_t length = 0;
    while (length < limit) {
        const ssize_t count = ::read(descriptor, content.data() + length, limit - length);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            length += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
    content.resize(length);
    return content;
}

} // namespace

std::optional<Bytes> ReadWholeFile(const std::filesystem::path& file, std::size_t limit)
{
    // Without O_NONBLOCK, opening a pipe that lies under the name would wait for its other end.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return std::nullopt;
    }
    const Closing closing{descriptor};
    return Read(descriptor, limit);
}

std::string FileIdentity(const std::filesystem::path& file)
{
    struct stat info = {};
    if (::stat(file.c_str(), &info) != 0) {
        return {};
    }
    return std::to_string(info.st_mtim.tv_sec) + " " + std::to_string(info.st_mtim.tv_nsec) + " " +
           std::to_string(info.st_ino) + " " + std::to_string(info.st_size);
}

std::filesystem::path SetFileAside(const std::filesystem::path& file)
{
    std::error_code error;
    std::filesystem::path aside;
    int number = 0;
    do {
        aside = file.string() + ".damaged-" + std::to_string(++number);
    } while (std::filesystem::exists(aside, error));
    std::filesystem::rename(file, aside, error);
    return error ? std::filesystem::path() : aside;
}

} // namespace fieldcore
