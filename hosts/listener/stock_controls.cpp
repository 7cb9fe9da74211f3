#include "listener/stock_controls.h"

#include <oleacc.h>

#include "common/thread_windows.h"

namespace listener {

namespace {

// A message to a window of a process that may hang; 0 then.
LRESULT Ask(HWND hWnd, UINT message) {
    constexpr UINT kPatienceMs = 5000;
    DWORD_PTR answer = 0;
    SendMessageTimeoutA(hWnd, message, 0, 0, SMTO_ABORTIFHUNG, kPatienceMs, &answer);
    return static_cast<LRESULT>(answer);
}

StockFacts OfStatic(LONG_PTR style) {
    switch (style & SS_TYPEMASK) {
        case SS_ICON:
        case SS_BITMAP:
        case SS_ENHMETAFILE:
        case SS_OWNERDRAW:
            return {ROLE_SYSTEM_GRAPHIC, STATE_SYSTEM_READONLY, "", false};
        case SS_ETCHEDHORZ:
        case SS_ETCHEDVERT:
            return {ROLE_SYSTEM_SEPARATOR, STATE_SYSTEM_READONLY, "", false};
        default:
            return {ROLE_SYSTEM_STATICTEXT, STATE_SYSTEM_READONLY, "", false};
    }
}

StockFacts OfButton(HWND hButton, LONG_PTR style) {
    const long check = Ask(hButton, BM_GETCHECK) == BST_CHECKED ? STATE_SYSTEM_CHECKED : 0;
    switch (style & BS_TYPEMASK) {
        case BS_GROUPBOX:
            return {ROLE_SYSTEM_GROUPING, 0, "", false};
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
            return {ROLE_SYSTEM_CHECKBUTTON, STATE_SYSTEM_FOCUSABLE | check,
                    check != 0 ? "Uncheck" : "Check", false};
        case BS_RADIOBUTTON:
        case BS_AUTORADIOBUTTON:
            return {ROLE_SYSTEM_RADIOBUTTON, STATE_SYSTEM_FOCUSABLE | check, "Check", false};
        case BS_DEFPUSHBUTTON:
            return {ROLE_SYSTEM_PUSHBUTTON, STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_DEFAULT, "Press",
                    false};
        default:
            return {ROLE_SYSTEM_PUSHBUTTON, STATE_SYSTEM_FOCUSABLE, "Press", false};
    }
}

StockFacts ByClass(HWND hControl, long nToldState) {
    const LONG_PTR style = GetWindowLongPtrA(hControl, GWL_STYLE);
    const std::string name = mvp::ClassOf(hControl);
    if (name == "Static") {
        return OfStatic(style);
    }
    if (name == "Button") {
        return OfButton(hControl, style);
    }
    if (name == "#32770") {
        return {ROLE_SYSTEM_DIALOG, 0, "", false};
    }
    if (name == "SysListView32") {
        return {ROLE_SYSTEM_LIST, STATE_SYSTEM_FOCUSABLE, "", true};
    }
    if (name == "SysHeader32") {
        return {ROLE_SYSTEM_LIST, 0, "", false};
    }
    if (name == "msctls_updown32") {
        return {ROLE_SYSTEM_SPINBUTTON, 0, "", true};
    }
    return {ROLE_SYSTEM_CLIENT, nToldState, "", false};
}

}  // namespace

StockFacts StockFactsOf(HWND hControl, long nToldState) {
    StockFacts facts = ByClass(hControl, nToldState);
    facts.nState |= nToldState & (STATE_SYSTEM_FOCUSED | STATE_SYSTEM_INVISIBLE);
    if (!IsWindowEnabled(hControl)) {
        facts.nState |= STATE_SYSTEM_UNAVAILABLE;
        facts.nState &= ~STATE_SYSTEM_FOCUSABLE;
    }
    return facts;
}

std::wstring LabelOf(HWND hControl) {
    HWND before = GetWindow(hControl, GW_HWNDPREV);
    while (before != nullptr && (GetWindowLongA(before, GWL_STYLE) & WS_VISIBLE) == 0) {
        before = GetWindow(before, GW_HWNDPREV);
    }
    wchar_t text[200] = L"";
    if (before == nullptr || mvp::ClassOf(before) != "Static") {
        return text;
    }
    InternalGetWindowText(before, text, 200);
    std::wstring label;
    for (const wchar_t* next = text; *next != L'\0'; ++next) {
        if (*next != L'&') {
            label.push_back(*next);
        }
    }
    return label;
}

}  // namespace listener
