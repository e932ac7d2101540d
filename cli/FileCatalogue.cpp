#include "cli/FileCatalogue.h"

#include "cli/Wording.h"

#include "core/equipment/FileTexts.h"
#include "core/link/Command.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

namespace fieldcore::cli {

bool MatchesWildcard(std::wstring_view pattern, std::wstring_view text)
{
    std::vector<bool> fits(text.size() + 1); // the first characters of the text, by their number
    fits[0] = true;
    for (const wchar_t wanted : pattern) {
        if (wanted == L'*') {
            std::fill(std::find(fits.begin(), fits.end(), true), fits.end(), true);
            continue;
        }
        for (std::size_t t = text.size(); t > 0; --t) {
            fits[t] = fits[t - 1] && (wanted == L'?' || wanted == text[t - 1]);
        }
        fits[0] = false;
    }
    return fits.back();
}

bool HasWildcard(std::wstring_view pattern)
{
    return pattern.find_first_of(L"*?") != std::wstring_view::npos;
}

bool FitsFile(const std::string& pattern, const DirectoryListingData& record)
{
    const std::wstring wanted = FromUtf8(pattern);
    return MatchesWildcard(wanted, record.Name()) ||
           MatchesWildcard(wanted, FileRowName(record.Name()));
}

FileCatalogue::FileCatalogue(PortSession& session)
    : m_session(session), m_receiver(session.Command())
{
    m_receiver.SetRows(&m_rows);
}

std::optional<Failure> FileCatalogue::List(bool deleted)
{
    if (m_receiver.GetRecvTypeNum() == 0 && m_receiver.OpenConnected() == 0) {
        return Failure{ExitCode::Refused, "type-refused", text::kSayTypeFiles};
    }
    if (deleted && !m_receiver.HasRecyclePage()) {
        return Failure{ExitCode::Refused, "no-recycle-bin", text::kSayNoRecycleBin};
    }
    m_receiver.SetMode(deleted ? ReceiverFiles::Recycled : ReceiverFiles::Live);
    m_incomplete.reset();
    if (m_receiver.GetFileData(*this) == 1) {
        return std::nullopt;
    }
    Failure failure = m_session.RequestFailed();
    if (m_rows.Count() == 0 || m_receiver.ListFault() == CommandFault::Cancelled) {
        return failure;
    }
    failure.message = Worded(text::kSayListNotWhole, {failure.message});
    m_incomplete = std::move(failure);
    return std::nullopt;
}

void FileCatalogue::Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam)
{
    static_cast<void>(message);
    m_receiver.OnRecvFileList(wParam, lParam);
}

std::optional<Failure> FileCatalogue::Choose(const std::vector<std::string>& patterns,
                                             FilePlan& plan) const
{
    std::vector<bool> hasFit(patterns.size());
    std::set<std::wstring_view> names;
    for (int row = 0; row < m_rows.Count(); ++row) {
        const std::size_t index = m_rows.At(row).record;
        const DirectoryListingData& record = m_receiver.GetTable().at(index);
        bool fits = patterns.empty();
        for (std::size_t i = 0; i < patterns.size(); ++i) {
            if (FitsFile(patterns[i], record)) {
                hasFit[i] = fits = true;
            }
        }
        if (fits && names.insert(record.Name()).second) {
            m_receiver.AddTo(plan, index);
        }
    }
    const auto unfit = std::find(hasFit.begin(), hasFit.end(), false);
    if (unfit == hasFit.end()) {
        return std::nullopt;
    }
    const std::string& pattern = patterns[static_cast<std::size_t>(unfit - hasFit.begin())];
    return Failure{ExitCode::Failed, "no-such-file", Worded(text::kSayNoSuchFile, {pattern}),
                   "fieldcore-cli files ls"};
}

} // namespace fieldcore::cli
