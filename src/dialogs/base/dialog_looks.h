// What the library's dialogs have in common in their looks.
#pragma once

#include <dlgfw/wnd.h>

#include "platform/handle.h"

namespace mvp {

// Gives the dialog icon `nIcon` of the resource module as its small window icon, 16 pixels wide
// at 96 dpi. Without the icon, which the log tells, the dialog keeps what it has.
void SetSmallIcon(CWnd& dialog, UINT nIcon);

// Shows the control unmirrored in a mirrored dialog: a picture or a code, which is the same in
// every language. Null is ignored.
void KeepFromMirroring(CWnd* pControl);

// Shows icon `nIcon` of the resource module in static `nControl`, 32 pixels wide at 96 dpi. Without
// either nothing changes.
void ShowIcon(CWnd& dialog, int nControl, UINT nIcon);

// Shows control `nHeading` in its own font's bold. The caller keeps the font for as long as the
// control is there. Null when there is no such control or it has no font of its own.
Font MakeHeadingBold(CWnd& dialog, int nHeading);

// Brings the dialog to the foreground and keeps it on top of all that is not.
void BringToFront(CWnd& dialog);

}  // namespace mvp
