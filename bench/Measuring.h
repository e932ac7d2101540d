#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

namespace fieldcore::bench {

/// What a clock shows, seconds. CLOCK_THREAD_CPUTIME_ID is the processor time of the calling
/// thread: on a busy machine the longer of two actions would lose more to others.
inline double SecondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// @return seconds
template <typename Action>
double Timed(Action action, clockid_t clock = CLOCK_MONOTONIC)
{
    const double start = SecondsOf(clock);
    action();
    return SecondsOf(clock) - start;
}

/// @param q  0 to 1; half: the median
/// @return 0 of nothing
inline double Quantile(std::vector<double> values, double q = 0.5)
{
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(q * static_cast<double>(values.size() - 1))];
}

/// The plainest code and ours, measured in turn.
class Comparison
{
public:
    explicit Comparison(clockid_t clock = CLOCK_MONOTONIC) : m_clock(clock)
    {
        constexpr std::size_t kTurns = 1'000'000; // so that only what is measured allocates
        m_bareS.reserve(kTurns);
        m_oursS.reserve(kTurns);
    }
    template <typename Bare, typename Ours>
    void Turn(Bare bare, Ours ours)
    {
        m_bareS.push_back(Timed(bare, m_clock));
        m_oursS.push_back(Timed(ours, m_clock));
    }
    [[nodiscard]] double BareS(double q = 0.5) const { return Quantile(m_bareS, q); }
    [[nodiscard]] double OursS(double q = 0.5) const { return Quantile(m_oursS, q); }
    [[nodiscard]] double Ratio(double q = 0.5) const { return OursS(q) / BareS(q); }

private:
    clockid_t m_clock;
    std::vector<double> m_bareS;
    std::vector<double> m_oursS;
};

} // namespace fieldcore::bench
