#include <dlgfw/cmd_target.h>

CCmdTarget::~CCmdTarget() = default;

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return GetThisMessageMap();
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, nullptr, nullptr}};
    static const AFX_MSGMAP messageMap = {nullptr, entries};
    return &messageMap;
}

BOOL CCmdTarget::OnCmdMsg(UINT nID, int nCode) {
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap == nullptr ? nullptr : map->pfnGetBaseMap()) {
        for (const AFX_MSGMAP_ENTRY* p = map->lpEntries; p->pfnThunk != nullptr; ++p) {
            if (p->nMessage != WM_COMMAND || p->nCode != static_cast<UINT>(nCode) ||
                p->nID != nID) {
                continue;
            }
            LRESULT ignored = 0;
            return p->pfnThunk(this, {WM_COMMAND, nID, 0}, ignored);
        }
    }
    return FALSE;
}
