#pragma once

#include <string_view>

namespace fieldcore {

/// A list that texts are put into, as of a drop-down box. The position of a text is what a choice
/// from the list is counted by.
class TextList
{
public:
    virtual ~TextList() = default;

    /// Puts @p text before the one that is at @p position now.
    /// @param position  from 0; that of the end puts it there
    virtual void Insert(int position, std::wstring_view text) = 0;
};

} // namespace fieldcore
