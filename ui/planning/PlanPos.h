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
class CTComboBox;
class CTextProgressCtrl;

/// Page of the plan's detail settings: the list of sites, to choose one from, and to keep it. Which
/// one is chosen counts on OK; what is added, changed, removed or imported is stored at once, and
/// the plan follows its own site there: to its new name and place, whatever ends the dialog. A plan
/// whose site is not in the list keeps it until the user chooses one. User-interface thread only.
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
    /// Reads the list anew and chooses @p name; nothing if it is not there.
    void Fill(const std::wstring& name);
    void Filter();
    void ShowChosen();
    void Add();
    void Edit();
    void Remove();
    void Import();
    void TakeFromReceiver();
    /// What is stored has changed: so may have the plan's site.
    void Follow();
    void ShowProgress(const QString& text);
    /// @return whether a site was stored
    bool EditSite(const std::wstring& name, const SiteInput& input);

    CSurveyPlan& m_plan;
    std::wstring m_received; ///< name of the site that the receiver has given last
    std::wstring m_wanted;   ///< the site that the user has chosen; a search may hide it
    QLineEdit* m_search;     // owned by the page, as is all that follows
    QListWidget* m_list;
    QLabel* m_note;
    QLabel* m_place;
    CTComboBox* m_coordinates;
    CTextProgressCtrl* m_progress;
    QPushButton* m_edit;
    QPushButton* m_remove;
    QPushButton* m_receiver;
};

} // namespace fieldcore
