// A crash is told on stderr and by the exit code. Left to itself, a process that crashed may end
// with the code 0 once a debugger has looked at it, and whoever started it takes that for success.
#pragma once

namespace mvp {

// From now on a crash in any thread ends the process with `nExitCode`. Called first in main.
void EndWithCodeOnCrash(unsigned nExitCode);

}  // namespace mvp
