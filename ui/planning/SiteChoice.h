#pragma once

#include <QListWidget>

#include <string>
#include <vector>

namespace fieldcore {

class PlanSession;

/// The site list of a plan, to choose several sites from: those of last time are chosen. The plan's
/// own stands first, and is chosen if no other is. User-interface thread only.
class SiteChoice : public QListWidget
{
    Q_OBJECT

public:
    explicit SiteChoice(const PlanSession& session, QWidget* parent = nullptr);

    [[nodiscard]] std::vector<std::wstring> Chosen() const;

private:
    Qt::CheckState m_before = Qt::Unchecked; ///< of the row that was pressed
};

} // namespace fieldcore
