#pragma once

#include "core/planning/LiveSkyPoll.h"
#include "core/platform/Clock.h"
#include "core/settings/HostReg.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/Dialog.h"

#include <memory>

class QBoxLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QSortFilterProxyModel;
class QTableView;

namespace fieldcore {

class CnMenuBar;
class ConstellationBar;
class LiveSkyHead;
class LiveSkyView;
class SatelliteListModel;
class SignalBars;

/// The live sky: where the receiver sees its satellites, how well it hears them, and how old all
/// that is. It asks in the background, every two seconds as long as it is visible and less often
/// while nothing comes. User-interface thread only.
class CSkyPlot : public Dialog
{
    Q_OBJECT

public:
    /// @param command  receiver channel, may be null; not owned, must outlive the dialog
    /// @param loadWay  how it runs: 0 as a dialog, any other value as the host's program by itself,
    /// which closing asks how to end
    explicit CSkyPlot(CCommand* command, int loadWay = 0, QWidget* parent = nullptr);
    ~CSkyPlot() override;

    /// Numbers of the controls.
    enum Control : int
    {
        kAge = 1, ///< in the head, as are the next two
        kCounts,
        kProblem,
        kConstellations,
        kSky,
        kLegend,
        kShowBars,
        kShowList,
        kBars,
        kList,
    };

protected:
    bool OnClose(int result) override;
    void OnTimer(int id) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void MakeHead(QBoxLayout* layout);
    void MakeSky();
    void MakeDetails();
    void MakeMenu();
    void OnMenu(int item);
    void Ask();
    void ShowSky();
    void ShowColumns();
    [[nodiscard]] QString Notice() const;
    void KeepSettings();
    void ChooseSatellite(int row);
    void ArrangeDetails();

    CCommand* const m_command;
    const int m_loadWay;
    const HostReg m_reg;
    const Clock& m_clock;
    const std::shared_ptr<LiveSkyPoll> m_poll; // the question's while there is one
    LiveSkyPoll::Now m_now;
    std::unique_ptr<BackgroundQuestion> m_question; // while it is visible
    bool m_isFromBelow = false;
    bool m_isShowing = false; // a choice is carried from one control to the others

    // Owned by the dialog, as are all controls.
    LiveSkyHead* m_head = nullptr;
    ConstellationBar* m_constellations = nullptr;
    QBoxLayout* m_body = nullptr; // the sky, then the details
    LiveSkyView* m_sky = nullptr;
    QLabel* m_legend = nullptr;
    QWidget* m_switch = nullptr;
    QPushButton* m_showBars = nullptr;
    QPushButton* m_showList = nullptr;
    SignalBars* m_bars = nullptr;
    QScrollArea* m_barsScroll = nullptr;
    QTableView* m_list = nullptr;
    SatelliteListModel* m_model = nullptr;
    QSortFilterProxyModel* m_sorted = nullptr;
    CnMenuBar* m_menu = nullptr;
};

} // namespace fieldcore
