#include "app/SettingsSheet.h"

#include "ui/controls/PropertyPage.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/UiText.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace fieldcore {

SettingsSheet::SettingsSheet(const PortNames& names, const std::vector<ScenarioChoice>& scenarios,
                             const ConnectChoice& choice, bool maySetClock, QWidget* parent)
    : PropertySheet(UiText(text::kAppSettings), parent),
      m_setClock(new QCheckBox(UiText(text::kAppSetClock))), m_theme(new CTComboBox),
      m_ports(new PortChooser(names, scenarios))
{
    auto* const look = new PropertyPage;
    auto* const form = new QFormLayout(look);
    for (const auto& [kind, id] : {std::pair{Theme::Kind::Daylight, text::kAppThemeDaylight},
                                   std::pair{Theme::Kind::Dark, text::kAppThemeDark},
                                   std::pair{Theme::Kind::System, text::kAppThemeSystem}}) {
        m_theme->AddEntry(UiText(id), static_cast<int>(kind));
    }
    m_theme->SelectCode(static_cast<int>(Theme::Used()));
    m_theme->setAccessibleName(UiText(text::kAppMenuView));
    form->addRow(UiText(text::kAppTheme), m_theme);
    m_setClock->setChecked(maySetClock);
    form->addRow(m_setClock);
    AddPage(look, UiText(text::kAppMenuView));

    auto* const port = new PropertyPage;
    auto* const column = new QVBoxLayout(port);
    m_ports->SetChoice(choice);
    column->addWidget(m_ports);
    AddPage(port, UiText(text::kAppMenuLink));
}

Theme::Kind SettingsSheet::ChosenTheme() const
{
    return static_cast<Theme::Kind>(m_theme->GetCode()); // one is always selected
}

bool SettingsSheet::MaySetClock() const
{
    return m_setClock->isChecked();
}

} // namespace fieldcore
