#pragma once

#include "core/host/Host.h"

#include <string>
#include <string_view>

namespace fieldcore {

/// What a message box says: a text, or the number of one in the string table. A number without a
/// text shows itself, so that the mistake is seen and the box is not empty.
class BoxText
{
public:
    /// A number of the string table, or the text itself.
    BoxText(int id);
    BoxText(std::wstring_view text) : m_text(text) {}
    BoxText(const std::wstring& text) : m_text(text) {}
    BoxText(const wchar_t* text) : m_text(text) {}

    /// What is shown.
    [[nodiscard]] const std::wstring& Get() const { return m_text; }

private:
    std::wstring m_text;
};

/// The message box of the library: over the active window, shown by the host. By custom a warning
/// about what was chosen has the exclamation icon, an error the stop icon, and a confirmation the
/// question icon with Yes and No. The thread that uses the library.
class CMesBox
{
public:
    /// Asks the default host.
    CMesBox() : m_host(DefaultHost()) {}
    /// @param host  must outlive the box
    explicit CMesBox(Host& host) : m_host(host) {}

    /// Shows the message and waits for the answer.
    BoxAnswer Show(const BoxText& text, const BoxText& caption, BoxStyle style = {}) const;

    /// What was chosen cannot be: exclamation icon, OK.
    void Warn(const BoxText& text, const BoxText& caption) const;
    /// It failed: stop icon, OK.
    void Fail(const BoxText& text, const BoxText& caption) const;
    /// Question icon, Yes and No.
    [[nodiscard]] bool Confirm(const BoxText& text, const BoxText& caption) const;

private:
    Host& m_host;
};

} // namespace fieldcore
