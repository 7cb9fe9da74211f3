// Pictures of an edit, for doors.cpp, and what takes its mask off for the time being.
#pragma once

#include <functional>
#include <string_view>

#include "pinspy/doors.h"
#include "platform/handle.h"

namespace mvp::spy {

class MaskOff {
public:
    explicit MaskOff(HWND hEdit) : m_hEdit(hEdit), m_nMask(Ask(hEdit, EM_GETPASSWORDCHAR)) {
        Ask(hEdit, EM_SETPASSWORDCHAR);
    }
    MaskOff(const MaskOff&) = delete;
    MaskOff& operator=(const MaskOff&) = delete;
    ~MaskOff() { Ask(m_hEdit, EM_SETPASSWORDCHAR, static_cast<WPARAM>(m_nMask)); }

private:
    HWND m_hEdit;
    LRESULT m_nMask;
};

class StyleOff {
public:
    explicit StyleOff(HWND hEdit) : m_hEdit(hEdit), m_nStyle(GetWindowLongA(hEdit, GWL_STYLE)) {
        SetWindowLongA(hEdit, GWL_STYLE, m_nStyle & ~ES_PASSWORD);
    }
    StyleOff(const StyleOff&) = delete;
    StyleOff& operator=(const StyleOff&) = delete;
    ~StyleOff() { SetWindowLongA(m_hEdit, GWL_STYLE, m_nStyle); }

private:
    HWND m_hEdit;
    LONG m_nStyle;
};

struct BitmapTraits {
    using Handle = HBITMAP;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DeleteObject(handle); }
};
struct MemoryDcTraits {
    using Handle = HDC;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DeleteDC(handle); }
};

// Of what `draw` draws into a bitmap of the edit's size.
template <class Draw>
Loot Picture(HWND hEdit, Draw draw) {
    RECT place{};
    GetWindowRect(hEdit, &place);
    RedrawWindow(hEdit, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    Ask(hEdit, WM_NULL);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader,
                      place.right - place.left,
                      place.bottom - place.top,
                      1,
                      32,
                      BI_RGB,
                      0,
                      0,
                      0,
                      0,
                      0};
    void* bits = nullptr;
    const UniqueHandle<MemoryDcTraits> dc(CreateCompatibleDC(nullptr));
    const UniqueHandle<BitmapTraits> bitmap(
        CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HGDIOBJ before = SelectObject(dc.get(), bitmap.get());
    draw(dc.get(), place);
    GdiFlush();
    const std::size_t hash = std::hash<std::string_view>()(
        {static_cast<const char*>(bits), static_cast<std::size_t>(info.bmiHeader.biWidth) * 4 *
                                             static_cast<std::size_t>(info.bmiHeader.biHeight)});
    SelectObject(dc.get(), before);
    return {'p' + std::to_string(hash)};
}
// From the device context of the edit or, with null, of the screen.
inline Loot Copy(HWND hEdit, HWND hSource) {
    return Picture(hEdit, [=](HDC hDC, const RECT& place) {
        const HDC source = GetWindowDC(hSource);
        const bool screen = hSource == nullptr;
        BitBlt(hDC, 0, 0, place.right - place.left, place.bottom - place.top, source,
               screen ? place.left : 0, screen ? place.top : 0, SRCCOPY);
        ReleaseDC(hSource, source);
    });
}
inline Loot Printed(HWND hEdit) {
    return Picture(hEdit, [=](HDC hDC, const RECT&) { PrintWindow(hEdit, hDC, 0); });
}
inline Loot PrintedByMessage(HWND hEdit) {
    return Picture(hEdit, [=](HDC hDC, const RECT&) {
        Ask(hEdit, WM_PRINT, reinterpret_cast<WPARAM>(hDC), LPARAM{PRF_CLIENT | PRF_ERASEBKGND});
    });
}

inline Loot CopiedFromWindow(HWND hEdit) {
    return Copy(hEdit, hEdit);
}
inline Loot CopiedFromScreen(HWND hEdit) {
    return Copy(hEdit, nullptr);
}

}  // namespace mvp::spy
