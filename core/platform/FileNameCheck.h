#pragma once

#include <string_view>

namespace fieldcore {

/// Whether @p name is that of a file in a folder and nothing more, on this system and on the file
/// system of a card: not empty, no control character or NUL, none of / \ : * ? " < > |, not "."
/// or "..", no blank or dot at its end and no blank at its start, no surrogate or number beyond
/// Unicode, not the name of a device (CON, PRN, AUX, NUL, COM0 to COM9, LPT0 to LPT9, CONIN$,
/// CONOUT$, in any case and with any extension), at most 255 bytes of UTF-8. Names that come from
/// outside are looked at after their conversion: in CP932 the second byte of a character may be a
/// backslash's. Any thread.
[[nodiscard]] bool IsPlainFileName(std::wstring_view name);

} // namespace fieldcore
