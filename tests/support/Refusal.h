#pragma once

#include "tests/support/ProofSize.h"

#include <string>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// Counts what is asked for, and says which of it is refused.
struct Refusal
{
    int n = 0;        ///< which one, from 1; 0: none
    bool once = true; ///< false: all later ones, too
    int asked = 0;

    [[nodiscard]] bool IsNext()
    {
        ++asked;
        return n > 0 && (once ? asked == n : asked >= n);
    }
};

/// Makes an attempt while nothing is refused, and then one while each of what that has asked for
/// is, once and from then on. Of those behind the first 150 it takes every FIELDCORE_STRIDE-th.
/// @param attempt  is given the Refusal
/// @return how many attempts that were
template <typename Attempt>
int RefuseInTurn(const std::string& what, Attempt attempt)
{
    const int stride = ProofSize("FIELDCORE_STRIDE", 50);
    int attempts = 0;
    int all = 1;
    for (int n = 0; n <= all; n += n < 150 ? 1 : stride) {
        for (const bool once : {true, false}) {
            SCOPED_TRACE(what + ", " + std::to_string(n) + " of " + std::to_string(all) +
                         (once ? "" : " and all later ones"));
            Refusal refusal{n, once};
            attempt(refusal);
            all = n == 0 ? refusal.asked : all;
            ++attempts;
        }
    }
    return attempts;
}

} // namespace fieldcore::testing
