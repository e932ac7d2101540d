#pragma once

namespace fieldcore {

/// A control that somebody types into, for whoever finds a fault in what was typed. The control may
/// go first: then nothing happens.
class FocusTarget
{
public:
    virtual ~FocusTarget() = default;

    /// Puts the input focus into the control.
    virtual void TakeFocus() = 0;
};

} // namespace fieldcore
