#include "core/equipment/StatusHistory.h"

namespace fieldcore {

void StatusHistory::Add(const Sample& sample)
{
    if (!m_samples.empty() && sample.at < m_samples.back().at) {
        return;
    }
    m_samples.push_back(sample);
    while (m_samples.size() > kMost || sample.at - m_samples.front().at > kLength) {
        m_samples.pop_front();
    }
}

} // namespace fieldcore
