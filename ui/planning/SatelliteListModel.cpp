#include "ui/planning/SatelliteListModel.h"

#include "core/platform/Degrees.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/planning/LiveSkyStyle.h"

#include <QBrush>

#include <algorithm>
#include <cstddef>

namespace fieldcore {

namespace {

int StateTextId(const LiveSatellite& satellite)
{
    if (!satellite.isTracked) {
        return text::kSkyInView;
    }
    if (!satellite.isUsed) {
        return text::kSkyTracked;
    }
    return *satellite.isUsed ? text::kSkyUsed : text::kSkyUnused;
}

const std::optional<double>& SignalOf(const LiveSatellite& satellite, int column)
{
    return satellite.signals[static_cast<std::size_t>(column - SatelliteListModel::kSignal1)];
}

QString ValueText(const LiveSatellite& satellite, int column)
{
    switch (column) {
    case SatelliteListModel::kName:
        return SatelliteText(satellite);
    case SatelliteListModel::kAzimuth:
        return ToQt(FormatText(text::kSkyDegrees, DegreesOf(satellite.direction.azimuthRad)));
    case SatelliteListModel::kElevation:
        return ToQt(FormatText(text::kSkyDegrees, DegreesOf(satellite.direction.elevationRad)));
    case SatelliteListModel::kState:
        return UiText(StateTextId(satellite));
    default:
        break;
    }
    const std::optional<double>& signal = SignalOf(satellite, column);
    return signal ? ToQt(FormatText(text::kSkySignal, *signal)) : UiText(text::kSkyNoValue);
}

/// What the list is sorted by: the system comes before the number, and an unknown signal is the
/// least.
double SortValue(const LiveSatellite& satellite, int column)
{
    constexpr double kMoreThanAnyNumber = 1000.0;
    switch (column) {
    case SatelliteListModel::kName:
        return static_cast<int>(satellite.constellation) * kMoreThanAnyNumber + satellite.number;
    case SatelliteListModel::kAzimuth:
        return satellite.direction.azimuthRad;
    case SatelliteListModel::kElevation:
        return satellite.direction.elevationRad;
    case SatelliteListModel::kState:
        return StateTextId(satellite);
    default:
        return SignalOf(satellite, column).value_or(-1.0);
    }
}

} // namespace

SatelliteListModel::SatelliteListModel(QObject* parent) : QAbstractTableModel(parent) {}

void SatelliteListModel::Show(const std::vector<LiveSatellite>& satellites, bool isStale)
{
    const bool areSame =
        std::equal(satellites.begin(), satellites.end(), m_satellites.begin(), m_satellites.end(),
                   [](const LiveSatellite& a, const LiveSatellite& b) { return a.IsSame(b); });
    if (!areSame) {
        beginResetModel();
    }
    m_satellites = satellites;
    m_isStale = isStale;
    if (!areSame) {
        endResetModel();
    } else if (!m_satellites.empty()) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    }
}

bool SatelliteListModel::HasSignal(int signal) const
{
    return std::any_of(m_satellites.begin(), m_satellites.end(),
                       [signal](const LiveSatellite& satellite) {
                           return SignalOf(satellite, kSignal1 + signal).has_value();
                       });
}

int SatelliteListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_satellites.size());
}

int SatelliteListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kColumns;
}

QVariant SatelliteListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const LiveSatellite& satellite = m_satellites[static_cast<std::size_t>(index.row())];
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return ValueText(satellite, column);
    case Qt::UserRole:
        return SortValue(satellite, column);
    case Qt::TextAlignmentRole:
        return static_cast<int>(column == kState ? Qt::AlignCenter
                                                 : Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ForegroundRole:
        return m_isStale ? QBrush(Theme::Current().stale) : QVariant();
    default:
        return {};
    }
}

QVariant SatelliteListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= kColumns) {
        return {};
    }
    if (role == Qt::DisplayRole) {
        return UiText(text::kSkyColumnName + section);
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

} // namespace fieldcore
