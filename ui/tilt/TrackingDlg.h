#pragma once

#include "core/settings/HostReg.h"
#include "core/tilt/TrackingSettings.h"
#include "ui/controls/Dialog.h"

#include <vector>

class QCheckBox;
class QFormLayout;

namespace fieldcore {

class CSpinDouble;
class CTComboBox;

/// The tracking parameters of every survey type, seen and changed one survey at a time and stored
/// together with OK. User-interface thread only.
class TrackingDlg : public Dialog
{
    Q_OBJECT

public:
    static constexpr int kSurvey = 1; ///< number of the list of surveys

    /// @param roots  must outlive the dialog
    explicit TrackingDlg(SettingsRoots& roots = SettingsRoots::Instance(),
                         QWidget* parent = nullptr);
    ~TrackingDlg() override;

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;

private:
    struct Switch
    {
        QCheckBox* box; // owned by the dialog
        int (CGPSPrm::*get)() const;
        int (CGPSPrm::*set)(int);
    };

    void BuildFields(QFormLayout& form);
    void Show(int index);
    void Keep();
    /// @return false if a survey could not be stored
    [[nodiscard]] bool SaveAll() const;

    const HostReg m_reg;
    std::vector<CGPSPrm> m_sets; // in the order of AllSurveys()
    int m_shown = 0;
    CTComboBox* m_survey; // owned by the dialog, as are the next
    CTComboBox* m_interval;
    CTComboBox* m_mask;
    CTComboBox* m_satellites;
    CSpinDouble* m_epochs;
    CSpinDouble* m_pdop;
    std::vector<Switch> m_switches;
};

} // namespace fieldcore
