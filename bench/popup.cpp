// What a notice costs: from Show to its first visible step, a step of its slide against a bare move
// of a window of its size, and what thousands in a row leave behind (`bench_popup 10000`).
//
// The popup of a type without settings: its length of stay and its texts come from nowhere.
#include <windows.h>
#include <tlhelp32.h>

#include <array>
#include <cstdlib>

#include <malloc.h>

#include "bench.h"
#include "mvpingui/mvpingui.h"
#include "mvpingui/popup_alert.h"
#include "platform/handle.h"
#include "private_bytes.h"

namespace {

constexpr int kStepsOfARound = 100;
constexpr int kShows = 31;

void Make(CPopupAlert& popup) {
    if (popup.Create(nullptr) == 0 || !popup.InitWindow(nullptr, DIALOG_POPUP_CARD_OTP, 0)) {
        std::puts("no popup");
        std::exit(EXIT_FAILURE);
    }
}

bool IsSeen(HWND hWnd) {
    BYTE alpha = 0;
    DWORD flags = 0;
    return IsWindowVisible(hWnd) && GetLayeredWindowAttributes(hWnd, nullptr, &alpha, &flags) &&
           alpha != 0;
}

double MillisecondsToFirstStep(CPopupAlert& popup) {
    const auto start = std::chrono::steady_clock::now();
    popup.Show();
    MSG message;
    while (!IsSeen(popup) && GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    popup.Hide();
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
    return took.count();
}

bool MeasureFirstStep() {
    CPopupAlert popup;
    Make(popup);
    std::vector<double> times;
    times.reserve(kShows);
    for (int i = 0; i < kShows; ++i) {
        times.push_back(MillisecondsToFirstStep(popup));
    }
    std::printf("%-44s %12.1f ms, at most %.1f ms of %d\n", "Show to the first visible step",
                mvp::bench::Median(times), *std::max_element(times.begin(), times.end()), kShows);
    constexpr double kAim = 50;
    return mvp::bench::Median(times) <= kAim;
}

// A layered window like the popup, with nothing in it.
HWND MakeBare(const RECT& place) {
    HWND window = CreateWindowExA(WS_EX_TOPMOST | WS_EX_LAYERED | WS_EX_NOACTIVATE, "STATIC", "",
                                  WS_POPUP | WS_THICKFRAME, 20, 20, place.right - place.left,
                                  place.bottom - place.top, nullptr, nullptr, nullptr, nullptr);
    SetLayeredWindowAttributes(window, 0, 229, LWA_ALPHA);
    ShowWindow(window, SW_SHOWNA);
    return window;
}

void MeasureStep() {
    CPopupAlert popup;
    Make(popup);
    popup.Show();
    popup.SendMessage(WM_TIMER, 1);
    RECT place{};
    popup.GetWindowRect(&place);
    HWND bare = MakeBare(place);
    int y = place.top;
    const auto move = [&] {
        y -= 2;
        SetWindowPos(bare, nullptr, 20, y, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
    };
    const auto step = [&] { popup.SendMessage(WM_TIMER, 1); };
    // Every round is a slide from the start on, and as long a move from there.
    const auto time = [&](auto& what) {
        popup.Hide();
        popup.Show();
        y = place.top;
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message != WM_TIMER) {
                DispatchMessageA(&message);
            }
        }
        return mvp::bench::NanosecondsEach(kStepsOfARound, what);
    };
    mvp::bench::Print("a step of the slide", "SetWindowPos of a bare window",
                      mvp::bench::TakeTurns(mvp::bench::kRounds, time, step, move));
    DestroyWindow(bare);
}

// One life: a few steps of the slide, a stay, the beginning of the end.
void Live() {
    CPopupAlert popup;
    Make(popup);
    popup.Show();
    for (const WPARAM timer : {1U, 1U, 1U, 2U, 3U}) {
        popup.SendMessage(WM_TIMER, timer);
    }
    popup.Hide();
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageA(&message);
    }
}

// Wine's own counts of objects answer 0: they are looked up one by one.
template <class IsOne>
unsigned CountHandles(IsOne isOne) {
    unsigned count = 0;
    for (ULONG_PTR place = 1; place <= 0xFFFF; ++place) {
        count += isOne(reinterpret_cast<void*>(place)) ? 1U : 0U;
    }
    return count;
}

unsigned CountThreads() {
    const mvp::FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    unsigned count = 0;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more;
         more = Thread32Next(snapshot.get(), &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1U : 0U;
    }
    return count;
}

unsigned CountHeapBlocks() {
    auto* const heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    PROCESS_HEAP_ENTRY entry{};
    unsigned count = 0;
    while (HeapWalk(heap, &entry)) {
        count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1U : 0U;
    }
    return count;
}

// What may not grow: heap blocks, GDI objects, windows, icons and menus, threads.
using Counts = std::array<unsigned, 5>;

Counts Count() {
    return {CountHeapBlocks(), CountHandles([](void* p) { return GetObjectType(p) != 0; }),
            CountHandles([](void* p) {
                DWORD process = 0;
                return GetWindowThreadProcessId(static_cast<HWND>(p), &process) != 0 &&
                       process == GetCurrentProcessId();
            }),
            CountHandles([](void* p) {
                ICONINFO info{};
                const bool icon = GetIconInfo(static_cast<HICON>(p), &info) != FALSE;
                const mvp::Bitmap mask(info.hbmMask);
                const mvp::Bitmap colour(info.hbmColor);
                return icon || IsMenu(static_cast<HMENU>(p));
            }),
            CountThreads()};
}

Counts CountAfter(long nPopups) {
    const Counts counts = Count();
    std::printf(
        "after %6ld popups: %u heap blocks, %u GDI objects, %u windows, %u icons and menus, %u "
        "threads, %zu KB private\n",
        nPopups, counts[0], counts[1], counts[2], counts[3], counts[4],
        mvp::bench::PrivateBytes() / 1024);
    return counts;
}

}  // namespace

int main(int argc, char** argv) {
    const long popups = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 500;
    constexpr int kFirst = 100;  // what the system keeps for later is made by then
    InitGUIDll();
    const bool prompt = MeasureFirstStep();
    MeasureStep();
    for (int i = 0; i < kFirst; ++i) {
        Live();
    }
    const Counts before = CountAfter(kFirst);
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < popups; ++i) {
        Live();
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    const Counts after = CountAfter(kFirst + popups);
    std::printf("%-44s %12.1f ms\n", "a popup from beginning to end",
                took.count() / static_cast<double>(popups));
    return prompt && after == before ? EXIT_SUCCESS : EXIT_FAILURE;
}
