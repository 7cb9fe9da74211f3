// The document that tells what to do about an expiry.
#pragma once

namespace mvp {

// Opens the document that the configuration names. False when it names none or the shell cannot
// open it; the log says why. On the thread of the dialog that asks.
bool OpenValidityHelp();

}  // namespace mvp
