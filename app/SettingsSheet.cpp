#include "app/SettingsSheet.h"

#include "app/Controller.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/UiText.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace fieldcore {

SettingsSheet::SettingsSheet(Controller& controller, QWidget* parent)
    : PropertySheet(UiText(text::kAppSettings), parent), m_controller(controller),
      m_setClock(new QCheckBox(UiText(text::kAppSetClock))), m_theme(new CTComboBox),
      m_ports(new PortChooser(controller.Ports(), Scenarios()))
{
    auto* const look = new PropertyPage;
    auto* const form = new QFormLayout(look);
    for (const auto kind : {Theme::Kind::Daylight, Theme::Kind::Dark, Theme::Kind::System}) {
        const int code = static_cast<int>(kind);
        m_theme->AddEntry(UiText(text::kAppThemeDaylight + code), code);
    }
    m_theme->SelectCode(static_cast<int>(Theme::Used()));
    m_theme->setAccessibleName(UiText(text::kAppMenuView));
    form->addRow(UiText(text::kAppTheme), m_theme);
    m_setClock->setChecked(controller.MaySetClock());
    form->addRow(m_setClock);
    AddPage(look, UiText(text::kAppMenuView));

    auto* const port = new PropertyPage;
    auto* const column = new QVBoxLayout(port);
    m_ports->SetChoice(controller.Choice());
    column->addWidget(m_ports);
    AddPage(port, UiText(text::kAppMenuLink));
}

bool SettingsSheet::OnClose(int result)
{
    if (!PropertySheet::OnClose(result)) {
        return false;
    }
    if (result == kOk) {
        m_controller.UseTheme(static_cast<Theme::Kind>(m_theme->GetCode()));
        m_controller.SetMaySetClock(m_setClock->isChecked());
    }
    return true;
}

} // namespace fieldcore
