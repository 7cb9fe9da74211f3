// Data exchange for controls that a dialog can do without.
#pragma once

#include <dlgfw/data_exchange.h>
#include <dlgfw/wnd.h>

namespace mvp {

// Binds `control` as DDX_Control does, unless the template lacks it: it then stays without a
// window, which the functions of CWnd take.
inline void BindIfThere(CDataExchange* pDX, int nId, CWnd& control) {
    if (::GetDlgItem(pDX->m_pDlgWnd->m_hWnd, nId) != nullptr) {
        DDX_Control(pDX, nId, control);
    }
}

}  // namespace mvp
