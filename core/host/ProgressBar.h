#pragma once

namespace fieldcore {

/// A progress bar as the library moves it; a window, a terminal or a test brings its own.
class ProgressBar
{
public:
    virtual ~ProgressBar() = default;

    /// Both ends belong to the range.
    virtual void SetRange(int first, int last) = 0;
    virtual void SetPos(int position) = 0;
};

} // namespace fieldcore
