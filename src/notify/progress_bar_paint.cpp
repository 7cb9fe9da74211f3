#include "notify/progress_bar_paint.h"

#include <windows.h>
#include <uxtheme.h>

#include <optional>

#include <vssym32.h>

#include "notify/progress_bar_geometry.h"
#include "platform/system_library.h"
#include "platform/window_dpi.h"

namespace mvp {
namespace {

struct ThemeFunctions {
    decltype(&IsAppThemed) pIsAppThemed = nullptr;
    decltype(&OpenThemeData) pOpenThemeData = nullptr;
    decltype(&CloseThemeData) pCloseThemeData = nullptr;
    decltype(&DrawThemeBackground) pDrawThemeBackground = nullptr;
    decltype(&GetThemePartSize) pGetThemePartSize = nullptr;
    decltype(&GetThemeBackgroundContentRect) pGetThemeBackgroundContentRect = nullptr;

    bool Complete() const noexcept {
        return pIsAppThemed != nullptr && pOpenThemeData != nullptr && pCloseThemeData != nullptr &&
               pDrawThemeBackground != nullptr && pGetThemePartSize != nullptr &&
               pGetThemeBackgroundContentRect != nullptr;
    }
};

template <class Function>
void Find(HMODULE hModule, const char* name, Function& function) noexcept {
    function = FindFunction<Function>(hModule, name);
}

ThemeFunctions LoadThemeFunctions() noexcept {
    ThemeFunctions functions;
    // Given up to the process, never freed: the only moment to free it would be the library's own
    // detach, when freeing another library is forbidden.
    const HMODULE moduleHandle = LoadSystemLibrary("UxTheme.dll").release();
    if (moduleHandle == nullptr) {
        return functions;
    }
    Find(moduleHandle, "IsAppThemed", functions.pIsAppThemed);
    Find(moduleHandle, "OpenThemeData", functions.pOpenThemeData);
    Find(moduleHandle, "CloseThemeData", functions.pCloseThemeData);
    Find(moduleHandle, "DrawThemeBackground", functions.pDrawThemeBackground);
    Find(moduleHandle, "GetThemePartSize", functions.pGetThemePartSize);
    Find(moduleHandle, "GetThemeBackgroundContentRect", functions.pGetThemeBackgroundContentRect);
    return functions;
}

const ThemeFunctions& Themes() noexcept {
    static const ThemeFunctions functions = LoadThemeFunctions();
    return functions;
}

// Where chunks go inside the bar, and how wide one is.
struct BarLook {
    RECT content{};
    int nChunkWidth = 0;
};

// The theme's data for progress bars, where there are any. Opened for every painting, so that a
// change of theme needs no notice; the system keeps the data.
class ProgressTheme {
public:
    ProgressTheme(const ThemeFunctions& functions, HWND hWnd) noexcept : m_functions(functions) {
        if (functions.Complete() && functions.pIsAppThemed()) {
            m_hTheme = functions.pOpenThemeData(hWnd, L"Progress");
        }
    }
    ProgressTheme(const ProgressTheme&) = delete;
    ProgressTheme& operator=(const ProgressTheme&) = delete;
    ~ProgressTheme() {
        if (m_hTheme != nullptr) {
            m_functions.pCloseThemeData(m_hTheme);
        }
    }

    // False, with nothing drawn, when the theme does not say how.
    bool DrawBar(HDC hDC, const RECT& bar, BarLook& look) const noexcept {
        SIZE chunk{};
        if (m_hTheme == nullptr ||
            FAILED(m_functions.pGetThemeBackgroundContentRect(m_hTheme, hDC, PP_BAR, 0, &bar,
                                                              &look.content)) ||
            FAILED(m_functions.pGetThemePartSize(m_hTheme, hDC, PP_CHUNK, 0, nullptr, TS_TRUE,
                                                 &chunk)) ||
            FAILED(m_functions.pDrawThemeBackground(m_hTheme, hDC, PP_BAR, 0, &bar, nullptr))) {
            return false;
        }
        look.nChunkWidth = chunk.cx;
        return true;
    }
    // After DrawBar has succeeded.
    void DrawChunk(HDC hDC, const RECT& chunk) const noexcept {
        m_functions.pDrawThemeBackground(m_hTheme, hDC, PP_CHUNK, 0, &chunk, nullptr);
    }

private:
    const ThemeFunctions& m_functions;
    HTHEME m_hTheme = nullptr;
};

BarLook DrawClassicBar(HDC hDC, const RECT& bar) noexcept {
    BarLook look;
    look.content = bar;
    DrawEdge(hDC, &look.content, EDGE_SUNKEN, BF_RECT);
    InflateRect(&look.content, -2, -2);
    look.nChunkWidth = ClassicChunkWidth(look.content.bottom - look.content.top);
    return look;
}

}  // namespace

bool DrawProgressBar(HWND hWnd, HDC hDC, bool bMayUseTheme, std::int32_t nPosition,
                     std::uint32_t nBlocks) noexcept {
    RECT bar{};
    GetClientRect(hWnd, &bar);
    // Under a theme too, whose bar may have transparent corners.
    FillRect(hDC, &bar, GetSysColorBrush(COLOR_BTNFACE));

    BarLook look;
    std::optional<ProgressTheme> theme;
    if (bMayUseTheme) {
        theme.emplace(Themes(), hWnd);
    }
    const bool themed = theme && theme->DrawBar(hDC, bar, look);
    if (!themed) {
        look = DrawClassicBar(hDC, bar);
    }

    const ProgressTrain train = PlaceProgressTrain(
        {look.content.left, look.content.right, PixelsIn(hWnd, kProgressChunkGap)},
        look.nChunkWidth, nPosition, nBlocks);
    for (const ProgressChunk& chunk : train.Chunks()) {
        const RECT place = {chunk.nLeft, look.content.top, chunk.nRight, look.content.bottom};
        if (themed) {
            theme->DrawChunk(hDC, place);
        } else {
            FillRect(hDC, &place, GetSysColorBrush(COLOR_HIGHLIGHT));
        }
    }
    return train.HasLeft();
}

}  // namespace mvp
