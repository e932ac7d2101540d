#pragma once

#include "core/planning/SiteInput.h"
#include "ui/controls/PropertyPage.h"

#include <string>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace fieldcore {

class CSurveyPlan;

/// Page of the plan's detail settings: the list of sites, to choose one from, and to keep it. Which
/// one is chosen counts on OK; what is added, changed, removed or imported is stored at once, and a
/// plan that shows such a site keeps its coordinates until one is chosen. User-interface thread
/// only.
class CPlanPos : public PropertyPage
{
    Q_OBJECT

public:
    /// @param plan  read when the page is shown and set on OK; must outlive it
    explicit CPlanPos(CSurveyPlan& plan, QWidget* parent = nullptr);

    /// The name of the site that is chosen; empty if there is none.
    [[nodiscard]] std::wstring Chosen() const;

protected:
    void OnInitDialog() override;
    void OnSetActive() override;
    bool OnOK() override;

private:
    QPushButton* MakeButton(int textId, void (CPlanPos::*action)());
    /// Reads the list anew and chooses @p name, or what is nearest to it.
    void Fill(const std::wstring& name);
    void Filter();
    void ShowChosen();
    void Add();
    void Edit();
    void Remove();
    void Import();
    void TakeFromReceiver();
    /// @return whether a site was stored
    bool EditSite(const std::wstring& name, const SiteInput& input);

    CSurveyPlan& m_plan;
    std::wstring m_received; ///< name of the site that the receiver has given last
    QLineEdit* m_search;     // owned by the page, as is all that follows
    QListWidget* m_list;
    QLabel* m_note;
    QLabel* m_place;
    QPushButton* m_edit;
    QPushButton* m_remove;
    QPushButton* m_receiver;
};

} // namespace fieldcore
