#include "pinhost/popup_film.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "common/screenshot.h"
#include "pinhost/command.h"
#include "pinhost/ending.h"
#include "pinhost/popup_user.h"
#include "pinhost/text.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

constexpr DWORD kPauseMs = 5;
constexpr LONG kSurroundings = 20;  // around the notice in its place
constexpr BYTE kStandingAlpha = 229;
constexpr int kColumns = 3;  // of the strip
constexpr int kGap = 6;
constexpr COLORREF kGapColour = RGB(0xFF, 0xFF, 0xFF);

RECT WorkArea() {
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    return work;
}

// What the notice comes through: a corner of the work area and the taskbar beside it.
RECT AreaOf(SIZE notice) {
    const RECT work = WorkArea();
    RECT area{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    if (work.left > 0) {
        area.right = work.left + notice.cx + kSurroundings;
    } else {
        area.left = work.right - notice.cx - kSurroundings;
    }
    if (work.top > 0) {
        area.bottom = work.top + notice.cy + kSurroundings;
    } else {
        area.top = work.bottom - notice.cy - kSurroundings;
    }
    return area;
}

LONG Surface(const RECT& rect) {
    return (rect.right - rect.left) * (rect.bottom - rect.top);
}

// How much is to be seen, in quarters; below 0 nothing.
int Quarters(HWND hPopup) {
    RECT place{};
    BYTE alpha = 0;
    DWORD flags = 0;
    if (!IsWindowVisible(hPopup) || !GetWindowRect(hPopup, &place) || IsRectEmpty(&place) ||
        !GetLayeredWindowAttributes(hPopup, nullptr, &alpha, &flags) || alpha == 0) {
        return -1;
    }
    const RECT work = WorkArea();
    RECT seen{};
    IntersectRect(&seen, &place, &work);
    // A frame beyond the edge is not missed.
    constexpr double kFrame = 0.2;
    const double part = static_cast<double>(Surface(seen)) / static_cast<double>(Surface(place)) *
                        alpha / kStandingAlpha;
    return static_cast<int>(part * 4 + kFrame);
}

struct Canvas {
    SIZE size;
    mvp::WindowDc screen{nullptr};
    mvp::MemoryDc memory{CreateCompatibleDC(screen.get())};
    mvp::Bitmap bitmap{CreateCompatibleBitmap(screen.get(), size.cx, size.cy)};

    explicit Canvas(SIZE sizeIs) : size(sizeIs) {
        if (!memory || !bitmap) {
            throw EnvironmentError("no bitmap for the film");
        }
    }
};

SIZE SizeOf(const RECT& rect) {
    return {rect.right - rect.left, rect.bottom - rect.top};
}

void Save(HBITMAP hBitmap, const std::string& strFile) {
    std::string error;
    if (!mvp::SaveBitmapPng(hBitmap, strFile, error)) {
        throw EnvironmentError("no picture " + Utf8FromAnsi(strFile) + ": " + error);
    }
}

}  // namespace

void PopupFilm::Begin(HWND hPopup) {
    if (m_strFolder.empty()) {
        return;
    }
    m_hPopup = hPopup;
    m_thread = std::jthread([this](const std::stop_token& stop) { Main(stop); });
}

void PopupFilm::Main(const std::stop_token& stop) noexcept {
    mvp::Guarded(
        [&] {
            int quarters = -1;
            bool busy = IsBusy(m_hPopup);
            while (!stop.stop_requested()) {
                const int now = Quarters(m_hPopup);
                const bool nowBusy = IsBusy(m_hPopup);
                if (now >= 0 && (now != quarters || nowBusy != busy)) {
                    TakeFrame();
                }
                quarters = now;
                busy = nowBusy;
                Sleep(kPauseMs);
            }
        },
        [] { EndNow("the notice could not be filmed"); });
}

void PopupFilm::TakeFrame() {
    if (m_frames.empty()) {
        RECT place{};
        GetWindowRect(m_hPopup, &place);
        m_area = AreaOf(SizeOf(place));
    }
    Canvas frame(SizeOf(m_area));
    {
        const mvp::DcSelection selection(frame.memory.get(), frame.bitmap.get());
        BitBlt(frame.memory.get(), 0, 0, frame.size.cx, frame.size.cy, frame.screen.get(),
               m_area.left, m_area.top, SRCCOPY | CAPTUREBLT);
    }
    m_frames.push_back(std::move(frame.bitmap));
}

// A display may show a notice that fades as if it did not.
void PopupFilm::DropRepeated() {
    std::vector<std::vector<BYTE>> pixels;
    for (const mvp::Bitmap& frame : m_frames) {
        BITMAP header{};
        GetObjectA(frame.get(), sizeof header, &header);
        std::vector<BYTE>& bytes =
            pixels.emplace_back(static_cast<std::size_t>(header.bmWidthBytes) *
                                static_cast<std::size_t>(header.bmHeight));
        GetBitmapBits(frame.get(), static_cast<LONG>(bytes.size()), bytes.data());
    }
    for (std::size_t i = m_frames.size(); i-- > 1;) {
        if (pixels[i] == pixels[i - 1]) {
            m_frames.erase(m_frames.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

std::size_t PopupFilm::Finish() {
    m_thread = {};  // asks it to stop, and waits
    DropRepeated();
    if (m_frames.empty()) {
        return 0;
    }
    std::error_code error;
    std::filesystem::create_directories(PathFromAnsi(m_strFolder), error);
    int number = 0;
    for (const mvp::Bitmap& frame : m_frames) {
        char name[16];
        std::snprintf(name, sizeof name, "\\%02d.png", ++number);
        Save(frame.get(), m_strFolder + name);
    }
    Save(Join().get(), m_strFolder + "\\strip.png");
    return m_frames.size();
}

// In rows, as one reads.
mvp::Bitmap PopupFilm::Join() const {
    const int count = static_cast<int>(m_frames.size());
    const int columns = std::min(count, kColumns);
    const int rows = (count + columns - 1) / columns;
    const SIZE size = SizeOf(m_area);
    Canvas strip({columns * (size.cx + kGap) - kGap, rows * (size.cy + kGap) - kGap});
    const mvp::DcSelection selection(strip.memory.get(), strip.bitmap.get());
    const mvp::Brush brush(CreateSolidBrush(kGapColour));
    const RECT all{0, 0, strip.size.cx, strip.size.cy};
    FillRect(strip.memory.get(), &all, brush.get());
    const mvp::MemoryDc source(CreateCompatibleDC(strip.screen.get()));
    for (int i = 0; i < count; ++i) {
        const mvp::DcSelection picture(source.get(), m_frames[static_cast<std::size_t>(i)].get());
        BitBlt(strip.memory.get(), i % columns * (size.cx + kGap), i / columns * (size.cy + kGap),
               size.cx, size.cy, source.get(), 0, 0, SRCCOPY);
    }
    return std::move(strip.bitmap);
}

}  // namespace pinhost
