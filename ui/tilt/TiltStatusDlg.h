#pragma once

#include "core/tilt/TiltSettings.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/Dialog.h"

class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;

#include <memory>

namespace fieldcore {

class CTComboBox;

/// The state of the tilt sensor's calibration, and the settings of the bubble. It asks the receiver
/// once a second while it is open, and less often while the receiver keeps silent.
/// User-interface thread only; the rules are TiltSettings'.
class TiltStatusDlg : public Dialog
{
    Q_OBJECT

public:
    // Numbers of the controls.
    static constexpr int kStatus = 1;
    static constexpr int kRemain = 2;
    static constexpr int kSensitivity = 3;
    static constexpr int kSpeed = 4;
    static constexpr int kDuration = 5;
    static constexpr int kExpiry = 6;
    static constexpr int kExpiryEdit = 7;
    static constexpr int kChange = 8;
    static constexpr int kBubble = 9;
    static constexpr int kCalibrate = 10;
    static constexpr int kNotice = 11; ///< in place of status and remaining time

    /// @param command  receiver channel; not owned, must outlive the dialog
    explicit TiltStatusDlg(CCommand* command, QWidget* parent = nullptr);
    ~TiltStatusDlg() override;

    bool OnInitDialog() override;

protected:
    void OnDestroy() override;

private:
    void Build();
    void BuildSettings(QFormLayout& form);
    void AskStatus();
    void ShowStatus();
    void ShowExpiry();
    void EditExpiry();
    void LeaveExpiry();
    void Calibrate();

    CCommand* const m_command;
    TiltSettings m_tilt;
    bool m_hasRecord = false;                       // the receiver's record has been taken over
    std::unique_ptr<BackgroundQuestion> m_question; // null while a calibration runs
    QLabel* m_notice;                               // owned by the dialog, as are all that follow
    QLabel* m_status;
    QLabel* m_remain;
    CTComboBox* m_sensitivity;
    CTComboBox* m_speed;
    QLineEdit* m_duration;
    QStackedWidget* m_expiryPlace; // shown, or edited
    QLabel* m_expiry;
    QPushButton* m_change;
    QPushButton* m_calibrate;
    QLineEdit* m_expiryEdit;
};

} // namespace fieldcore
