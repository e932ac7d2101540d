#pragma once

#include "core/tilt/SignalChoice.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/Dialog.h"

#include <array>
#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;

namespace fieldcore {

/// The choice of the signals that the receiver tracks. What is chosen is sent and kept with OK; a
/// receiver whose signals are fixed shows what is kept and takes nothing. The receiver is asked in
/// the background, until it answers; before that nothing can be chosen. User-interface thread only;
/// the rules are SignalSession's.
class SetSignal : public Dialog
{
    Q_OBJECT

public:
    /// @param command  not owned; must outlive the dialog
    explicit SetSignal(CCommand* command, QWidget* parent = nullptr);
    ~SetSignal() override;

    /// Its controls, for tests and pictures.
    [[nodiscard]] QCheckBox* Box(Signal signal) const
    {
        return m_boxes[static_cast<std::size_t>(signal)];
    }
    [[nodiscard]] QPushButton* OkButton() const { return m_ok; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnDestroy() override;

private:
    void Build();
    void Take(const SignalAnswers& answers);
    void ShowSignals(int hintId);

    CCommand* const m_command;
    const HostReg m_reg;
    SignalSession m_session;
    std::unique_ptr<BackgroundQuestion> m_question; // until it has been answered
    bool m_isAsked = false;
    bool m_isConfirming = false;
    std::array<QCheckBox*, kAllSignals.size()> m_boxes{}; // owned by the dialog, as are the next
    QLabel* m_hint;
    QPushButton* m_ok;
};

} // namespace fieldcore
