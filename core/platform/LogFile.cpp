#include "core/platform/LogFile.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace fieldcore {

LogFile::~LogFile()
{
    if (IsOpen()) {
        close(m_descriptor);
    }
}

std::error_code LogFile::Open(const std::filesystem::path& file, Start start)
{
    constexpr mode_t kUsualMode = 0666; // less what the user's mask takes away
    m_descriptor = open(file.c_str(),
                        O_WRONLY | O_CREAT | O_CLOEXEC | (start == Start::New ? O_TRUNC : O_APPEND),
                        kUsualMode);
    return IsOpen() ? std::error_code() : std::error_code(errno, std::generic_category());
}

std::error_code LogFile::Write(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = write(m_descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return {errno, std::generic_category()};
        }
    }
    return {};
}

} // namespace fieldcore
