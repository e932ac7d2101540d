#include "core/link/NumberFields.h"

#include "core/input/Parts.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

namespace fieldcore {

int IntegerField(FrameReader& frame, std::size_t width)
{
    const std::string text = frame.Chars(width);
    constexpr long kLeast = std::numeric_limits<int>::min();
    constexpr long kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::strtol(text.c_str(), nullptr, 10), kLeast, kMost));
}

double RealField(FrameReader& frame, std::size_t width)
{
    return CParts::atof(frame.Text(width));
}

} // namespace fieldcore
