#pragma once

#include <QDateTime>
#include <QLabel>
#include <QString>
#include <QWidget>

#include <optional>

class QHBoxLayout;

namespace fieldcore {

/// What the controller knows of its receiver at a moment. What is not known is empty.
struct ReceiverState
{
    enum class Link
    {
        None, ///< nobody has asked for a connection
        Connecting,
        Connected,
        Lost, ///< it was there; the controller tries to have it back
    };
    Link link = Link::None;
    QString receiver;      ///< name of the model
    QString antenna;       ///< its height and how it was measured, in one line
    QString simulator;     ///< name of the scenario; empty: a real receiver
    QDateTime receivedUtc; ///< when the values below came, by the controller's clock
    std::optional<int> batteryPercent;
    bool batteryFailed = false; ///< it was asked for and not told
    std::optional<double> pdop;
    std::optional<int> satellites;
};

/// Whether what is known of the receiver is from now.
[[nodiscard]] bool IsFresh(const ReceiverState& state, const QDateTime& nowUtc);
/// Time of day in Japan, "12:34:56".
[[nodiscard]] QString JstText(const QDateTime& utc);

/// The lines at the head of the window: is the receiver there, and is it well, what time it is by
/// the controller's clock, and how high the antenna is. Values that are more than kStaleS seconds
/// old are grey, and the time they came stands in place of the time. Where one line does not hold
/// it all, the time goes below. User-interface thread only.
class StatusStrip : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kStaleS = 10;

    explicit StatusStrip(QWidget* parent = nullptr);

    /// @param nowUtc  by the controller's clock
    void Show(const ReceiverState& state, const QDateTime& nowUtc);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Colour();
    void Arrange();

    ReceiverState m_state;
    QDateTime m_now;
    QHBoxLayout* m_line;
    QHBoxLayout* m_below; // of the time, where the line has no room for it
    QLabel* m_lamp;       // owned by the widget, as are all labels
    QLabel* m_receiver;
    QLabel* m_values;
    QLabel* m_time;
    QLabel* m_antenna;
    QLabel* m_ribbon;
};

} // namespace fieldcore
