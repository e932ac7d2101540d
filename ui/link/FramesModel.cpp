#include "ui/link/FramesModel.h"

#include "core/link/FrameDescriber.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

QString HexOf(const std::vector<std::uint8_t>& bytes)
{
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                          static_cast<qsizetype>(bytes.size()))
                                   .toHex(' '))
        .toUpper();
}

/// What a frame is called, in the language of the screens.
QString TitleOf(const DescribedBytes& described)
{
    const bool isEnglish = CurrentLanguage() == Language::English;
    return described.title.empty()
               ? UiText(text::kFramesUnknown)
               : QString::fromStdString(isEnglish ? described.name : described.title);
}

QString WordsOf(const DescribedBytes& described)
{
    switch (described.kind) {
    case DescribedBytes::Kind::Ack:
        return UiText(text::kFramesAck);
    case DescribedBytes::Kind::Nak:
        return UiText(text::kFramesNak);
    case DescribedBytes::Kind::Break:
        return QStringLiteral("BREAK");
    case DescribedBytes::Kind::Line:
        return UiText(text::kFramesLine)
            .arg(QString::fromStdString(described.fields.front().value.Words()));
    case DescribedBytes::Kind::Stray:
        return QString::fromStdString(described.fields.front().value.Words());
    case DescribedBytes::Kind::Frame:
    case DescribedBytes::Kind::Piece:
        break;
    }
    QString words;
    if (described.type) {
        words = QStringLiteral("%1 ").arg(*described.type, 2, 16, QLatin1Char('0')).toUpper() +
                TitleOf(described);
    }
    for (const DescribedField& field : described.fields) {
        if (words.size() > 120) { // a line, not a book: the rest stands in the detail
            break;
        }
        words += (words.isEmpty() ? QString() : QStringLiteral("  ")) +
                 QString::fromStdString(field.name) + QLatin1Char('=') +
                 QString::fromStdString(field.value.Words());
    }
    if (!described.checksumGood) {
        words.prepend(UiText(text::kFramesBadChecksum) + QLatin1Char(' '));
    }
    return words + (described.fault.empty()
                        ? QString()
                        : QStringLiteral("  ") + QString::fromStdString(described.fault));
}

QString TimeOf(const ExchangedFrame& frame)
{
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(frame.time.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count()).toString(QStringLiteral("HH:mm:ss.zzz"));
}

} // namespace

FramesModel::FramesModel(FrameHistory& history, QObject* parent)
    : QAbstractTableModel(parent), m_history(history)
{}

FramesModel::Entry FramesModel::MakeEntry(ExchangedFrame frame)
{
    Entry entry;
    entry.isFault = frame.unit == LineUnit::Noise;
    for (const DescribedBytes& described : DescribeBytes(frame.direction, frame.bytes)) {
        entry.content +=
            (entry.content.isEmpty() ? QString() : QStringLiteral(" / ")) + WordsOf(described);
        const bool isText = frame.unit == LineUnit::Line; // whatever it looks like
        entry.isFault = entry.isFault || described.kind == DescribedBytes::Kind::Nak ||
                        (!isText && described.IsFault());
    }
    if (frame.unit == LineUnit::Noise) {
        entry.content.prepend(UiText(text::kFramesNoise) + QStringLiteral("  "));
    }
    entry.bytes = HexOf(frame.bytes);
    entry.frame = std::move(frame);
    return entry;
}

bool FramesModel::Passes(const Entry& entry) const
{
    const bool sent = entry.frame.direction == Direction::Sent;
    if ((m_show == Show::Sent && !sent) || (m_show == Show::Received && sent) ||
        (m_show == Show::Faults && !entry.isFault)) {
        return false;
    }
    return m_search.isEmpty() || entry.content.contains(m_search, Qt::CaseInsensitive) ||
           entry.bytes.contains(m_search, Qt::CaseInsensitive);
}

