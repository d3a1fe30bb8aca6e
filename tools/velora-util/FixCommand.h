// FixCommand.h - the `fix` commands of velora-util: `fix scan` inspects a FIX byte stream (a session
// log or a capture), `fix build` builds one message from the command line.
#pragma once

namespace velora::tool {

// argv[0] is "fix"; returns the process exit status (0 all good, 1 bad messages, 2 usage or I/O).
int RunFixCommand(int argc, char** argv);

} // namespace velora::tool
