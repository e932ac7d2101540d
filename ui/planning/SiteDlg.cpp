#include "ui/planning/SiteDlg.h"

#include "core/planning/PlanSite.h"
#include "core/resources/StringTable.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

struct Field
{
    int text;
    std::wstring SiteInput::*value;
};
constexpr std::array kFields{
    Field{text::kSiteName, &SiteInput::name},
    Field{text::kSiteLatitude, &SiteInput::latitude},
    Field{text::kSiteLongitude, &SiteInput::longitude},
    Field{text::kSiteHeight, &SiteInput::height},
};

} // namespace

SiteDlg::SiteDlg(std::filesystem::path folder, std::wstring name, const SiteInput& input,
                 QWidget* parent)
    : Dialog(parent, Extent::Form), m_folder(std::move(folder)),
      m_name(std::move(name)), m_fields{}, m_fault(new RoleLabel(&Theme::bad))
{
    setWindowTitle(UiText(m_name.empty() ? text::kSiteAddTitle : text::kSiteEditTitle));
    setAccessibleName(windowTitle());
    auto* const content = new QWidget;
    auto* const form = new QVBoxLayout(content);
    for (std::size_t at = 0; at < kFields.size(); ++at) {
        auto* const label = new QLabel(UiText(kFields[at].text));
        auto* const edit = new QLineEdit(ToQt(input.*kFields[at].value));
        edit->setMinimumHeight(TouchStyle::kTarget);
        if (at != static_cast<std::size_t>(SiteField::Name)) {
            edit->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
        }
        edit->setAccessibleName(label->text());
        label->setBuddy(edit);
        label->setWordWrap(true);
        form->addWidget(label);
        form->addWidget(edit);
        m_fields[at] = edit;
    }
    form->addStretch(1);
    auto* const scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(content);
    m_fault->setWordWrap(true);
    m_fault->setContentsMargins(12, 0, 12, 0);
    m_fault->hide();

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 12);
    layout->addWidget(scroll, 1);
    layout->addWidget(m_fault);
    layout->addLayout(MakeOkCancel());
}

bool SiteDlg::OnClose(int result)
{
    if (result != kOk) {
        return true;
    }
    SiteInput input;
    for (std::size_t at = 0; at < kFields.size(); ++at) {
        input.*kFields[at].value = m_fields[at]->text().toStdWString();
    }
    ListedSite site;
    if (const auto fault = CheckSite(input, site)) {
        ShowFault(fault->field, UiText(fault->text));
        return false;
    }
    if (site.name != m_name && HasSite(m_folder, site.name)) {
        ShowFault(SiteField::Name, ToQt(FormatText(text::kSiteExists, site.name.c_str())));
        return false;
    }
    const int stored = m_name.empty() ? WriteSite(m_folder, site.name, site.observer)
                                      : ChangeSite(m_folder, m_name, site);
    if (stored == 0) {
        ShowFault(SiteField::Name, UiText(text::kSiteNotWritten));
        return false;
    }
    m_site = std::move(site);
    return true;
}

void SiteDlg::ShowFault(SiteField field, const QString& text)
{
    m_fault->setText(text);
    m_fault->show();
    QLineEdit* const edit = m_fields[static_cast<std::size_t>(field)];
    edit->setAccessibleDescription(text);
    edit->setFocus(Qt::OtherFocusReason);
    edit->selectAll();
}

} // namespace fieldcore
