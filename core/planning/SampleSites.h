#pragma once

#include <span>

namespace fieldcore {

/// A site that comes with the program, so that a plan can be made before the user has any of their
/// own.
struct SampleSite
{
    const wchar_t* name;
    const wchar_t* latitude;  ///< north, DD.MMSS
    const wchar_t* longitude; ///< east, DDD.MMSS
    double heightM;           ///< above the ellipsoid, to some 10 m
};

/// The seats of Japan's prefectures, number 1 to 47 in the order of their official codes. Good for
/// planning: to a kilometre or so.
[[nodiscard]] std::span<const SampleSite> SampleSites();

} // namespace fieldcore
