#pragma once

#include "ui/controls/Dialog.h"

namespace fieldcore {

class FrameHistory;

/// The frames that go over the line, as a page of the controller. User-interface thread only.
class FramesDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param history  not owned, must outlive the dialog
    explicit FramesDlg(FrameHistory& history, QWidget* parent = nullptr);
};

} // namespace fieldcore
