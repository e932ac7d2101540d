#pragma once

/// The host's own, of the same name as one of the library's.
struct Command
{
    int exitCode = 0;
};
