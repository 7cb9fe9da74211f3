// Dialogs that keep no room for their rules, and grow when they have them.
#pragma once

#include <dlgfw/wnd.h>

namespace mvp {

// Makes the dialog taller by `nPanelHeight` pixels and moves OK and Cancel down by as much. One
// that is not shown yet stands in the middle at the height that it had, and is put there anew.
void GrowForPanel(CWnd& dialog, int nPanelHeight);

}  // namespace mvp
