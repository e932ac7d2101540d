#pragma once

#include <cstdlib>

namespace fieldcore::testing {

/// How large a test is: @p usual, or what script/prove has put into the environment variable.
[[nodiscard]] inline int ProofSize(const char* variable, int usual)
{
    const char* const wanted = std::getenv(variable);     // NOLINT(concurrency-mt-unsafe)
    return wanted != nullptr ? std::atoi(wanted) : usual; // NOLINT(cert-err34-c)
}

} // namespace fieldcore::testing
