#pragma once

#include "core/link/ConnectChoice.h"
#include "ui/controls/PropertySheet.h"
#include "ui/link/PortChooser.h"

#include <optional>

class QCheckBox;

namespace fieldcore {

class CTComboBox;
class Controller;

/// The controller's own settings: colours, whether the receiver sets the clock, and where the
/// receiver is. OK keeps all but the last. User-interface thread only.
class SettingsSheet : public PropertySheet
{
    Q_OBJECT

public:
    /// @param controller  must outlive the sheet
    explicit SettingsSheet(Controller& controller, QWidget* parent = nullptr);

    /// @return nothing while what is typed is no name of a port
    [[nodiscard]] std::optional<ConnectChoice> ChosenPort() const { return m_ports->Choice(); }

protected:
    bool OnClose(int result) override;

private:
    Controller& m_controller;
    QCheckBox* m_setClock; // owned by the sheet, as are the next
    CTComboBox* m_theme;
    PortChooser* m_ports;
};

} // namespace fieldcore
