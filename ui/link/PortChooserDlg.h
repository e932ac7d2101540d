#pragma once

#include "ui/controls/Dialog.h"
#include "ui/link/PortChooser.h"

namespace fieldcore {

/// Asks for the port to connect to. User-interface thread only.
class PortChooserDlg : public Dialog
{
    Q_OBJECT

public:
    /// As PortChooser. @param choice  what was chosen last
    PortChooserDlg(const PortNames& names, const std::vector<ScenarioChoice>& scenarios,
                   const ConnectChoice& choice, const SystemRoots& roots = {},
                   QWidget* parent = nullptr);

    /// What was chosen, once DoModal() has answered kOk.
    [[nodiscard]] const ConnectChoice& Choice() const { return m_choice; }
    [[nodiscard]] PortChooser* Chooser() const { return m_chooser; }

protected:
    bool OnClose(int result) override;

private:
    ConnectChoice m_choice;
    PortChooser* m_chooser; // owned by the dialog
};

} // namespace fieldcore
