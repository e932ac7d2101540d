// The controller as a shell starts and ends it.

#include "tests/core/platform/TemporaryFolder.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace fieldcore {
namespace {

/// @return the exit code of a shell for which fieldcore is the program, and $HERE a folder that is
/// its home and its place for temporary files
int Shell(const TemporaryFolder& folder, const std::string& script)
{
    const std::string here = folder.Path().string();
    folder.Write("script", "fieldcore() { exec " FIELDCORE_APP " \"$@\"; }\n" + script + "\n");
    const std::string command =
        "env -u DISPLAY -u WAYLAND_DISPLAY HERE=" + here + " TMPDIR=" + here +
        " FIELDCORE_HOME=" + here + "/home XDG_CONFIG_HOME=" + here +
        "/config XDG_RUNTIME_DIR=" + here + " sh " + here + "/script >" + here + "/said 2>&1";
    const int status = std::system(command.c_str()); // NOLINT: a shell is what users have
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Program, EndsAsItShould)
{
    struct Row
    {
        std::string_view fault;
        std::string script;
        int code;
    };
    const Row rows[] = {
        {"aborts without a display", "unset QT_QPA_PLATFORM; fieldcore", 2},
        {"aborts at a display that is not there", "unset QT_QPA_PLATFORM; DISPLAY=:7777 fieldcore",
         2},
        {"no help without a display", "unset QT_QPA_PLATFORM; fieldcore --help", 0},
        {"draws without the port", "fieldcore --port sim:nosuch --screenshots $HERE/pictures", 3},
        {"pictures change the settings",
         "(fieldcore --port sim:nosuch --screenshots $HERE/pictures); "
         "test ! -e $HERE/home -a ! -e $HERE/config",
         0},
        {"asks who has chosen English for a Japanese font", // and waits for an answer
         "printf '<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir></fontconfig>' "
         ">$HERE/fonts; export FONTCONFIG_FILE=$HERE/fonts; "
         "timeout 120 " FIELDCORE_APP " --language en --port COM1 --first-page",
         0},
        {"a signal leaves something behind",
         "fieldcore --port sim:lark & while ! ls $HERE/fieldcore-* >$HERE/ls; do sleep 0.1; done; "
         "kill -TERM $!; wait $!; test $? = 143 && ! ls $HERE/fieldcore-*",
         0},
    };
    for (const Row& row : rows) {
        const TemporaryFolder folder;
        EXPECT_EQ(Shell(folder, row.script), row.code) << row.fault;
    }
}

} // namespace
} // namespace fieldcore
