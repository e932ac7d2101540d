#pragma once

#include <csignal>
#include <cstdint>

#include <sys/resource.h>

namespace fieldcore::testing {

/// As long as it lives, no file of this process can grow beyond so many bytes: what a full disk
/// looks like, without one.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(std::uintmax_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*m_signal)(int);
    rlimit m_before{};
};

} // namespace fieldcore::testing
