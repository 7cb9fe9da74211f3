// Dialogs of the library as they are at another resolution, and whether all that they show is in
// its place there.
//
//     EnlargedDialogs at(150);
//     DialogDriver driver([](Dialog& d) { ExpectAllInPlace(d); d.Escape(); });
//     dialog.DoModal();
#pragma once

#include <algorithm>
#include <cstring>
#include <list>
#include <vector>

#include "platform/system_library.h"
#include "support/control_layout.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {

// While one lives, templates are loaded and devices answer as at so many percent, 100 for 96 dpi.
class EnlargedDialogs {
public:
    explicit EnlargedDialogs(int nPercent) { s_nPercent = nPercent; }
    ~EnlargedDialogs() {
        s_templates.clear();
        s_nPercent = 100;
    }

private:
    static HGLOBAL WINAPI LoadEnlarged(HMODULE hModule, HRSRC hResource) {
        const DWORD size = SizeofResource(hModule, hResource);
        auto& words = s_templates.emplace_back((size + 1) / sizeof(WORD));
        std::memcpy(words.data(), LockResource(LoadResource(hModule, hResource)), size);
        EnlargeFont(words, s_nPercent);
        return words.data();
    }
    static int WINAPI TellResolution(HDC hDC, int nIndex) {
        const bool asked = nIndex == LOGPIXELSX || nIndex == LOGPIXELSY;
        return asked ? 96 * s_nPercent / 100 : s_pGetDeviceCaps(hDC, nIndex);
    }

    // By its own address: the import leads back here.
    static inline const auto s_pGetDeviceCaps =
        FindFunction<int(WINAPI*)(HDC, int)>(GetModuleHandleA("gdi32.dll"), "GetDeviceCaps");
    static inline int s_nPercent = 100;
    static inline std::list<std::vector<WORD>> s_templates;
    const PatchedImports m_loading{"dlgfw.dll", {{"LoadResource", Address(&LoadEnlarged)}}};
    const PatchedImports m_device{nullptr, {{"GetDeviceCaps", Address(&TellResolution)}}};
};

// What shows of a dialog and its panels, at its place in the dialog. A group box is its caption:
// the rest of it lies around others.
inline std::vector<Control> ShownControls(HWND hDialog) {
    std::vector<Control> controls;
    const auto add = +[](HWND hWnd, LPARAM nControls) WINAPI -> BOOL {
        Control control = Control::Of(hWnd);
        const bool isPart = Control::Of(GetParent(hWnd)).strClass != "#32770";
        if (!IsWindowVisible(hWnd) || control.strClass == "#32770" || isPart) {
            return TRUE;
        }
        MapWindowPoints(GetParent(hWnd), GetAncestor(hWnd, GA_ROOT),
                        reinterpret_cast<POINT*>(&control.rect), 2);
        if (control.IsGroupBox()) {
            RECT line{0, 0, 0, 8};
            MapDialogRect(GetParent(hWnd), &line);
            control.rect.bottom = control.rect.top + line.bottom;
        }
        reinterpret_cast<std::vector<Control>*>(nControls)->push_back(control);
        return TRUE;
    };
    EnumChildWindows(hDialog, add, reinterpret_cast<LPARAM>(&controls));
    return controls;
}

}  // namespace mvp::test
