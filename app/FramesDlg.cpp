#include "app/FramesDlg.h"

#include "ui/controls/NMenuBar.h"
#include "ui/controls/UiText.h"
#include "ui/link/FramesView.h"

#include <QVBoxLayout>

namespace fieldcore {

FramesDlg::FramesDlg(FrameHistory& history, QWidget* parent) : Dialog(parent, Extent::Whole)
{
    setWindowTitle(UiText(text::kAppFrames));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new FramesView(history), 1);
    auto* const menu = new CnMenuBar;
    column->addWidget(menu);
    connect(menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
    OfferConnection();
}

} // namespace fieldcore
