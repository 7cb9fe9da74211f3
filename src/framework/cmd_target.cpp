#include <dlgfw/cmd_target.h>

CCmdTarget::~CCmdTarget() = default;

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return GetThisMessageMap();
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, nullptr, nullptr}};
    static const AFX_MSGMAP messageMap = {nullptr, entries};
    return &messageMap;
}

BOOL CCmdTarget::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) {
    // WM_NOTIFY and reflected notifications say in the high word what they are.
    const auto nPacked = static_cast<UINT>(nCode);
    const UINT nMessage = HIWORD(nPacked) != 0 ? HIWORD(nPacked) : WM_COMMAND;

    for (const AFX_MSGMAP* pMap = GetMessageMap(); pMap != nullptr;
         pMap = pMap->pfnGetBaseMap == nullptr ? nullptr : pMap->pfnGetBaseMap()) {
        for (const AFX_MSGMAP_ENTRY* p = pMap->lpEntries; p->pfnThunk != nullptr; ++p) {
            if (p->nMessage != nMessage || p->nCode != LOWORD(nPacked) || nID < p->nID ||
                nID > p->nLastID)
                continue;
            if (pHandlerInfo != nullptr) {
                *pHandlerInfo = {this, p->pfnThunk};
                return TRUE;
            }
            const auto* pNotify = static_cast<const AFX_NOTIFY*>(pExtra);
            LRESULT lIgnored = 0;
            const AFX_MSGCALL call = {
                nMessage, nID, pNotify == nullptr ? 0 : reinterpret_cast<LPARAM>(pNotify->pNMHDR)};
            return p->pfnThunk(this, call, pNotify == nullptr ? lIgnored : *pNotify->pResult);
        }
    }
    return FALSE;
}
