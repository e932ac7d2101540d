#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace fieldcore {

enum class BoxButtons
{
    Ok,
    OkCancel,
    YesNo,
    RetryCancel,
};

enum class BoxIcon
{
    None,
    Information,
    Exclamation,
    Stop,
    Question,
};

enum class BoxAnswer
{
    Ok,
    Cancel,
    Yes,
    No,
    Retry,
};

/// How a message looks and which answers it offers.
struct BoxStyle
{
    BoxButtons buttons = BoxButtons::Ok;
    BoxIcon icon = BoxIcon::None;
    /// The answer that Enter gives, one of the buttons; nothing: see DefaultAnswer().
    std::optional<BoxAnswer> byDefault = std::nullopt;
};

/// The answer that changes nothing: what Esc gives, and what nobody gives who is not there.
[[nodiscard]] BoxAnswer HarmlessAnswer(BoxButtons buttons);
/// The answer that goes on: what a caller waits for, or the only one.
[[nodiscard]] BoxAnswer AgreeingAnswer(BoxButtons buttons);

/// The answer that Enter gives: the one that the style names, if its buttons have it. Else the
/// usual next step, unless agreeing may destroy something. It may
/// where there is a question or a warning to agree to; trying again, and going on after a mere
/// request, never does.
[[nodiscard]] BoxAnswer DefaultAnswer(BoxStyle style);

/// A control that somebody types into, for whoever finds a fault in what was typed. The control may
/// go first: then nothing happens.
class FocusTarget
{
public:
    virtual ~FocusTarget() = default;

    /// Puts the input focus into the control.
    virtual void TakeFocus() = 0;
};

/// What the library asks of the application around it. A program with windows, a terminal
/// program and a test each bring their own. Every call comes on the thread that uses the
/// library, and none may throw.
class Host
{
public:
    virtual ~Host() = default;

    /// Shows a message over the active window and waits for the answer.
    virtual BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                                  BoxStyle style) = 0;

    /// The control that carries @p controlId in the window that is active now, whichever window is
    /// active when the focus goes there.
    /// @return null if there is no such control, or no active window
    [[nodiscard]] virtual std::unique_ptr<FocusTarget> FindControl(int controlId)
    {
        static_cast<void>(controlId);
        return nullptr;
    }

    /// Whether one of the application's windows is in front.
    [[nodiscard]] virtual bool HasActiveWindow() const { return false; }
    /// Writes @p text into the control that carries @p controlId in the active window; without
    /// such a control nothing happens.
    virtual void SetControlText(int controlId, std::wstring_view text)
    {
        static_cast<void>(controlId);
        static_cast<void>(text);
    }

    /// Switches the wait cursor on or off; calls nest.
    virtual void ShowWaitCursor(bool on) { static_cast<void>(on); }

    /// Called about every 50 ms while the library waits for the receiver, so that a window can
    /// repaint. A request to the receiver made from inside is refused, since one is under way.
    /// @return false when the user wants the running operation to end
    virtual bool Breathe() { return true; }

    /// Whether the controller is the model with the taller screen, which has layouts of its own.
    [[nodiscard]] virtual bool IsQ77() const { return false; }

    /// The icon that the library's windows carry: path of an image file or of a resource of the
    /// program, UTF-8. Empty: none of the application's own.
    [[nodiscard]] virtual std::string CommonIcon() const { return {}; }
};

/// The host of a program that has nobody to ask: every question is answered with the answer
/// that changes nothing (Cancel or No), every message counts as read.
class SilentHost : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override;

    /// The one that is used where no other is given.
    static SilentHost& Instance();
};

/// The host of what is given none: the one that SetDefaultHost() named, before that SilentHost.
/// Asked at each use, so that one that is named later counts, too. Any thread.
[[nodiscard]] Host& DefaultHost();

/// @param host  must outlive its use; nullptr goes back to SilentHost. Any thread.
void SetDefaultHost(Host* host);

/// A window, or whatever stands for one, that is told something later: a message is queued and
/// handled on the thread that uses the library, after what runs there now.
class MessageTarget
{
public:
    virtual ~MessageTarget() = default;

    /// Queues a message. Messages arrive in the order in which one thread posts them; those for a
    /// receiver that is gone are dropped. Any thread.
    /// @param message  number of the kind of message
    /// @param wParam   first value, its meaning belongs to the kind
    /// @param lParam   second value
    virtual void Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam) = 0;
};

/// A progress bar as the library moves it; a window, a terminal or a test brings its own.
class ProgressBar
{
public:
    virtual ~ProgressBar() = default;

    /// Both ends belong to the range.
    virtual void SetRange(int first, int last) = 0;
    /// @param position  within the range
    virtual void SetPos(int position) = 0;
};

/// Shows the host's wait cursor as long as it lives.
class WaitCursor
{
public:
    /// Shows the cursor. @param host  must outlive the object
    explicit WaitCursor(Host& host) : m_host(host) { m_host.ShowWaitCursor(true); }
    ~WaitCursor() { m_host.ShowWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    Host& m_host;
};

} // namespace fieldcore
