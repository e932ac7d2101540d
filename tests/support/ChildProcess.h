#pragma once

#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <functional>
#include <thread>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fieldcore::testing {

/// Runs @p run in a process of its own.
/// @return what it returned, from 0 to 255; -1 if the process ended otherwise
[[nodiscard]] inline int ResultInAChild(const std::function<int()>& run)
{
    std::fflush(nullptr); // else what waits there is written twice
    const pid_t child = fork();
    if (child == 0) {
        const int result = run();
        std::fflush(nullptr);
        _exit(result);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// A process of its own that tells what it has done. It is killed at the latest when this object
/// goes.
class Worker
{
public:
    /// Tells that one thing more is done. @return false: nobody listens any more
    using Acknowledge = std::function<bool()>;

    explicit Worker(const std::function<void(const Acknowledge&)>& work)
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        m_process = fork();
        if (m_process == 0) {
            work([&] { return write(ends[1], "+", 1) == 1; });
            _exit(0);
        }
        close(ends[1]);
        m_acknowledged = ends[0];
    }
    ~Worker()
    {
        Kill();
        close(m_acknowledged);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Waits for acknowledgements.
    /// @return how many came; fewer than @p count if the process ended
    int Await(int count = INT_MAX)
    {
        int came = 0;
        for (char byte = 0; came < count && read(m_acknowledged, &byte, 1) == 1; ++came) {
        }
        m_came += came;
        return came;
    }

    /// Kills the process @p delay from now and waits until it is gone.
    /// @return all acknowledgements that it ever sent
    int Kill(std::chrono::microseconds delay = {})
    {
        if (m_process > 0) {
            std::this_thread::sleep_for(delay); // a random moment of its work
            kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
            m_process = -1;
            Await();
        }
        return m_came;
    }

private:
    pid_t m_process = -1;
    int m_acknowledged = -1;
    int m_came = 0;
};

} // namespace fieldcore::testing
