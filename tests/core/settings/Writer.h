#pragma once

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fieldcore::testing {

/// The writing program as a process of its own, see tests/programs. It is killed at the latest
/// when this object goes.
class Writer
{
public:
    explicit Writer(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), FIELDCORE_SETTINGS_WRITER);
        std::vector<char*> argv;
        argv.reserve(arguments.size() + 1);
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        m_process = fork();
        if (m_process == 0) {
            dup2(ends[1], STDOUT_FILENO);
            execv(argv[0], argv.data());
            _exit(127);
        }
        close(ends[1]);
        m_acknowledged = ends[0];
    }
    ~Writer()
    {
        Kill();
        close(m_acknowledged);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /// Waits for acknowledgements.
    /// @return how many came; fewer than @p count if the process ended
    std::size_t Await(std::size_t count)
    {
        std::size_t came = 0;
        for (char byte = 0; came < count && ReadByte(byte); ++came) {
        }
        m_came += came;
        return came;
    }

    /// Kills the process @p delay from now and waits until it is gone.
    /// @return all acknowledgements that it ever sent
    std::size_t Kill(std::chrono::microseconds delay = {})
    {
        if (m_process > 0) {
            std::this_thread::sleep_for(delay); // a random moment of its work
            kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
            m_process = -1;
            Await(static_cast<std::size_t>(-1));
        }
        return m_came;
    }

    /// Waits until the process ends by itself.
    /// @return its exit code
    int Finish()
    {
        Await(static_cast<std::size_t>(-1));
        int status = 0;
        waitpid(m_process, &status, 0);
        m_process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    bool ReadByte(char& byte) const
    {
        ssize_t got = 0;
        do {
            got = read(m_acknowledged, &byte, 1);
        } while (got < 0 && errno == EINTR);
        return got == 1;
    }

    pid_t m_process = -1;
    int m_acknowledged = -1;
    std::size_t m_came = 0;
};

} // namespace fieldcore::testing
