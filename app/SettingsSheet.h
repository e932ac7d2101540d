#pragma once

#include "core/link/ConnectChoice.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/Theme.h"
#include "ui/link/PortChooser.h"

#include <optional>
#include <vector>

class QCheckBox;

namespace fieldcore {

class CTComboBox;

/// The controller's own settings: colours, and where the receiver is. User-interface thread only.
class SettingsSheet : public PropertySheet
{
    Q_OBJECT

public:
    /// @param choice  the port that is set now
    /// @param maySetClock  whether the receiver sets the controller's clock now
    SettingsSheet(const PortNames& names, const std::vector<ScenarioChoice>& scenarios,
                  const ConnectChoice& choice, bool maySetClock, QWidget* parent = nullptr);

    // What was chosen, once DoModal() has answered kOk.

    [[nodiscard]] Theme::Kind ChosenTheme() const;
    [[nodiscard]] bool MaySetClock() const;
    /// @return nothing while what is typed is no name of a port
    [[nodiscard]] std::optional<ConnectChoice> ChosenPort() const { return m_ports->Choice(); }

private:
    QCheckBox* m_setClock;
    CTComboBox* m_theme; // owned by the sheet, as is the next
    PortChooser* m_ports;
};

} // namespace fieldcore
