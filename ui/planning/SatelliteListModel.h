#pragma once

#include "core/planning/LiveSky.h"

#include <QAbstractTableModel>

#include <vector>

namespace fieldcore {

/// The live satellites as rows of a list: name, azimuth, elevation, state, and the signals. What is
/// unknown is "--". Sorting asks for Qt::UserRole, which has numbers. User-interface thread only.
class SatelliteListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        kName,
        kAzimuth,
        kElevation,
        kState,
        kSignal1, ///< the other signals follow
        kColumns = kSignal1 + 4,
    };

    explicit SatelliteListModel(QObject* parent = nullptr);

    /// Rows stay chosen as long as the satellites are the same ones.
    /// @param isStale  drawn grey
    void Show(const std::vector<LiveSatellite>& satellites, bool isStale);
    /// Whether any satellite has the signal.
    /// @param signal  0 to 3
    [[nodiscard]] bool HasSignal(int signal) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    std::vector<LiveSatellite> m_satellites;
    bool m_isStale = false;
};

} // namespace fieldcore
