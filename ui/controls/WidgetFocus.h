#pragma once

#include "core/host/FocusTarget.h"
#include "ui/controls/QtHost.h"

#include <QPointer>
#include <QWidget>

namespace fieldcore {

/// A widget as the control that a CCheck goes back to. User-interface thread only.
class WidgetFocus final : public FocusTarget
{
public:
    /// @param widget  nothing happens once it is gone
    explicit WidgetFocus(QWidget* widget) : m_widget(widget) {}

    void TakeFocus() override
    {
        if (m_widget != nullptr) {
            QtHost::GiveFocus(m_widget);
        }
    }

private:
    const QPointer<QWidget> m_widget;
};

} // namespace fieldcore
