#pragma once

#include "core/tilt/CalibrationRun.h"
#include "ui/controls/Dialog.h"

class QLabel;
class QPushButton;

namespace fieldcore {

class CTextProgressCtrl;

/// Runs a calibration of the tilt sensor and shows how far it is. It closes by itself when the run
/// is over; whoever closes it before cancels the run, and the dialog stays until the receiver has
/// stopped, for ten seconds at most. User-interface thread only.
class TiltCalibDlg : public Dialog
{
    Q_OBJECT

public:
    static constexpr int kRunTimer = 1;

    /// @param command  not owned; must outlive the dialog
    explicit TiltCalibDlg(CCommand* command, QWidget* parent = nullptr);
    ~TiltCalibDlg() override;

    /// How the run ended.
    [[nodiscard]] LastCalibrationRun Result() const { return m_run.Result(); }
    [[nodiscard]] QPushButton* CancelButton() const { return m_cancel; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnDestroy() override;
    void OnTimer(int id) override;

private:
    void ShowRun();

    CalibrationRun m_run;
    bool m_isTicking = false;
    QLabel* m_words; // owned by the dialog, as are the next two
    CTextProgressCtrl* m_progress;
    QPushButton* m_cancel;
};

} // namespace fieldcore