bool FramesModel::Pull()
{
    std::vector<ExchangedFrame> fresh = m_history.After(m_last);
    if (fresh.empty()) {
        return false;
    }
    std::vector<std::uint64_t> rows;
    m_last = fresh.back().number;
    for (ExchangedFrame& frame : fresh) {
        m_all.push_back(MakeEntry(std::move(frame)));
        if (Passes(m_all.back())) {
            rows.push_back(m_all.back().frame.number);
        }
    }
    if (!rows.empty()) {
        const int first = static_cast<int>(m_rows.size());
        beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
        m_rows.insert(m_rows.end(), rows.begin(), rows.end());
        endInsertRows();
    }
    if (m_all.size() > FrameHistory::kCapacity) {
        const std::uint64_t oldest = m_all[m_all.size() - FrameHistory::kCapacity].frame.number;
        const auto kept = std::lower_bound(m_rows.begin(), m_rows.end(), oldest);
        if (kept != m_rows.begin()) {
            beginRemoveRows({}, 0, static_cast<int>(kept - m_rows.begin()) - 1);
            m_rows.erase(m_rows.begin(), kept);
            endRemoveRows();
        }
        m_all.erase(m_all.begin(),
                    m_all.end() - static_cast<std::ptrdiff_t>(FrameHistory::kCapacity));
    }
    return true;
}

void FramesModel::Clear()
{
    beginResetModel();
    m_history.Clear();
    m_all.clear();
    m_rows.clear();
    endResetModel();
}

void FramesModel::SetFilter(Show show, const QString& search)
{
    beginResetModel();
    m_show = show;
    m_search = search.trimmed();
    m_rows.clear();
    for (const Entry& entry : m_all) {
        if (Passes(entry)) {
            m_rows.push_back(entry.frame.number);
        }
    }
    endResetModel();
}

const FramesModel::Entry& FramesModel::At(int row) const
{
    const std::uint64_t number = m_rows[static_cast<std::size_t>(row)];
    return *std::lower_bound(
        m_all.begin(), m_all.end(), number,
        [](const Entry& entry, std::uint64_t wanted) { return entry.frame.number < wanted; });
}

std::vector<ExchangedFrame> FramesModel::Frames() const
{
    std::vector<ExchangedFrame> frames;
    frames.reserve(m_rows.size());
    for (int row = 0; row < rowCount(); ++row) {
        frames.push_back(At(row).frame);
    }
    return frames;
}

QString FramesModel::Detail(int row) const
{
    if (row < 0 || row >= rowCount()) {
        return {};
    }
    const ExchangedFrame& frame = At(row).frame;
    QString detail = HexOf(frame.bytes);
    if (frame.unit == LineUnit::Noise) {
        detail += QStringLiteral("\n") + UiText(text::kFramesNoise);
    }
    for (const DescribedBytes& described : DescribeBytes(frame.direction, frame.bytes)) {
        if (described.type) {
            detail += QStringLiteral("\n") + TitleOf(described);
        }
        if (!described.checksumGood) {
            detail += QStringLiteral("\n%1: %2 ≠ %3")
                          .arg(UiText(text::kFramesBadChecksum))
                          .arg(described.checksum, 2, 16, QLatin1Char('0'))
                          .arg(described.expectedChecksum, 2, 16, QLatin1Char('0'));
        }
        for (const DescribedField& field : described.fields) {
            const QString meaning = QString::fromStdString(field.meaning);
            detail += QStringLiteral("\n  %1: %2")
                          .arg(QString::fromStdString(field.name),
                               QString::fromStdString(field.value.Words()));
            detail +=
                meaning.isEmpty() ? QString() : QStringLiteral(" (") + meaning + QLatin1Char(')');
        }
    }
    return detail;
}

int FramesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int FramesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FramesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Entry& entry = At(index.row());
    if (role == Qt::ForegroundRole && entry.isFault) {
        return Theme::Current().bad;
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (index.column()) {
    case Time:
        return TimeOf(entry.frame);
    case Way:
        return entry.frame.direction == Direction::Sent ? QStringLiteral("→ Tx")
                                                        : QStringLiteral("← Rx");
    case Content:
        return entry.isFault ? QStringLiteral("! ") + entry.content : entry.content;
    case Bytes:
        return entry.bytes;
    default:
        return {};
    }
}

QVariant FramesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= ColumnCount) {
        return {};
    }
    return UiText(text::kFramesTime + section);
}

} // namespace fieldcore
