#pragma once

#include "core/planning/LocalFrame.h"

#include <string>

namespace fieldcore {

/// A site with its name.
struct ListedSite
{
    std::wstring name;
    Observer observer;
};

} // namespace fieldcore
