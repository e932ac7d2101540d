#pragma once

#include "core/planning/CurtainEdit.h"
#include "core/planning/SiteSkies.h"
#include "core/planning/SkyRecord.h"
#include "ui/controls/Dialog.h"
#include "ui/planning/PlanSurroundings.h"

#include <optional>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace fieldcore {

class CnToolBar;
class CurtainView;

/// The editor of the obstruction curtain. OK stores the curtain in the program's folder and gives
/// it to the plan, or keeps it as the one of a site; Cancel leaves both as they were. Where
/// tracking was noted long enough, it proposes a curtain that one tap takes over and another takes
/// back. User-interface thread only.
class CurtainEditor : public Dialog
{
    Q_OBJECT

public:
    /// @param session  must outlive the editor, as must @p surroundings
    /// @param site     whose curtain it is, to begin with; nothing: the plan's
    CurtainEditor(PlanSession& session, const PlanSurroundings& surroundings,
                  QWidget* parent = nullptr, std::optional<SiteSky> site = {});

    // Numbers of the tools.
    static constexpr int kFormTool = 1; ///< stays down while the view is unrolled
    static constexpr int kUndoTool = 2;
    static constexpr int kRedoTool = 3;
    static constexpr int kClearTool = 4;
    static constexpr int kImportTool = 5;
    static constexpr int kExportTool = 6;

    // Numbers of the controls.
    static constexpr int kProposalText = 1;
    static constexpr int kTakeButton = 2;

    [[nodiscard]] CurtainView& View() const { return *m_view; }
    [[nodiscard]] const CurtainEdit& Edit() const { return m_edit; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;

private:
    void OnTool(int id);
    void Import();
    void Export();
    void Update();
    void MakeProposal(QBoxLayout* layout);
    void Propose();
    void TakeProposal();
    [[nodiscard]] bool IsTaken() const;

    PlanSession& m_session;
    const PlanSurroundings& m_surroundings;
    const std::optional<SiteSky> m_site;
    CurtainEdit m_edit;
    CnToolBar* m_tools; // owned by the dialog, as is all that follows
    CurtainView* m_view;
    QLabel* m_reading;
    QLabel* m_proposal = nullptr;
    QPushButton* m_take = nullptr;

    std::optional<SkyRecord> m_noted; // that the proposal rests upon
    bool m_hasTaken = false;          // it, and the undo takes it back
};

} // namespace fieldcore
