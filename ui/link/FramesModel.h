#pragma once

#include "core/link/FrameHistory.h"

#include <QAbstractTableModel>

#include <cstdint>
#include <deque>
#include <vector>

namespace fieldcore {

/// What a history holds as rows of a table, oldest first. User-interface thread only.
class FramesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column : int
    {
        Time,
        Way,
        Content,
        Bytes,
        ColumnCount
    };
    enum class Show : int
    {
        All = 0,
        Sent = 1,
        Received = 2,
        Faults = 3 ///< damaged, refused, or not a frame
    };

    /// @param history  not owned, must outlive the model
    explicit FramesModel(FrameHistory& history, QObject* parent = nullptr);

    /// Takes what is new in the history, and drops the oldest beyond FrameHistory::kCapacity.
    /// @return whether there was anything
    bool Pull();
    /// Empties the history, too.
    void Clear();
    /// @param search  what a row has in its content or bytes, in any case; empty: anything
    void SetFilter(Show show, const QString& search);

    /// The frames of all rows.
    [[nodiscard]] std::vector<ExchangedFrame> Frames() const;
    /// How many frames there are behind the filter, too.
    [[nodiscard]] std::size_t Total() const { return m_all.size(); }
    /// All that is known about a row: its fields, and its bytes.
    [[nodiscard]] QString Detail(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    struct Entry
    {
        ExchangedFrame frame;
        QString content;
        QString bytes;
        bool isFault = false;
    };

    [[nodiscard]] static Entry MakeEntry(ExchangedFrame frame);
    [[nodiscard]] bool Passes(const Entry& entry) const;

    FrameHistory& m_history;
    std::uint64_t m_last = 0; // number of the last frame taken
    std::deque<Entry> m_all;
    std::deque<std::uint64_t> m_rows; // numbers of those that pass the filter
    Show m_show = Show::All;
    QString m_search;

    [[nodiscard]] const Entry& At(int row) const;
};

} // namespace fieldcore
