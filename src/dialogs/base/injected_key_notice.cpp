#include "dialogs/base/injected_key_notice.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <dlgfw/dialog.h>
#include <dlgfw/geometry.h>
#include <dlgfw/string.h>

#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/notice_row.h"
#include "dialogs/base/resource_dialog.h"
#include "platform/barrier.h"
#include "platform/handle.h"
#include "platform/window_dpi.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/resource_module.h"

namespace mvp {

namespace {

// In dialog units: what the library's templates leave beside their controls and between their
// groups, and the least between two things.
constexpr int kMargin = 7;
constexpr int kSmallestGap = 4;

// In pixels of 96 dpi.
constexpr int kIconSize = 16;

// The same in pixels.
CSize DialogUnits(HWND hDialog, int nUnits) {
    RECT rect{0, 0, nUnits, nUnits};
    MapDialogRect(hDialog, &rect);
    return {rect.right, rect.bottom};
}

CRect PlaceIn(HWND hDialog, HWND hControl) {
    CRect rect;
    ::GetWindowRect(hControl, &rect);
    // Both corners at once: in a dialog that is written from right to left they change places.
    ::MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

ControlSpan SpanOf(HWND hDialog, HWND hControl) {
    const CRect rect = PlaceIn(hDialog, hControl);
    return {rect.left, rect.top, rect.right, rect.bottom,
            (GetWindowLongA(hControl, GWL_STYLE) & WS_VISIBLE) != 0};
}

HFONT FontOf(HWND hDialog) {
    return reinterpret_cast<HFONT>(SendMessageA(hDialog, WM_GETFONT, 0, 0));
}

// The line as it will stand in a dialog: an icon, and the text behind it on as many lines as it
// needs.
class NoticeLine {
public:
    NoticeLine(HWND hDialog, InjectedKeys policy, int nMargin)
        : m_hDialog(hDialog),
          m_strText(ResourceString(policy == InjectedKeys::Refuse ? IDS_INJECTED_KEYS_REFUSED
                                                                  : IDS_INJECTED_KEYS_WARNING)),
          m_nIconSize(PixelsIn(hDialog, kIconSize)),
          m_nLeft(nMargin) {
        CRect client;
        ::GetClientRect(hDialog, &client);
        m_text = {0, 0, client.Width() - 2 * nMargin - TextIndent(), 0};
        const WindowDc dc(hDialog);
        const DcSelection font(dc.get(), FontOf(hDialog));
        DrawTextA(dc.get(), m_strText, -1, &m_text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        m_text.right = client.Width() - 2 * nMargin - TextIndent();
    }

    int Height() const { return std::max<int>(m_nIconSize, m_text.Height()); }

    void Create() const {
        CreateStatic(IDC_INJECTED_KEYS_ICON, "", SS_ICON, {m_nIconSize, m_nIconSize});
        CreateStatic(IDC_INJECTED_KEYS_TEXT, m_strText, SS_LEFT | SS_NOPREFIX,
                     {m_text.Width(), m_text.Height()});
        SendDlgItemMessageA(
            m_hDialog, IDC_INJECTED_KEYS_ICON, STM_SETICON,
            reinterpret_cast<WPARAM>(LoadResourceIcon(IDI_INJECTED_KEYS, m_nIconSize)), 0);
        KeepFromMirroring(CWnd::FromHandle(::GetDlgItem(m_hDialog, IDC_INJECTED_KEYS_ICON)));
        SendDlgItemMessageA(m_hDialog, IDC_INJECTED_KEYS_TEXT, WM_SETFONT,
                            reinterpret_cast<WPARAM>(FontOf(m_hDialog)), FALSE);
    }

    // Behind the control `hBefore` in the order in which a screen reader reads them.
    void ShowAt(int nTop, HWND hBefore) const {
        ShowControl(IDC_INJECTED_KEYS_ICON, m_nLeft, nTop + (Height() - m_nIconSize) / 2, hBefore);
        ShowControl(IDC_INJECTED_KEYS_TEXT, m_nLeft + TextIndent(),
                    nTop + (Height() - m_text.Height()) / 2,
                    ::GetDlgItem(m_hDialog, IDC_INJECTED_KEYS_ICON));
        NotifyWinEvent(EVENT_SYSTEM_ALERT, ::GetDlgItem(m_hDialog, IDC_INJECTED_KEYS_TEXT),
                       OBJID_CLIENT, CHILDID_SELF);
    }

private:
    int TextIndent() const { return m_nIconSize + DialogUnits(m_hDialog, kSmallestGap).cx; }

    void CreateStatic(int nId, LPCSTR pszText, DWORD dwStyle, const CSize& size) const {
        ::CreateWindowExA(0, "STATIC", pszText, WS_CHILD | dwStyle, 0, 0, size.cx, size.cy,
                          m_hDialog, reinterpret_cast<HMENU>(static_cast<INT_PTR>(nId)), nullptr,
                          nullptr);
    }

    void ShowControl(int nId, int nLeft, int nTop, HWND hBefore) const {
        ::SetWindowPos(::GetDlgItem(m_hDialog, nId), hBefore, nLeft, nTop, 0, 0,
                       SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    }

    HWND m_hDialog;
    CString m_strText;
    int m_nIconSize;
    int m_nLeft;
    CRect m_text;
};

std::vector<HWND> ControlsOf(HWND hDialog) {
    std::vector<HWND> controls;
    for (HWND each = GetWindow(hDialog, GW_CHILD); each != nullptr;
         each = GetWindow(each, GW_HWNDNEXT)) {
        controls.push_back(each);
    }
    return controls;
}

void Grow(HWND hWnd, int nHeight) {
    CRect rect;
    ::GetWindowRect(hWnd, &rect);
    ::SetWindowPos(hWnd, nullptr, 0, 0, rect.Width(), rect.Height() + nHeight,
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void MoveIntoWorkArea(HWND hDialog) {
    CRect rect;
    ::GetWindowRect(hDialog, &rect);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(MonitorFromWindow(hDialog, MONITOR_DEFAULTTONEAREST), &monitor);
    const int top = TopWithin(rect.top, rect.Height(), monitor.rcWork.top, monitor.rcWork.bottom);
    if (top != rect.top) {
        ::SetWindowPos(hDialog, nullptr, rect.left, top, 0, 0,
                       SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

// Moves the row of buttons down and returns the line's top.
int MakeRoom(HWND hDialog, HWND hButton, int nHeight) {
    CRect client;
    ::GetClientRect(hDialog, &client);
    const std::vector<HWND> controls = ControlsOf(hDialog);
    std::vector<ControlSpan> spans;
    std::ranges::transform(controls, std::back_inserter(spans),
                           [=](HWND each) { return SpanOf(hDialog, each); });
    const NoticeRow row =
        FindNoticeRow(spans, SpanOf(hDialog, hButton), client.Width(),
                      DialogUnits(hDialog, kSmallestGap).cy, DialogUnits(hDialog, kMargin + 1).cy);
    const int down = nHeight + row.nGap;
    Grow(hDialog, down);
    for (std::size_t i = 0; i < controls.size(); ++i) {
        if (spans[i].nTop >= row.nTop) {
            ::SetWindowPos(controls[i], nullptr, spans[i].nLeft, spans[i].nTop + down, 0, 0,
                           SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        }
    }
    MoveIntoWorkArea(hDialog);
    return row.nTop;
}

bool HasLine(HWND hDialog) {
    return ::GetDlgItem(hDialog, IDC_INJECTED_KEYS_TEXT) != nullptr;
}

// The dialog that is to show the line of an edit, or null.
HWND DialogAround(HWND hEdit) {
    HWND found = nullptr;
    for (HWND each = ::GetParent(hEdit); each != nullptr; each = ::GetParent(each)) {
        if (dynamic_cast<CDialog*>(CWnd::FromHandlePermanent(each)) != nullptr) {
            found = each;
        }
        if (HasLine(each) || (GetWindowLongA(each, GWL_STYLE) & WS_CHILD) == 0) {
            break;
        }
    }
    return found;
}

void Show(HWND hDialog, InjectedKeys policy) {
    if (HasLine(hDialog)) {
        if (::IsWindowVisible(::GetDlgItem(hDialog, IDC_INJECTED_KEYS_TEXT)) == FALSE &&
            (GetWindowLongA(hDialog, GWL_STYLE) & WS_CHILD) != 0) {
            const NoticeLine line(hDialog, policy, 0);
            CRect client;
            ::GetClientRect(hDialog, &client);
            line.ShowAt(client.bottom - line.Height(), HWND_BOTTOM);
        }
        return;
    }
    const HWND button = ::GetDlgItem(hDialog, IDOK);
    if (button == nullptr) {
        return;
    }
    const NoticeLine line(hDialog, policy, static_cast<int>(DialogUnits(hDialog, kMargin).cx));
    line.Create();
    line.ShowAt(MakeRoom(hDialog, button, line.Height()), GetWindow(button, GW_HWNDPREV));
    ::InvalidateRect(hDialog, nullptr, TRUE);
}

}  // namespace

void ReserveInjectedKeyNotice(CWnd& panel, InjectedKeys policy) noexcept {
    if (policy == InjectedKeys::Accept || dynamic_cast<ResourceDialog*>(CWnd::FromHandlePermanent(
                                              ::GetParent(panel.m_hWnd))) != nullptr) {
        return;
    }
    Guarded(
        [&] {
            const NoticeLine line(panel.m_hWnd, policy, 0);
            line.Create();
            Grow(panel.m_hWnd, line.Height() + DialogUnits(panel.m_hWnd, kMargin).cy);
        },
        LogException("ReserveInjectedKeyNotice"));
}

void ShowInjectedKeyNotice(HWND hEdit, InjectedKeys policy) noexcept {
    Guarded(
        [=] {
            if (const HWND dialog = DialogAround(hEdit)) {
                Show(dialog, policy);
            }
        },
        LogException("ShowInjectedKeyNotice"));
}

}  // namespace mvp
