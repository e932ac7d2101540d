#include "core/orbits/SatelliteId.h"

#include <array>
#include <cctype>

namespace fieldcore {

namespace {

struct Numbers
{
    int least;
    int most;
    int prnOffset; ///< -1: the system has no PRN of its own
};
constexpr std::array<Numbers, kGnssSystems> kNumbers{{
    {1, 32, 0},
    {1, 32, -1},
    {1, 36, -1},
    {1, 63, -1},
    {1, 10, 192},
    {20, 58, 100},
}};

const Numbers& NumbersOf(GnssSystem system)
{
    return kNumbers[static_cast<std::size_t>(system)];
}

std::optional<SatelliteId> IdOf(GnssSystem system, int number)
{
    const Numbers& numbers = NumbersOf(system);
    if (number < numbers.least || number > numbers.most) {
        return std::nullopt;
    }
    return SatelliteId{system, static_cast<std::uint8_t>(number)};
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

std::optional<SystemSet> ParseSystems(std::string_view letters)
{
    SystemSet systems;
    for (const char c : letters) {
        const auto at =
            kSystemLetters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
        if (at == std::string_view::npos || systems[at]) {
            return std::nullopt;
        }
        systems.set(at);
    }
    return systems.none() ? std::nullopt : std::optional(systems);
}

std::string TextOf(SystemSet systems)
{
    std::string letters;
    for (std::size_t i = 0; i < kGnssSystems; ++i) {
        if (systems[i]) {
            letters += kSystemLetters[i];
        }
    }
    return letters;
}

std::string SatelliteId::Text() const
{
    return {LetterOf(system), static_cast<char>('0' + number / 10 % 10),
            static_cast<char>('0' + number % 10)};
}

std::optional<SatelliteId> SatelliteId::Parse(std::string_view text)
{
    const auto system = kSystemLetters.find(text.empty() ? '\0' : text.front());
    if (system == std::string_view::npos || text.size() < 2 || text.size() > 3) {
        return std::nullopt;
    }
    std::string_view digits = text.substr(1);
    if (digits.front() == ' ') {
        digits.remove_prefix(1);
    }
    int number = 0;
    for (const char c : digits) {
        if (!IsDigit(c)) {
            return std::nullopt;
        }
        number = 10 * number + (c - '0');
    }
    return IdOf(static_cast<GnssSystem>(system), number);
}

std::optional<SatelliteId> SatelliteId::FromPrn(int prn)
{
    for (std::size_t i = 0; i < kGnssSystems; ++i) {
        if (kNumbers[i].prnOffset >= 0) {
            if (const auto id = IdOf(static_cast<GnssSystem>(i), prn - kNumbers[i].prnOffset)) {
                return id;
            }
        }
    }
    return std::nullopt;
}

int SatelliteId::Prn() const
{
    const int offset = NumbersOf(system).prnOffset;
    return offset < 0 ? 0 : number + offset;
}

} // namespace fieldcore
