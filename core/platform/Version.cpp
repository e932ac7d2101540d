#include "core/platform/Version.h"

namespace fieldcore {

const char* Version() noexcept
{
    return FIELDCORE_VERSION;
}

} // namespace fieldcore
