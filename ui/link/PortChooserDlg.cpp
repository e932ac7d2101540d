#include "ui/link/PortChooserDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kMargin = 12;

} // namespace

PortChooserDlg::PortChooserDlg(const PortNames& names, const std::vector<ScenarioChoice>& scenarios,
                               const ConnectChoice& choice, const SystemRoots& roots,
                               QWidget* parent)
    : Dialog(parent, Extent::Form), m_choice(choice),
      m_chooser(new PortChooser(names, scenarios, roots))
{
    setWindowTitle(UiText(text::kPortTitle));
    auto* const heading = new QLabel(UiText(text::kPortTitle));
    heading->setFont(BoldFont(font(), 1.25));
    auto* const buttons = MakeOkCancel();
    buttons->setContentsMargins({});
    DefaultButton()->setText(UiText(text::kPortConnect));
    DefaultButton()->setIcon(ThemeIcon(QStringLiteral("connect")));
    connect(m_chooser, &PortChooser::Activated, this, [this] { Close(kOk); });
    connect(m_chooser, &PortChooser::Chosen, this,
            [this] { DefaultButton()->setEnabled(m_chooser->Choice().has_value()); });

    auto* const scroll = MakeScroll(m_chooser);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kGrid);
    layout->addWidget(heading);
    layout->addWidget(scroll, 1);
    layout->addLayout(buttons);
    m_chooser->SetChoice(choice);
}

bool PortChooserDlg::OnClose(int result)
{
    if (result != kOk) {
        return true;
    }
    const std::optional<ConnectChoice> choice = m_chooser->Choice();
    if (choice) {
        m_choice = *choice;
    }
    return choice.has_value();
}

} // namespace fieldcore
