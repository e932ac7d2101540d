#pragma once

#include <string>

namespace fieldcore {

/// What is wrong with a text that was read, for the person who has it before them.
struct TextError
{
    int line = 0;        ///< counted from 1; 0: the text as a whole
    std::string field;   ///< as it stands in the text, shortened; empty: the line as a whole
    std::string message; ///< plain English: what is wrong, and what to do where that is not plain
};

} // namespace fieldcore
