#pragma once

#include <functional>

class QWidget;

namespace fieldcore {

/// Does what takes long on a thread of its own, and is back when it is done. Meanwhile @p window is
/// drawn, but takes no input; the focus then is where it was. User-interface thread only.
void DoAside(QWidget& window, const std::function<void()>& work);

} // namespace fieldcore
