#pragma once

#include "core/link/ConnectChoice.h"
#include "core/link/PortChoices.h"
#include "ui/controls/Dialog.h"

#include <QString>
#include <QTimer>
#include <QWidget>

#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace fieldcore {

/// A scenario that the simulated receiver can play, as the program offers it.
struct ScenarioChoice
{
    std::string name; ///< as in "sim:NAME"
    QString title;
};

/// Lets the user choose a port: from the ports of this machine and the simulated receiver, which
/// come and go while he looks, or by any name that he types. User-interface thread only.
class PortChooser : public QWidget
{
    Q_OBJECT

public:
    /// @param names      what COM numbers mean
    /// @param scenarios  may be empty: the simulator then plays its own
    PortChooser(PortNames names, const std::vector<ScenarioChoice>& scenarios,
                SystemRoots roots = {}, QWidget* parent = nullptr);

    void SetChoice(const ConnectChoice& choice);
    /// @return nothing while what is typed is no name of a port
    [[nodiscard]] std::optional<ConnectChoice> Choice() const;

    /// Looks which ports there are. Called when the chooser has been painted, and every second
    /// while it is seen. What is chosen stays chosen, also when it is unplugged.
    void Refresh();

Q_SIGNALS:
    /// Choice() may have another value.
    void Chosen();
    /// A port was chosen in a way that means to use it: by a double click, or by Enter in the list.
    void Activated();

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void Build(const std::vector<ScenarioChoice>& scenarios);
    void ShowPorts();
    void SelectRow();
    void OnRow(int row);
    void OnName();
    void OnScenario();
    [[nodiscard]] std::string Name() const;

    const PortNames m_names;
    const SystemRoots m_roots;
    std::vector<PortChoice> m_ports;
    QTimer m_timer;
    bool m_hasLooked = false; // since it was shown
    QListWidget* m_list;      // owned by the chooser, as are all that follow
    QLabel* m_nothing;
    QLineEdit* m_name;
    QLabel* m_fault;
    QLabel* m_scenarioLabel;
    QComboBox* m_scenario;
    QComboBox* m_baudRate;
};

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
