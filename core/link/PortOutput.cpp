#include "core/link/PortOutput.h"

#include <cstddef>

namespace fieldcore {

namespace {

bool IsNameCharacter(std::uint8_t c)
{
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// The beginning of a sentence, such as "$GPGGA,": who talks, two letters, and what about.
bool BeginsSentence(std::span<const std::uint8_t> bytes)
{
    constexpr std::size_t kShortestName = 5;
    constexpr std::size_t kLongestName = 8; // proprietary ones have other lengths
    if (bytes[0] != '$' && bytes[0] != '!') {
        return false;
    }
    std::size_t length = 0;
    while (length + 1 < bytes.size() && length <= kLongestName &&
           IsNameCharacter(bytes[length + 1])) {
        ++length;
    }
    return length >= kShortestName && length <= kLongestName && length + 1 < bytes.size() &&
           bytes[length + 1] == ',';
}

/// The beginning of an RTCM 3 message: the preamble, six bits of zero and ten of length, and a
/// message number that is assigned (RTCM 10403: 1001 to 1300, and 4001 to 4095 of makers).
bool BeginsCorrection(std::span<const std::uint8_t> bytes)
{
    constexpr std::uint8_t kPreamble = 0xD3;
    constexpr std::size_t kHeader = 5; // up to the message number
    if (bytes.size() < kHeader || bytes[0] != kPreamble || (bytes[1] & 0xFC) != 0) {
        return false;
    }
    const int length = bytes[1] << 8 | bytes[2];
    const int number = bytes[3] << 4 | bytes[4] >> 4;
    return length >= 2 &&
           ((number >= 1001 && number <= 1300) || (number >= 4001 && number <= 4095));
}

} // namespace

bool LooksLikeOutput(std::span<const std::uint8_t> bytes)
{
    for (; !bytes.empty(); bytes = bytes.subspan(1)) {
        if (BeginsSentence(bytes) || BeginsCorrection(bytes)) {
            return true;
        }
    }
    return false;
}

} // namespace fieldcore
