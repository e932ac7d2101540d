#pragma once

#include "core/link/Connect.h"
#include "core/platform/Clock.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/RoleLabel.h"

#include <QString>

#include <array>
#include <functional>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QScrollArea;

namespace fieldcore {

/// Shows a connection being made: its steps, how far it is, how long it has taken, and a button
/// that ends it. When it fails the dialog says at which step, why, and what to do. User-interface
/// thread only.
///
/// While the connection is made the dialog is shown without a loop of its own: the program's host
/// breathes, see QtHost.
class ConnectProgressDlg : public Dialog, public ConnectObserver
{
    Q_OBJECT

public:
    /// @param target  what is connected to, in words
    /// @param clock   counts the time so far; must outlive the dialog
    ConnectProgressDlg(const QString& target, const Clock& clock, QWidget* parent = nullptr);
    ~ConnectProgressDlg() override;

    /// Shows the dialog; OnStep() follows.
    void Begin();
    void OnStep(ConnectStep step, int done, int total) override;

    /// Says what went wrong at the last step, and waits until the user has read it.
    /// @param message  for the user
    /// @param detail   for developers
    /// @param search   looks for the receiver's rate when the user wants it, with this dialog as
    /// its
    ///                 observer, and says how that ended; empty: not offered
    void ShowFailure(const QString& message, const QString& detail,
                     std::function<QString()> search = {});
    /// Shows a rate of a search, see SearchRate().
    void OnRate(std::uint32_t rate, int done, int total);

    /// Whether @p step is under way.
    [[nodiscard]] bool IsRunning(ConnectStep step) const
    {
        return isVisible() && !m_failed && m_step == step;
    }
    [[nodiscard]] QPushButton* CancelButton() const { return m_cancel; }
    [[nodiscard]] QPushButton* CloseButton() const { return m_close; }
    [[nodiscard]] QPushButton* DetailButton() const { return m_showDetail; }
    [[nodiscard]] QPushButton* SearchButton() const { return m_search; }

protected:
    bool OnInitDialog() override;
    void OnTimer(int id) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    static constexpr int kSteps = 5;

    enum class RowState
    {
        Waiting,
        Running,
        Done,
        Failed,
    };
    struct Row
    {
        QLabel* icon; // owned by the dialog, as are the next two
        RoleLabel* name;
        RoleLabel* state;
        bool visited = false;
    };

    void Build(const QString& target);
    void ShowRows(ConnectStep current, bool failed);
    void ShowRow(Row& row, RowState state);
    void ShowElapsed();
    void ShowDetail(bool on);
    void Search();
    void ShowSearching(bool on);
    void Place();

    const Clock& m_clock;
    Clock::Duration m_began{};
    ConnectStep m_step = ConnectStep::OpenPort;
    bool m_failed = false;
    std::function<QString()> m_searchRate;
    std::array<Row, kSteps> m_rows{};
    RoleLabel* m_heading; // owned by the dialog, as are all that follow
    QLabel* m_current;
    QProgressBar* m_progress;
    QLabel* m_elapsed;
    RoleLabel* m_hint;
    QLabel* m_message;
    QPlainTextEdit* m_detail;
    QScrollArea* m_scroll;
    QPushButton* m_cancel;
    QPushButton* m_showDetail;
    QPushButton* m_search;
    QPushButton* m_close;
};

} // namespace fieldcore
