#include "notify/progress_bar.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "notify/progress_bar_geometry.h"
#include "notify/progress_bar_paint.h"
#include "platform/barrier.h"
#include "platform/handle.h"
#include "services/log.h"
#include "services/named_accessible.h"

namespace mvp {
namespace {

// What a window keeps. Owned by the window: made by WM_CREATE, freed by WM_NCDESTROY.
struct ProgressBar {
    std::int32_t nPosition = 0;
    std::uint32_t nInterval = kProgressDefaultInterval;
    std::uint32_t nBlocks = kProgressDefaultBlocks;
    std::unique_ptr<NamedAccessible, NamedAccessible::GiveUp> pAccessible = nullptr;
};

ProgressBar* BarOf(HWND hWnd) noexcept {
    return reinterpret_cast<ProgressBar*>(GetWindowLongPtrA(hWnd, 0));
}

bool StartTimer(HWND hWnd, const ProgressBar& bar) noexcept {
    return SetTimer(hWnd, kProgressTimer, bar.nInterval, nullptr) != 0;
}

void RedrawNow(HWND hWnd) noexcept {
    RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

bool SetInterval(HWND hWnd, ProgressBar& bar, std::uint32_t nInterval) noexcept {
    bar.nInterval = nInterval;
    return !IsWindowEnabled(hWnd) || StartTimer(hWnd, bar);
}

LRESULT OnCreate(HWND hWnd) {
    if (BarOf(hWnd) != nullptr) {
        return 0;
    }
    auto bar = std::make_unique<ProgressBar>();
    if (!SetInterval(hWnd, *bar, kProgressDefaultInterval)) {
        return -1;
    }
    SetWindowLongPtrA(hWnd, 0, reinterpret_cast<LONG_PTR>(bar.release()));
    return 0;  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the window owns the bar now
}

void OnNcDestroy(HWND hWnd) noexcept {
    const std::unique_ptr<ProgressBar> bar(BarOf(hWnd));
    SetWindowLongPtrA(hWnd, 0, 0);
}

std::string TextOf(HWND hWnd) {
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(hWnd)) + 1, '\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextA(hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

// A screen reader calls it by its text, which does not show.
LRESULT OnGetObject(HWND hWnd, ProgressBar& bar, WPARAM wParam) {
    if (bar.pAccessible == nullptr) {
        bar.pAccessible.reset(NamedAccessible::Create(hWnd, ROLE_SYSTEM_PROGRESSBAR,
                                                      [hWnd] { return TextOf(hWnd); }));
    }
    return bar.pAccessible != nullptr ? AnswerGetObject(wParam, bar.pAccessible.get()) : 0;
}

// A redraw may run code of whoever has subclassed the window, so nothing is touched after it.
void OnEnable(HWND hWnd, ProgressBar& bar, bool bEnabled) noexcept {
    if (bEnabled) {
        StartTimer(hWnd, bar);
        return;
    }
    KillTimer(hWnd, kProgressTimer);
    bar.nPosition = 0;
    RedrawNow(hWnd);
}

void OnTick(HWND hWnd, ProgressBar& bar) noexcept {
    // The painting starts the position again; a bar that is never painted comes to the end of the
    // numbers.
    const bool last = bar.nPosition == std::numeric_limits<std::int32_t>::max();
    bar.nPosition = last ? 0 : bar.nPosition + 1;
    RedrawNow(hWnd);
}

class PaintScope {
public:
    explicit PaintScope(HWND hWnd) noexcept : m_hWnd(hWnd), m_hDC(BeginPaint(hWnd, &m_paint)) {}
    PaintScope(const PaintScope&) = delete;
    PaintScope& operator=(const PaintScope&) = delete;
    ~PaintScope() { EndPaint(m_hWnd, &m_paint); }

    HDC Dc() const noexcept { return m_hDC; }
    const RECT& Area() const noexcept { return m_paint.rcPaint; }

private:
    HWND m_hWnd;
    PAINTSTRUCT m_paint{};
    HDC m_hDC;
};

void OnPaint(HWND hWnd, ProgressBar& bar) noexcept {
    const PaintScope paint(hWnd);
    if (paint.Dc() == nullptr || IsRectEmpty(&paint.Area())) {
        return;
    }
    // Drawn aside and copied at once, so that no half-drawn bar is seen. Only what is visible needs
    // a bitmap, which bounds its size, however large the window is.
    const RECT area = paint.Area();
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const Bitmap bitmap(CreateCompatibleBitmap(paint.Dc(), width, height));
    const MemoryDc buffer(CreateCompatibleDC(paint.Dc()));
    if (!bitmap || !buffer) {
        return;  // the next tick paints again
    }
    const DcSelection selection(buffer.get(), bitmap.get());
    SetViewportOrgEx(buffer.get(), -area.left, -area.top, nullptr);

    const bool mayUseTheme =
        (static_cast<DWORD>(GetWindowLongPtrA(hWnd, GWL_STYLE)) & kProgressClassicLook) == 0;
    if (DrawProgressBar(hWnd, buffer.get(), mayUseTheme, bar.nPosition, bar.nBlocks)) {
        bar.nPosition = 0;
    }
    BitBlt(paint.Dc(), area.left, area.top, width, height, buffer.get(), area.left, area.top,
           SRCCOPY);
}

LRESULT SetBlocks(ProgressBar& bar, WPARAM blocks) noexcept {
    if (blocks < 1 || blocks > kProgressMaxBlocks) {
        return 0;
    }
    bar.nBlocks = static_cast<std::uint32_t>(blocks);
    return 1;
}

LRESULT Dispatch(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == WM_CREATE) {
        return OnCreate(hWnd);
    }
    ProgressBar* const bar = BarOf(hWnd);
    if (bar == nullptr) {
        return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    }

    switch (nMessage) {
        case WM_DESTROY:
            KillTimer(hWnd, kProgressTimer);
            return 0;
        case WM_NCDESTROY:
            OnNcDestroy(hWnd);
            break;
        case WM_ENABLE:
            OnEnable(hWnd, *bar, wParam != FALSE);
            return 0;
        case WM_TIMER:
            if (wParam != kProgressTimer) {
                break;
            }
            OnTick(hWnd, *bar);
            return 0;
        case WM_PAINT:
            OnPaint(hWnd, *bar);
            return 0;
        case WM_GETOBJECT:
            if (static_cast<LONG>(lParam) == OBJID_CLIENT) {
                return OnGetObject(hWnd, *bar, wParam);
            }
            break;
        case kProgressGetInterval:
            return static_cast<LRESULT>(bar->nInterval);
        case kProgressSetInterval:
            return SetInterval(hWnd, *bar, static_cast<std::uint32_t>(wParam)) ? 1 : 0;
        case kProgressGetBlocks:
            return static_cast<LRESULT>(bar->nBlocks);
        case kProgressSetBlocks:
            return SetBlocks(*bar, wParam);
        default:
            break;
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

LRESULT CALLBACK ProgressBarProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) noexcept {
    const LRESULT failed = nMessage == WM_CREATE ? -1 : 0;
    return Guarded(
        failed, [=] { return Dispatch(hWnd, nMessage, wParam, lParam); },
        LogException("VkProgressBar"));
}

}  // namespace

bool RegisterProgressBarClass(HINSTANCE hInstance) noexcept {
    WNDCLASSEXA windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_HREDRAW | CS_VREDRAW | CS_GLOBALCLASS;
    windowClass.lpfnWndProc = ProgressBarProc;
    windowClass.cbWndExtra = sizeof(LONG_PTR);
    windowClass.hInstance = hInstance;
    windowClass.lpszClassName = kProgressBarClass;
    return RegisterClassExA(&windowClass) != 0;
}

void UnregisterProgressBarClass(HINSTANCE hInstance) noexcept {
    UnregisterClassA(kProgressBarClass, hInstance);
}

}  // namespace mvp
