#include "cli/FileCatalogue.h"

#include "cli/Utf8.h"
#include "cli/Wildcard.h"

#include "core/equipment/FileTexts.h"
#include "core/link/Command.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <set>

namespace fieldcore::cli {

std::string ListedFile::Name() const
{
    return ToUtf8(record.Name());
}

FileCatalogue::FileCatalogue(PortSession& session)
    : m_session(session), m_receiver(session.Command())
{
    m_receiver.SetRows(&m_rows);
}

std::optional<Failure> FileCatalogue::CheckReceiver(bool deleted)
{
    const std::uint32_t typeBefore = m_receiver.GetRecvTypeNum();
    if (typeBefore == 0 && m_receiver.OpenConnected() == 0) {
        return Failure{ExitCode::Refused, "type-refused",
                       "Receivers of this type have no files that this program could list."};
    }
    if (deleted && !m_receiver.HasRecyclePage()) {
        return Failure{ExitCode::Refused, "no-recycle-bin",
                       "The firmware of this receiver deletes for good; it has no recycle bin."};
    }
    return std::nullopt;
}

std::optional<Failure> FileCatalogue::List(bool deleted)
{
    if (std::optional<Failure> failure = CheckReceiver(deleted)) {
        return failure;
    }
    m_files.clear();
    m_receiver.SetMode(deleted ? ReceiverFiles::Recycled : ReceiverFiles::Live);
    if (m_receiver.GetFileData(*this) == 0) {
        return m_session.RequestFailed();
    }
    return std::nullopt;
}

void FileCatalogue::Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam)
{
    static_cast<void>(message);
    const int before = m_rows.Count();
    m_receiver.OnRecvFileList(wParam, lParam);
    if (m_rows.Count() > before) {
        const auto index = static_cast<std::size_t>(lParam);
        m_files.push_back({m_receiver.GetTable().at(index),
                           m_receiver.GetFileAttr(static_cast<int>(lParam), 1) != 0});
    }
}

std::optional<Failure> FileCatalogue::Choose(const std::vector<std::string>& patterns,
                                             std::vector<std::size_t>& chosen)
{
    std::set<std::size_t> places;
    for (const std::string& pattern : patterns) {
        const std::wstring wanted = FromUtf8(pattern);
        bool fitsAny = false;
        for (std::size_t at = 0; at < m_files.size(); ++at) {
            const std::wstring_view name = m_files[at].record.Name();
            if (!MatchesWildcard(wanted, name) && !MatchesWildcard(wanted, FileRowName(name))) {
                continue;
            }
            fitsAny = true;
            const auto isSame = [&](std::size_t other) {
                return m_files[other].record.Name() == name;
            };
            if (std::none_of(places.begin(), places.end(), isSame)) {
                places.insert(at);
                m_files[at].byPattern = true;
            }
            if (!HasWildcard(wanted)) {
                m_files[at].byPattern = false;
            }
        }
        if (!fitsAny) {
            return Failure{ExitCode::Failed, "no-such-file",
                           "The receiver has no file that \"" + pattern + "\" fits.",
                           "fieldcore-cli files ls"};
        }
    }
    chosen.assign(places.begin(), places.end());
    return std::nullopt;
}

Value FileCatalogue::TimeOf(const DirectoryListingData& record)
{
    using namespace std::chrono;
    constexpr sys_days kGpsEpoch = 1980y / January / 6;
    const sys_seconds time = kGpsEpoch + seconds(record.time);
    const year_month_day date(floor<days>(time));
    const hh_mm_ss clock(time - floor<days>(time));
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    std::string words = std::string(text).substr(0, 16);
    words[10] = ' ';
    return Value::Word(text, words);
}

} // namespace fieldcore::cli
