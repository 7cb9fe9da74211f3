#include "dialogs/card/grown_dialog.h"

#include "dialogs/base/control_place.h"

namespace mvp {

void GrowForPanel(CWnd& dialog, int nPanelHeight) {
    FitWindow(dialog, WindowFit::ToWholePanel(nPanelHeight), {IDOK, IDCANCEL});
    if (!dialog.IsWindowVisible()) {
        dialog.CenterWindow();
    }
}

}  // namespace mvp
