#include "cli/FilesWork.h"
#include "cli/Options.h"

#include "core/resources/StringTable.h"

#include <memory>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

CLI::Option* AddPatterns(CLI::App& parser, const std::shared_ptr<FilesOptions>& options)
{
    return AddText(parser, "FILE", options->patterns, "", text::kOptFiles);
}

} // namespace

Command AddFilesCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "files", text::kHelpFiles);
    parser.require_subcommand(1);
    const auto options = std::make_shared<FilesOptions>();
    const auto addSub = [&](const char* name, int help) -> CLI::App& {
        CLI::App& sub = AddParser(parser, name, help);
        options->port.AddTo(sub);
        return sub;
    };

    CLI::App& list = addSub("ls", text::kHelpFilesLs);
    AddPatterns(list, options);
    AddFlag(list, "--deleted", options->deleted, text::kOptDeleted);

    CLI::App& get = addSub("get", text::kHelpFilesGet);
    AddPatterns(get, options)->required();
    AddText(get, "--to", options->folder, "DIR", text::kOptTo);
    AddFlag(get, "--by-date", options->byDate, text::kOptByDate);
    AddFlag(get, "--new", options->onlyNew, text::kOptNew);
    AddFlag(get, "--yes", options->yes, text::kOptReplaceFiles);
    AddFlag(get, "--dry-run", options->dryRun, text::kOptFetchDry);

    CLI::App& remove = addSub("rm", text::kHelpFilesRm);
    AddPatterns(remove, options)->required();
    AddFlag(remove, "--deleted", options->deleted, text::kOptDeletedForGood);
    CLI::Option* const yes = AddFlag(remove, "--yes", options->yes, text::kOptYes);
    AddFlag(remove, "--dry-run", options->dryRun, text::kOptDeleteDry)->excludes(yes);

    CLI::App& recover = addSub("recover", text::kHelpFilesRecover);
    AddPatterns(recover, options)->required();
    AddFlag(recover, "--dry-run", options->dryRun, text::kOptRecoverDry);

    return {&parser, [=, &list, &get, &remove](const Context& context) {
                FilesWork work(context, *options);
                return list.parsed()     ? work.List()
                       : get.parsed()    ? work.Run(FileAction::Fetch)
                       : remove.parsed() ? work.Run(FileAction::Delete)
                                         : work.Run(FileAction::Recover);
            }};
}

} // namespace fieldcore::cli
