#include "core/planning/CurtainText.h"

#include "core/planning/CurtainFile.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/TextLines.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr FieldRange kAzimuth{0, 359, true, "0 to 359 degrees"};
constexpr FieldRange kElevation{0, 90, true, "0 to 90 degrees"};
constexpr int kZenith = 90;

std::optional<TextError> Wrong(int line, std::string_view field, std::string message)
{
    return TextError{line, std::string(field), std::move(message)};
}

/// @param line  without its comment, not empty
/// @param next  the lowest azimuth that may come; afterwards that for the line behind
std::optional<TextError> TakeLine(std::string_view line, int number, std::size_t& next,
                                  ObstructionCurtain& curtain)
{
    const std::vector<std::string_view> words = Words(line);
    double azimuth = 0.0;
    double elevation = 0.0;
    if (const auto wrong = ReadNumber(words[0], kAzimuth, azimuth)) {
        return Wrong(number, "azimuth", *wrong);
    }
    const std::string_view second = words.size() > 1 ? words[1] : std::string_view();
    if (const auto wrong = ReadNumber(second, kElevation, elevation)) {
        return Wrong(number, "elevation", *wrong);
    }
    if (words.size() > 2) {
        return Wrong(number, "",
                     "\"" + Shown(words[2]) +
                         "\" is too much: a line has an azimuth "
                         "and an elevation");
    }
    const auto from = static_cast<std::size_t>(azimuth);
    if (from < next) {
        return Wrong(number, "azimuth",
                     "must be greater than in the line before, " + std::to_string(next - 1) +
                         ", not " + std::to_string(from));
    }
    next = from + 1;
    std::fill(curtain.begin() + static_cast<std::ptrdiff_t>(from), curtain.end(),
              static_cast<std::uint8_t>(elevation));
    return std::nullopt;
}

} // namespace

CurtainText ParseCurtainText(std::string_view text)
{
    CurtainText result;
    if (text.size() > kMostText) {
        result.error = Wrong(0, "", "longer than a megabyte: this is no curtain");
        return result;
    }
    ObstructionCurtain curtain{};
    std::size_t next = 0;
    bool empty = true;
    TextLines lines(text);
    while (const auto line = lines.Next()) {
        empty = empty && line->empty();
        const std::string_view content = Trimmed(line->substr(0, line->find('#')));
        if (content.empty()) {
            continue;
        }
        result.error = TakeLine(content, lines.Number(), next, curtain);
        if (result.error) {
            return result;
        }
    }
    if (empty) {
        result.error = Wrong(0, "", "empty: where nothing obstructs, write the line \"0 0\"");
        return result;
    }
    result.curtain = curtain;
    return result;
}

std::string FormatCurtainText(const ObstructionCurtain& curtain)
{
    std::string text = "# Obstruction curtain: azimuth and elevation, whole degrees.\n"
                       "# An elevation holds up to the azimuth of the next line.\n";
    int before = 0;
    for (std::size_t azimuth = 0; azimuth < curtain.size(); ++azimuth) {
        const int elevation = std::min<int>(curtain[azimuth], kZenith);
        if (elevation != before) {
            text += std::to_string(azimuth) + ' ' + std::to_string(elevation) + '\n';
            before = elevation;
        }
    }
    return text;
}

CurtainText LoadCurtainText(const fs::path& file)
{
    // One more than may be: longer texts are to be noticed.
    const auto content = ReadWholeFile(file, kMostText + 1);
    CurtainText result;
    if (!content) {
        result.error = Wrong(0, "", "is no file that can be read");
        return result;
    }
    const bool isNamedSo = file.extension() == ".obs";
    if (!isNamedSo) {
        result =
            ParseCurtainText({reinterpret_cast<const char*>(content->data()), content->size()});
    }
    if (isNamedSo || (result.error && content->size() == result.curtain.size())) {
        return {CurtainOf(*content), std::nullopt};
    }
    return result;
}

std::error_code SaveCurtainText(const fs::path& file, const ObstructionCurtain& curtain)
{
    fs::path temporary = file.filename();
    temporary += ".new";
    const std::string text = FormatCurtainText(curtain);
    return ReplaceFile(file, temporary, std::as_bytes(std::span(text)));
}

} // namespace fieldcore
