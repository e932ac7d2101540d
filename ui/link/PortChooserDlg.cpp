#include "ui/link/PortChooserDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/PageAction.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kMargin = 12;
constexpr double kLarge = 1.25; // of the usual text

} // namespace

PortChooserDlg::PortChooserDlg(const PortNames& names, const std::vector<ScenarioChoice>& scenarios,
                               const ConnectChoice& choice, const SystemRoots& roots,
                               QWidget* parent)
    : Dialog(parent, Extent::Form), m_choice(choice),
      m_chooser(new PortChooser(names, scenarios, roots)),
      m_connect(new QPushButton(UiText(text::kPortConnect)))
{
    setWindowTitle(UiText(text::kPortTitle));
    auto* const heading = new QLabel(UiText(text::kPortTitle));
    QFont bold = font();
    bold.setBold(true);
    bold.setPixelSize(qRound(QFontInfo(font()).pixelSize() * kLarge));
    heading->setFont(bold);
    auto* const cancel = new QPushButton(UiText(text::kButtonCancel));
    for (QPushButton* const button : {cancel, m_connect}) {
        button->setMinimumSize(15 * kGrid, 6 * kGrid);
    }
    m_connect->setIcon(ThemeIcon(QStringLiteral("connect")));
    m_connect->setDefault(true);
    cancel->setAutoDefault(false);
    connect(m_connect, &QPushButton::clicked, this, [this] { Close(kOk); });
    connect(cancel, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    connect(m_chooser, &PortChooser::Activated, this, [this] { Close(kOk); });
    connect(m_chooser, &PortChooser::Chosen, this,
            [this] { m_connect->setEnabled(m_chooser->Choice().has_value()); });

    auto* const scroll = new QScrollArea;
    scroll->setWidget(m_chooser);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(kGrid);
    if (QWidget* const button = MakePageButton()) {
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(m_connect);
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
