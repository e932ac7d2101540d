#pragma once

#include "core/platform/Clock.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>

namespace fieldcore {

/// Satellites and PDOP of the last hour. Any one thread.
class StatusHistory
{
public:
    struct Sample
    {
        Clock::Duration at{};          ///< never before the one in front of it
        std::optional<int> satellites; ///< used; nothing: it was not known
        std::optional<double> pdop;    ///< nothing: there was none

        friend bool operator==(const Sample&, const Sample&) = default;
    };

    static constexpr std::chrono::hours kLength{1};
    /// However fast samples come, no more are kept.
    static constexpr std::size_t kMost = 4096;

    /// Drops what is older than kLength. A sample before the last one is not taken.
    void Add(const Sample& sample)
    {
        if (!m_samples.empty() && sample.at < m_samples.back().at) {
            return;
        }
        m_samples.push_back(sample);
        while (m_samples.size() > kMost || sample.at - m_samples.front().at > kLength) {
            m_samples.pop_front();
        }
    }
    void Clear() { m_samples.clear(); }
    /// Oldest first.
    [[nodiscard]] const std::deque<Sample>& Samples() const { return m_samples; }

private:
    std::deque<Sample> m_samples;
};

} // namespace fieldcore
