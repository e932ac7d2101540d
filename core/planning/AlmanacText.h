#pragma once

#include "core/planning/AlmanacRecord.h"
#include "core/platform/TextError.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace fieldcore {

/// The satellites of an almanac text. After an error there are none.
struct AlmanacText
{
    std::vector<AlmanacRecord> records; ///< as they come in the text, a PRN once; timeStamp is 0
    std::vector<AlmanacRecord> qzss;    ///< likewise, PRN 193 to 202: J01 to J10
    int skipped = 0;                    ///< satellites with any other PRN beyond 32, left out
    std::optional<TextError> error;
};

/// Which week the satellites of a text belong to.
struct AlmanacWeek
{
    /// GPS week of today, full count: a week below 1024 in the text is taken for a 10-bit one, and
    /// becomes the nearest full week to this; of two that are equally near, the later. Greater
    /// weeks are full as they are.
    int today = 0;
    /// Instead of the week in the text, whatever that is: 0 to 32767.
    std::optional<int> full;
};

/// Reads a YUMA or a SEM almanac; which of them it is shows in the text. Any bytes may be given.
/// Any thread.
///
/// YUMA: for each satellite its lines "label: value". Case, spacing and units of the labels, empty
/// lines, lines of asterisks and the order of satellites do not matter; a label that is missing,
/// doubled or unknown does. Angles are radians there.
/// SEM: the number of satellites and a title; week and reference time; then eight lines for each
/// satellite, empty ones not counted: PRN; SVN; URA; eccentricity, inclination as its offset from
/// 0.30 semicircles, rate of right ascension; root of the semi-major axis, node, perigee; mean
/// anomaly, two clock terms; health; configuration. Angles are semicircles there.
///
/// Numbers may have D exponents. Refused is what no receiver could mean: 0 <= e < 1, root of the
/// semi-major axis 2000 to 8000 m^0.5, reference time 0 to 604800 s in whole seconds, inclination 0
/// to 1 semicircle, other angles two turns either way at most, rate of right ascension 1e-6 either
/// way, health 0 to 255, week 0 to 32767. So is a text of more than a megabyte.
///
/// Of a text that was cut, SEM is refused, since it is told how many satellites there are; YUMA may
/// lack whole satellites unnoticed, but has none that is not as it was: a last line without a line
/// end counts only if it is a week that another satellite has, too.
[[nodiscard]] AlmanacText ParseAlmanacText(std::string_view text, const AlmanacWeek& week);

/// The same with the text of @p file. An error if there is no such regular file.
[[nodiscard]] AlmanacText LoadAlmanacText(const std::filesystem::path& file,
                                          const AlmanacWeek& week);

// One kind each, as ParseAlmanacText() says of it; the week of a record is that of the text. After
// an error the satellites before it are there.
[[nodiscard]] AlmanacText ParseSem(std::string_view text);
[[nodiscard]] AlmanacText ParseYuma(std::string_view text);

} // namespace fieldcore
