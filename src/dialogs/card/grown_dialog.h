// Dialogs that keep no room for their rules, and grow when they have them.
#pragma once

#include <dlgfw/wnd.h>

#include "mvpingui/rule_panel.h"

namespace mvp {

// The layout for the dialog's resolution: the first line keeps clear of the caption, whose height
// follows it. At 96 dpi the numbers are what they are.
RulePanel::Layout ClearOfCaption(const CWnd& dialog, RulePanel::Layout layout);

// Makes the dialog taller by `nPanelHeight` pixels and moves OK and Cancel down by as much. One
// that is not shown yet stands in the middle at the height that it had, and is put there anew.
void GrowForPanel(CWnd& dialog, int nPanelHeight);

}  // namespace mvp
