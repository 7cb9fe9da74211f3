#include "pinentry/windows/window_layout.h"

#include <algorithm>
#include <climits>
#include <vector>

#include "platform/handle.h"

namespace pinentry {
namespace {

constexpr int kUnrelatedGap = 7;  // between controls, in dialog units

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

void GrowToText(HWND hDialog, HWND hControl) {
    const HWND parent = GetParent(hControl);
    const RECT control = PlaceIn(parent, hControl);
    const int needed =
        MeasureText(hControl, TextOf(hControl), Width(control), false).cy - Height(control);
    RECT gap{0, 0, 0, kUnrelatedGap};
    MapDialogRect(hDialog, &gap);
    const int spare =
        std::max<int>(TopBelow(parent, control.bottom) - control.bottom - gap.bottom, 0);
    RECT dialog{};
    GetWindowRect(hDialog, &dialog);
    const int room = Height(WorkAreaAt(hDialog)) - Height(dialog) + spare;
    const int growth = std::clamp<int>(needed, 0, std::max(room, 0));
    MoveDownWhatIsBelow(parent, control.bottom, growth - spare);
    Heighten(hControl, growth);
    for (HWND window = parent; window != hDialog; window = GetParent(window)) {
        const HWND outer = GetParent(window);
        MoveDownWhatIsBelow(outer, PlaceIn(outer, window).bottom, growth - spare);
        Heighten(window, growth - spare);
    }
    Heighten(hDialog, growth - spare);
}

void WidenButtons(HWND hDialog, std::initializer_list<int> ids) {
    constexpr int kPadding = 20;
    std::vector<HWND> buttons;
    int width = 0;
    for (const int id : ids) {
        const HWND button = GetDlgItem(hDialog, id);
        buttons.push_back(button);
        width = std::max<int>({width, Width(PlaceIn(hDialog, button)),
                               MeasureText(button, TextOf(button), 0, true).cx + kPadding});
    }
    const RECT first = PlaceIn(hDialog, buttons.front());
    const RECT last = PlaceIn(hDialog, buttons.back());
    const auto count = static_cast<int>(buttons.size());
    const int gap = count > 1 ? PlaceIn(hDialog, buttons[1]).left - first.right : 0;
    RECT client{};
    GetClientRect(hDialog, &client);
    const int margin = client.right - last.right;
    width = std::min<int>(width, (last.right - margin - gap * (count - 1)) / count);
    int right = last.right;
    for (auto it = buttons.rbegin(); it != buttons.rend(); ++it) {
        SetWindowPos(*it, nullptr, right - width, last.top, width, Height(last),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        right -= width + gap;
    }
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
