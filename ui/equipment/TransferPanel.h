#pragma once

#include "core/equipment/FileRunner.h"

#include <QElapsedTimer>
#include <QFrame>

class QLabel;
class QPushButton;

namespace fieldcore {

class CTextProgressCtrl;

/// How far a download is: the file and all of it as bars, the rate, the time that is left, and a
/// button that ends it. User-interface thread only.
class TransferPanel : public QFrame
{
    Q_OBJECT

public:
    explicit TransferPanel(QWidget* parent = nullptr);

    /// Shows the panel, and in it what is new: at most ten times a second, unless a file begins or
    /// ends.
    void Show(const TransferProgress& progress);
    /// Hides the panel until the next transfer.
    void Reset();

private:
    static constexpr int kRepaintMs = 100;

    int m_file = 0; ///< the one that is shown
    bool m_isCancelled = false;
    QElapsedTimer m_shown;
    QLabel* m_name; // owned by the panel, as is all that follows
    QLabel* m_start;
    CTextProgressCtrl* m_fileBar;
    CTextProgressCtrl* m_totalBar;
    QLabel* m_rate;
    QLabel* m_left;
    QPushButton* m_cancel;
};

} // namespace fieldcore
