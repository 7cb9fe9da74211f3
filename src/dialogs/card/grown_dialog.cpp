#include "dialogs/card/grown_dialog.h"

#include "dialogs/base/control_place.h"
#include "platform/handle.h"

namespace mvp {

RulePanel::Layout ClearOfCaption(const CWnd& dialog, RulePanel::Layout layout) {
    constexpr int kDesignResolution = 96;
    const WindowDc dc(dialog.m_hWnd);
    layout.nTopMargin =
        MulDiv(layout.nTopMargin, GetDeviceCaps(dc.get(), LOGPIXELSY), kDesignResolution);
    return layout;
}

void GrowForPanel(CWnd& dialog, int nPanelHeight) {
    FitWindow(dialog, WindowFit::ToWholePanel(nPanelHeight), {IDOK, IDCANCEL});
    if (!dialog.IsWindowVisible()) {
        dialog.CenterWindow();
    }
}

}  // namespace mvp
