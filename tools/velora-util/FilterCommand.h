// FilterCommand.h - the `filter` command of velora-util: builds a token expression from a short
// command-line description and prints the lines of a file or of stdin that it accepts.
#pragma once

namespace velora::tool {

// argv[0] is "filter"; returns the process exit status (0 some line accepted, 1 none, 2 usage or
// I/O error).
int RunFilterCommand(int argc, char** argv);

} // namespace velora::tool
