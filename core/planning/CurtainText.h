#pragma once

#include "core/planning/SkyLimits.h"
#include "core/platform/TextError.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace fieldcore {

// The obstruction curtain as a text that a person can write. Each line has an azimuth, 0 to 359,
// and an elevation, 0 to 90, in whole degrees; the elevation holds from there up to the azimuth of
// the next line, the last one's up to north. Before the first line nothing obstructs. "#" starts a
// comment, empty lines do not count, and azimuths ascend from line to line:
//
//     # a wood in the east, a house in the south
//     60 15
//     100 0
//     170 40
//     195 0

struct CurtainText
{
    ObstructionCurtain curtain{}; ///< after an error without obstruction
    std::optional<TextError> error;
};

/// Any bytes may be given. A text that was cut is read as far as it goes, since it has no mark of
/// its end; but one without any line or comment is refused, as an empty file is hardly meant to
/// open the sky. So is one of more than a megabyte. Any thread.
[[nodiscard]] CurtainText ParseCurtainText(std::string_view text);

/// A short comment and the lines where the elevation changes. ParseCurtainText() makes the same
/// curtain of it. Entries above 90, which only the binary file can have, become 90: all that
/// they hide stays hidden but a satellite exactly in the zenith.
[[nodiscard]] std::string FormatCurtainText(const ObstructionCurtain& curtain);

/// The curtain of a file that the user has chosen: such a text, or the 360 bytes of "CurTain.obs".
/// A file counts as these if its name ends in ".obs", or if it has their length and is no text that
/// can be read. An error if there is no such regular file.
[[nodiscard]] CurtainText LoadCurtainText(const std::filesystem::path& file);

/// Replaces @p file as a whole by FormatCurtainText().
/// @return what went wrong; the old file is then still there
[[nodiscard]] std::error_code SaveCurtainText(const std::filesystem::path& file,
                                              const ObstructionCurtain& curtain);

} // namespace fieldcore
