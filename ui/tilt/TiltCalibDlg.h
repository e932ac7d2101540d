#pragma once

#include "core/tilt/CalibrationRun.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/Dialog.h"

#include <atomic>
#include <memory>

class QLabel;
class QPushButton;

namespace fieldcore {

class CTextProgressCtrl;

/// Runs a calibration of the tilt sensor and shows how far it is. It closes by itself when the run
/// is over; whoever closes it before cancels the run, and the dialog stays until the receiver has
/// stopped, for ten seconds at most. The run goes on in the background; a dialog that is torn down
/// leaves word for the receiver to stop. User-interface thread only.
class TiltCalibDlg : public Dialog
{
    Q_OBJECT

public:
    static constexpr int kPatienceTimer = 1; ///< with a receiver that does not stop

    /// @param command  not owned; must outlive the dialog. Null: nothing runs
    explicit TiltCalibDlg(CCommand* command, QWidget* parent = nullptr);
    ~TiltCalibDlg() override;

    /// How the run ended.
    [[nodiscard]] LastCalibrationRun Result() const { return m_told.Result(); }
    [[nodiscard]] QPushButton* CancelButton() const { return m_cancel; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnDestroy() override;
    void OnTimer(int id) override;

private:
    void Take(const CalibrationRun& run);

    CCommand* const m_command;
    CalibrationRun m_run;  // the question's, as long as there is one
    CalibrationRun m_told; // as it was heard last
    std::atomic<bool> m_isUnwanted = false;
    std::unique_ptr<BackgroundQuestion> m_question; // while it is open
    QLabel* m_words;                                // owned by the dialog, as are the next two
    CTextProgressCtrl* m_progress;
    QPushButton* m_cancel;
};

} // namespace fieldcore
