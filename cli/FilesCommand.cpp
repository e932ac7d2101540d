#include "cli/FilesWork.h"

#include <memory>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

CLI::Option* AddPatterns(CLI::App& parser, const std::shared_ptr<FilesOptions>& options)
{
    return parser
        .add_option("FILE", options->patterns,
                    "Names with or without extension; * and ? stand for any characters (quote "
                    "them)")
        ->type_name("");
}

} // namespace

Command AddFilesCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(
        program, "files", "The receiver's files: list, fetch, delete, recover",
        "  fieldcore-cli files ls --port /dev/ttyUSB0         what there is\n"
        "  fieldcore-cli files get '*' --new --by-date --to surveys --port /dev/ttyUSB0\n"
        "                                                     what is not there yet\n"
        "  fieldcore-cli files rm 'A03*' --dry-run --port COM1  which would it be\n"
        "  fieldcore-cli files recover A0310A00 --port COM1   back from the recycle bin\n");
    parser.require_subcommand(1);
    const auto options = std::make_shared<FilesOptions>();
    const auto addSub = [&](const char* name, const char* purpose,
                            const std::string& examples) -> CLI::App& {
        CLI::App& sub = AddParser(parser, name, purpose, examples);
        options->port.AddTo(sub);
        return sub;
    };

    CLI::App& list = addSub("ls", "List the files",
                            "  fieldcore-cli files ls --port sim:\n"
                            "  fieldcore-cli files ls 'A0317*' --port sim:\n"
                            "  fieldcore-cli files ls --deleted --port sim:pica\n");
    AddPatterns(list, options);
    list.add_flag("--deleted", options->deleted, "Those in the recycle bin");

    CLI::App& get = addSub("get", "Fetch files",
                           "  fieldcore-cli files get A0314A00 --port sim:\n"
                           "  fieldcore-cli files get '*' --to surveys --by-date --port sim:\n"
                           "  fieldcore-cli files get '*' --to surveys --new --port sim:\n");
    AddPatterns(get, options)->required();
    get.add_option("--to", options->folder, "Where to; it is made if it is not there (here)")
        ->type_name("DIR");
    get.add_flag("--by-date", options->byDate, "Into a folder for each day, such as 2026-03-14");
    get.add_flag("--new", options->onlyNew, "Not those that are there already, in the same size");
    get.add_flag("--yes", options->yes, "Replace files without asking");
    get.add_flag("--dry-run", options->dryRun, "Fetch nothing, show what would be");

    CLI::App& remove = addSub("rm", "Delete files, into the recycle bin if there is one",
                              "  fieldcore-cli files rm A0314A00 --port sim: --dry-run\n"
                              "  fieldcore-cli files rm 'A0314*' --port sim: --yes\n"
                              "  fieldcore-cli files rm '*' --deleted --port COM1\n");
    AddPatterns(remove, options)->required();
    remove.add_flag("--deleted", options->deleted, "Those in the recycle bin, for good");
    CLI::Option* const yes = remove.add_flag("--yes", options->yes, "Do not ask");
    remove.add_flag("--dry-run", options->dryRun, "Delete nothing, show what would be")
        ->excludes(yes);

    CLI::App& recover = addSub("recover", "Bring files back from the recycle bin",
                               "  fieldcore-cli files recover A0310A00 --port sim:pica\n");
    AddPatterns(recover, options)->required();
    recover.add_flag("--dry-run", options->dryRun, "Recover nothing, show what would be");

    return {&parser, [=, &list, &get, &remove](const Context& context) {
                FilesWork work(context, *options);
                return list.parsed()     ? work.List()
                       : get.parsed()    ? work.Run(FileAction::Fetch)
                       : remove.parsed() ? work.Run(FileAction::Delete)
                                         : work.Run(FileAction::Recover);
            }};
}

} // namespace fieldcore::cli
