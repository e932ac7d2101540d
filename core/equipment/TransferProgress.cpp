#include "core/equipment/TransferProgress.h"

#include "core/equipment/AmountTexts.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fieldcore {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kMeasureEvery{0.25};
constexpr Seconds kSmoothing{3.0};   // how long a change of the rate takes to show
constexpr double kLongestLeft = 1e9; // seconds

} // namespace

TransferMeter::TransferMeter(const Clock& clock, int files, std::uint64_t totalSize)
    : m_clock(clock), m_measured(clock.Steady()), m_advanced(m_measured)
{
    m_progress.files = files;
    m_progress.totalSize = totalSize;
}

void TransferMeter::StartFile(std::wstring name, std::uint64_t size)
{
    m_finishedBytes = m_progress.totalBytes;
    ++m_progress.file;
    m_progress.name = std::move(name);
    m_progress.fileBytes = 0;
    m_progress.fileSize = size;
    m_progress.start = {};
    // What passes between two files (questions, options, a rename) is not the line's rate. What
    // was counted before counts on: a file may be over sooner than a rate can be measured.
    const Clock::Duration now = m_clock.Steady();
    m_measured += now - m_advanced;
    m_advanced = now;
}

void TransferMeter::Advance(std::uint64_t bytes, const TransferStart& start)
{
    m_measuredBytes += start.continuedAt - m_progress.start.continuedAt;
    m_progress.start = start;
    m_progress.fileBytes = bytes;
    m_progress.totalBytes = m_finishedBytes + bytes;
    Measure();
    const std::uint64_t left =
        m_progress.totalSize - std::min(m_progress.totalSize, m_progress.totalBytes);
    if (m_progress.bytesPerSecond > 0.0) {
        const double seconds = static_cast<double>(left) / m_progress.bytesPerSecond;
        m_progress.timeLeft =
            std::chrono::seconds(std::llround(std::ceil(std::min(seconds, kLongestLeft))));
    }
}

void TransferMeter::Measure()
{
    const Clock::Duration now = m_clock.Steady();
    m_advanced = now;
    const Seconds passed = now - m_measured;
    if (passed < kMeasureEvery) {
        return;
    }
    const double rate =
        static_cast<double>(m_progress.totalBytes - m_measuredBytes) / passed.count();
    // An exponential mean over unequal intervals.
    const double weight =
        m_progress.bytesPerSecond > 0.0 ? 1.0 - std::exp(-passed / kSmoothing) : 1.0;
    m_progress.bytesPerSecond += weight * (rate - m_progress.bytesPerSecond);
    m_measured = now;
    m_measuredBytes = m_progress.totalBytes;
}

std::wstring TransferStartText(const TransferStart& start)
{
    if (start.continuedAt > 0) {
        return FormatText(text::kTransferContinued, ByteCountText(start.continuedAt).c_str());
    }
    return start.reason != AnewReason::None
               ? FormatText(text::kTransferAnew, Text(MeaningOf(start.reason).textId))
               : std::wstring();
}

} // namespace fieldcore
