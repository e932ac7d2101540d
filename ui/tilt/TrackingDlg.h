#pragma once

#include "core/settings/HostReg.h"
#include "core/tilt/TrackingSettings.h"
#include "ui/controls/Dialog.h"

#include <vector>

class QCheckBox;
class QFormLayout;
class QLabel;

namespace fieldcore {

class CCommand;
class CSpinDouble;
class CTComboBox;

/// The tracking parameters of every survey type, seen and changed one survey at a time and stored
/// together with OK; the one that is seen then is the one that is run. The signals are those of the
/// receiver, chosen on their own page. User-interface thread only.
class TrackingDlg : public Dialog
{
    Q_OBJECT

public:
    static constexpr int kSurvey = 1; ///< number of the list of surveys

    static constexpr int kSignals = 2; ///< number of the signals that are chosen

    /// @param command  of the receiver, must outlive the dialog; null: its signals cannot be chosen
    explicit TrackingDlg(CCommand* command, QWidget* parent = nullptr);
    ~TrackingDlg() override;

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;

private:
    void BuildFields(QFormLayout& form);
    void Show(int index);
    void ShowSignals();
    void ChooseSignals();
    void Keep();
    /// @return false if a survey could not be stored
    [[nodiscard]] bool SaveAll() const;

    CCommand* const m_command;
    const HostReg m_reg;
    std::vector<CGPSPrm> m_sets; // in the order of AllSurveys()
    int m_shown = 0;
    CTComboBox* m_survey; // owned by the dialog, as are the next
    CTComboBox* m_interval;
    CTComboBox* m_mask;
    CTComboBox* m_satellites;
    CSpinDouble* m_epochs;
    CSpinDouble* m_pdop;
    QLabel* m_signals;
    QCheckBox* m_msas;
};

} // namespace fieldcore
