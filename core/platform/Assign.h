#pragma once

#include <type_traits>
#include <utility>

namespace fieldcore {

/// Assigns a value, as a setter of settings does. @return 1 if it is another one than before
template <typename Value>
int Assign(Value& variable, std::type_identity_t<Value> value)
{
    const bool isAnother = variable != value;
    variable = std::move(value);
    return isAnother ? 1 : 0;
}

} // namespace fieldcore
