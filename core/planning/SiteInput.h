#pragma once

#include "core/planning/ListedSite.h"

#include <optional>
#include <string>

namespace fieldcore {

/// A site as it is typed: angles as DD.MMSSsss, south and west with a minus, the height in metres.
struct SiteInput
{
    std::wstring name;
    std::wstring latitude;
    std::wstring longitude;
    std::wstring height;
};

enum class SiteField
{
    Name,
    Latitude,
    Longitude,
    Height,
};

/// What is wrong with a field.
struct SiteFault
{
    SiteField field;
    int text; ///< string-table number of what to tell the user
};

/// Checks what was typed, field by field; blanks around it do not count.
/// @param site  what it says; as it was if there is a fault
/// @return the first fault, nothing if there is none. A name must fit into the site file: it is not
/// empty, 60 characters at most, without brackets, and of characters that the file has. Minutes and
/// seconds are below 60. Heights are -1000 to 10000 m.
[[nodiscard]] std::optional<SiteFault> CheckSite(const SiteInput& input, ListedSite& site);

/// A site as CheckSite() would read it, to 0.3 mm.
[[nodiscard]] SiteInput InputOf(const ListedSite& site);

} // namespace fieldcore
