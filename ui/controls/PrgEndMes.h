#pragma once

#include "ui/controls/Dialog.h"

namespace fieldcore {

class CCommand;

/// The question at the end of the program: end it, end it and switch the receiver off, or stay.
/// User-interface thread only.
///
/// DoModal() answers kEnd: the caller closes the link and ends; kStay: he goes on; anything else,
/// which is kPowerOffAndEnd: he switches the receiver off, closes the link and ends.
class CPrgEndMes : public Dialog
{
    Q_OBJECT

public:
    /// Which answers it offers.
    enum class Mode
    {
        Normal,  ///< there is no receiver to switch off: only ending or staying
        Logging, ///< a receiver is in use, and goes on logging unless it is switched off
    };

    /// What DoModal() answers.
    static constexpr int kEnd = kOk;
    static constexpr int kStay = kCancelled;
    static constexpr int kPowerOffAndEnd = 3;

    /// @param mode  which answers it offers
    explicit CPrgEndMes(Mode mode, QWidget* parent = nullptr);

    /// Asks for a screen that is the program by itself, and does with receiver and link what the
    /// user wants. A receiver that cannot be switched off is told, and the user may stay.
    /// @param command  null: there is no receiver
    /// @return whether the screen may close
    [[nodiscard]] static bool MayEnd(CCommand* command, QWidget* parent);

private:
    void AddButton(int textId, const QString& icon, int result);
};

} // namespace fieldcore
