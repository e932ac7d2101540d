#pragma once

#include "ui/controls/Dialog.h"

#include <chrono>
#include <optional>

class QCalendarWidget;

namespace fieldcore {

/// A month to choose a day from, with days large enough for a finger. User-interface thread only.
class DateDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param date   the day that is chosen at first
    /// @param today  where the button "today" goes
    DateDlg(std::chrono::year_month_day date, std::chrono::year_month_day today,
            QWidget* parent = nullptr);

    /// Shows the month and waits.
    /// @return the day; nothing if the user cancelled
    [[nodiscard]] std::optional<std::chrono::year_month_day> Ask();

protected:
    void changeEvent(QEvent* event) override;

private:
    QCalendarWidget* m_calendar; // owned by the dialog
};

} // namespace fieldcore
