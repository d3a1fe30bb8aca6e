// PriceCommand.h - the `price` command of velora-util: reads prices or money amounts from the
// command line or a file and shows how the library's readers and writers treat them.
#pragma once

namespace velora::tool {

// argv[0] is "price"; returns the process exit status (0 ok, 2 usage, input or I/O error).
int RunPriceCommand(int argc, char** argv);

} // namespace velora::tool
