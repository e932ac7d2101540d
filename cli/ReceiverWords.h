#pragma once

#include "cli/Report.h"

#include "core/link/RecvInfo.h"
#include "core/link/Replies.h"
#include "core/platform/Clock.h"

#include <string>
#include <vector>

namespace fieldcore::cli {

// What the receiver says, as values of a report.

/// The installed options that the receiver has, in words.
[[nodiscard]] std::vector<std::string> OptionsInWords(const CRecvInfo& info);

/// Model, numbers, firmware and options of a receiver.
void AddIdentity(Report& report, const CRecvInfo& info);

/// @param kind  0 none, 1 searching, 2 single, 3 differential, 4 float, 5 fixed
[[nodiscard]] Value FixInWords(int kind);

/// @param pdop  99.9 or more, 0 or less, and what is no number mean that there is none
[[nodiscard]] Value PdopValue(double pdop);

/// The moment that a time reply means. A week of ten bits is taken to lie near @p now; an offset
/// that cannot be meant counts as 0.
[[nodiscard]] Clock::UtcTime UtcOf(const GpsTimeReply& time, Clock::UtcTime now);

/// A moment as ISO 8601, in UTC ("...Z") or in Japanese standard time ("...+09:00").
[[nodiscard]] Value UtcValue(Clock::UtcTime time);
[[nodiscard]] Value JstValue(Clock::UtcTime time);

} // namespace fieldcore::cli
