#pragma once

#include <QToolButton>

namespace fieldcore {

/// The wide plus or minus button of a spin control; goes on while it is held down. The focus stays
/// with the value. User-interface thread only.
class StepButton : public QToolButton
{
    Q_OBJECT

public:
    /// @param isPlus  else it is a minus
    explicit StepButton(bool isPlus, QWidget* parent = nullptr);
};

} // namespace fieldcore
