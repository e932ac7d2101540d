#include "cli/FilesWork.h"

namespace fieldcore::cli {

ExitCode FilesWork::Run()
{
    std::optional<Failure> failure = m_session.Connect();
    if (!failure) {
        m_catalogue.emplace(m_session);
        failure = Plan();
    }
    if (failure) {
        return m_context.output.Failed(*failure);
    }
    if (!m_options.dryRun) {
        failure = Agree();
        if (!failure) {
            failure = Work();
        }
    }
    if (!failure) {
        return m_context.output.Done(Result());
    }
    LeaveRest();
    const Report partial = Result();
    return m_context.output.Failed(*failure, &partial);
}

} // namespace fieldcore::cli
