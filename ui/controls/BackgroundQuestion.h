#pragma once

#include "core/link/Questions.h"

#include <QObject>

#include <utility>

namespace fieldcore {

/// Asks the receiver something again and again in the background, as long as it lives, and tells
/// each answer on the user-interface thread, which never waits for it.
class BackgroundQuestion : public QObject
{
public:
    /// @param command  must outlive the object
    /// @param ask   on the thread of the questions: takes the CCommand& of that thread, answers a
    ///              pair: whether the receiver answered, and a value
    /// @param told  on the user-interface thread: takes the value
    template <typename Ask, typename Told>
    BackgroundQuestion(CCommand& command, Rhythm rhythm, Ask ask, Told told)
        : m_questions(command.Background())
    {
        m_id = m_questions.Add(rhythm, [this, ask, told](CCommand& asking) mutable {
            auto answer = ask(asking);
            QMetaObject::invokeMethod(
                this, [told, value = std::move(answer.second)] { told(value); },
                Qt::QueuedConnection);
            return answer.first;
        });
    }
    ~BackgroundQuestion() override { Stop(); }

    /// Asks no more: once it is back, nothing runs on the thread of the questions.
    void Stop() { m_questions.Remove(m_id); }

    /// Asks as soon as it can be.
    void Hurry() { m_questions.Hurry(m_id); }

private:
    Questions& m_questions;
    Questions::Id m_id;
};

} // namespace fieldcore
