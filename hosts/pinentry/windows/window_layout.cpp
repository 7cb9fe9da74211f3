#include "pinentry/windows/window_layout.h"

#include <algorithm>
#include <climits>
#include <numeric>

#include "platform/handle.h"

namespace pinentry {
namespace {

// Pixels between related controls (left, top), and between unrelated ones or to the edge (right,
// bottom).
RECT Gaps(HWND hDialog) {
    RECT gaps{4, 4, 7, 7};
    MapDialogRect(hDialog, &gaps);
    return gaps;
}

RECT PlaceIn(HWND hParent, HWND hWnd) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

int Width(const RECT& rect) {
    return rect.right - rect.left;
}

int Height(const RECT& rect) {
    return rect.bottom - rect.top;
}

RECT WorkAreaAt(HWND hWnd) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    if (GetMonitorInfoA(MonitorFromWindow(hWnd, MONITOR_DEFAULTTOPRIMARY), &info) == 0) {
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &info.rcWork, 0);
    }
    return info.rcWork;
}

void Heighten(HWND hWnd, int nBy) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    SetWindowPos(hWnd, nullptr, 0, 0, Width(place), Height(place) + nBy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void MoveDownWhatIsBelow(HWND hParent, int nBottom, int nBy) {
    for (HWND child = GetWindow(hParent, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        const RECT place = PlaceIn(hParent, child);
        if (place.top >= nBottom) {
            SetWindowPos(child, nullptr, place.left, place.top + nBy, 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        }
    }
}

// Where the first visible one below begins; `nBottom` when there is none.
int TopBelow(HWND hParent, int nBottom) {
    int top = INT_MAX;
    for (HWND child = GetWindow(hParent, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        const int childTop = PlaceIn(hParent, child).top;
        // The dialog itself is not shown yet: only the control's own style tells.
        const bool isShown = (GetWindowLongA(child, GWL_STYLE) & WS_VISIBLE) != 0;
        if (isShown && childTop >= nBottom) {
            top = std::min(top, childTop);
        }
    }
    return top == INT_MAX ? nBottom : top;
}

}  // namespace

std::wstring TextOf(HWND hWnd) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(hWnd)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

SIZE MeasureText(HWND hControl, const std::wstring& strText, int nWidth, bool bAccessKeys) {
    const mvp::WindowDc dc(hControl);
    const mvp::DcSelection font(
        dc.get(), reinterpret_cast<HGDIOBJ>(SendMessageW(hControl, WM_GETFONT, 0, 0)));
    RECT place{0, 0, nWidth, 0};
    const UINT format =
        (nWidth != 0 ? DT_WORDBREAK : 0U) | (bAccessKeys ? 0U : DT_NOPREFIX) | DT_EXPANDTABS;
    DrawTextW(dc.get(), strText.c_str(), static_cast<int>(strText.size()), &place,
              DT_CALCRECT | format);
    return {place.right, place.bottom};
}

void FitToText(HWND hDialog, HWND hControl) {
    const HWND parent = GetParent(hControl);
    const RECT control = PlaceIn(parent, hControl);
    const int needed =
        MeasureText(hControl, TextOf(hControl), Width(control), false).cy - Height(control);
    const int below = TopBelow(parent, control.bottom) - control.bottom;
    const int spare = std::max<int>(below - Gaps(hDialog).bottom, 0);
    RECT dialog{};
    GetWindowRect(hDialog, &dialog);
    const int room = Height(WorkAreaAt(hDialog)) - Height(dialog) + spare;
    const int growth = std::min<int>(needed, std::max(room, 0));
    MoveDownWhatIsBelow(parent, control.bottom, growth - spare);
    Heighten(hControl, growth);
    for (HWND window = parent; window != hDialog; window = GetParent(window)) {
        const HWND outer = GetParent(window);
        MoveDownWhatIsBelow(outer, PlaceIn(outer, window).bottom, growth - spare);
        Heighten(window, growth - spare);
    }
    Heighten(hDialog, growth - spare);
}

int ArrangeButtons(HWND hDialog, const std::vector<int>& ids) {
    const RECT gaps = Gaps(hDialog);
    RECT least{0, 0, 58, 14};
    MapDialogRect(hDialog, &least);
    RECT client{};
    GetClientRect(hDialog, &client);
    std::vector<int> widths;
    for (const int id : ids) {
        const HWND button = GetDlgItem(hDialog, id);
        const int needed = MeasureText(button, TextOf(button), 0, true).cx + 2 * gaps.right;
        widths.push_back(std::max<int>(least.right, needed));
    }
    const int count = static_cast<int>(ids.size());
    const int room = client.right - 2 * gaps.right - gaps.left * (count - 1);
    const int widest = *std::max_element(widths.begin(), widths.end());
    const int sum = std::accumulate(widths.begin(), widths.end(), 0);
    int right = client.right - gaps.right;
    for (std::size_t i = ids.size(); i-- > 0;) {
        const HWND button = GetDlgItem(hDialog, ids[i]);
        const RECT place = PlaceIn(hDialog, button);
        const int own = sum <= room ? widths[i] : room / count;
        const int width = widest * count <= room ? widest : own;
        SetWindowPos(button, nullptr, right - width, place.top, width, Height(place),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        right -= width + gaps.left;
    }
    RECT dialog{};
    GetWindowRect(hDialog, &dialog);
    const int left = std::max(Width(WorkAreaAt(hDialog)) - Width(dialog), 0);
    return std::clamp(sum - room, 0, left);
}

void PlaceOver(HWND hDialog, HWND hOwner) {
    RECT dialog{};
    GetWindowRect(hDialog, &dialog);
    const RECT work = WorkAreaAt(hOwner != nullptr ? hOwner : hDialog);
    RECT below = work;
    if (hOwner != nullptr) {
        GetWindowRect(hOwner, &below);
    }
    const auto fit = [](int nMiddle, int nSize, LONG nFrom, LONG nTo) {
        return std::max<int>(std::min<int>(nMiddle - nSize / 2, nTo - nSize), nFrom);
    };
    SetWindowPos(hDialog, nullptr,
                 fit((below.left + below.right) / 2, Width(dialog), work.left, work.right),
                 fit((below.top + below.bottom) / 2, Height(dialog), work.top, work.bottom), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace pinentry
