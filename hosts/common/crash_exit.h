// A crash is told on stderr and by the exit code. Left to itself, a process that crashed may end
// with the code 0 once a debugger has looked at it, and whoever started it takes that for success.
#pragma once

namespace mvp {

// From now on a crash in any thread ends the process with `nExitCode`, and with `pszLastWords` on
// stdout unless that is null; the text is not copied. Called first in main, and again to change
// them.
void EndWithCodeOnCrash(unsigned nExitCode, const char* pszLastWords = nullptr);

}  // namespace mvp
