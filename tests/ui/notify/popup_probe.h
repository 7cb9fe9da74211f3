// A popup over a host's window, for tests: its timers come to their end when the test says so, and
// what it tells the system is kept.
#pragma once

#include <windows.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mvpingui/popup_alert.h"
#include "platform/scaled_bitmap.h"
#include "richtext/control/html_static.h"
#include "services/card_removed_message.h"
#include "support/control_layout.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {

// A routine for SetThreadRoutine.
inline DWORD WINAPI ReturnAtOnce(void* /*pPopup*/) {
    return 0;
}

constexpr char kNoReader[] = R"(SOFTWARE\Quillon\Veskara\Notification\NoReaderWarning)";
constexpr char kCardAlert[] = R"(SOFTWARE\Quillon\Veskara\Notification\SmartCardPresenceWarning)";
constexpr char kAgent[] = R"(SOFTWARE\Quillon\Veskara\SmartCardAgent)";

// Settings of the system's, as they were before when these go.
class Animation {
public:
    explicit Animation(bool bOn) {
        SystemParametersInfoA(SPI_GETCLIENTAREAANIMATION, 0, &m_nBefore, 0);
        Set(bOn ? TRUE : FALSE);
    }
    ~Animation() { Set(m_nBefore); }

private:
    static void Set(INT_PTR nOn) {
        SystemParametersInfoA(SPI_SETCLIENTAREAANIMATION, 0, reinterpret_cast<void*>(nOn), 0);
    }
    BOOL m_nBefore = TRUE;
};
class WorkArea {
public:
    explicit WorkArea(RECT area) {
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &m_before, 0);
        SystemParametersInfoA(SPI_SETWORKAREA, 0, &area, 0);
    }
    ~WorkArea() { SystemParametersInfoA(SPI_SETWORKAREA, 0, &m_before, 0); }

private:
    RECT m_before{};
};

// In the place of the system's timers.
class MadeTimers {
public:
    MadeTimers() { s_running.clear(); }
    // "2:1000", "-" for none, of those that run for a window.
    static std::string Of(HWND hWnd) {
        std::string all;
        for (const auto& [key, milliseconds] : s_running) {
            if (key.first == hWnd) {
                all += std::to_string(key.second) + ":" + std::to_string(milliseconds);
            }
        }
        return all.empty() ? "-" : all;
    }

private:
    static UINT_PTR WINAPI Set(HWND hWnd, UINT_PTR nId, UINT nMilliseconds, TIMERPROC) {
        std::erase_if(s_running, [](const auto& timer) { return !IsWindow(timer.first.first); });
        s_running[{hWnd, nId}] = nMilliseconds;
        return nId;
    }
    static BOOL WINAPI Kill(HWND hWnd, UINT_PTR nId) {
        EXPECT_NE(hWnd, nullptr) << "a timer of the host's thread";
        return s_running.erase({hWnd, nId}) != 0 ? TRUE : FALSE;
    }

    static inline std::map<std::pair<HWND, UINT_PTR>, UINT> s_running;
    PatchedImports m_framework{"dlgfw.dll",
                               {{"SetTimer", Address(&Set)}, {"KillTimer", Address(&Kill)}}};
};

// A device context with a picture to draw on, of the skin's size or that of a resource.
struct Canvas {
    explicit Canvas(UINT nBitmap = 0, CSize size = {340, 230}, int nDpi = 96)
        : bitmap(nBitmap != 0 ? PictureAt(nDpi, nBitmap)
                              : Bitmap(CreateBitmap(size.cx, size.cy, 1, 32, nullptr))) {}
    // A picture of the resources as it is at a resolution.
    void Lay(UINT nBitmap, int x, int y, int nDpi) const {
        const Canvas picture(nBitmap, {}, nDpi);
        const PixelSize size = SizeOf(picture.bitmap);
        BitBlt(dc.get(), x, y, size.nWidth, size.nHeight, picture.dc.get(), 0, 0, SRCCOPY);
    }
    // From the drawing for 200 % where that is nearer.
    static Bitmap PictureAt(int nDpi, UINT nBitmap) {
        const bool large = nDpi >= 144;
        return ScaledTo(large ? nDpi / 2 : nDpi,
                        LoadResourceBitmap(nBitmap + (large ? BITMAP_AT_200_PERCENT : 0)),
                        Scaling::Smooth);
    }
    const MemoryDc dc{CreateCompatibleDC(nullptr)};
    const Bitmap bitmap;
    const DcSelection selection{dc.get(), bitmap.get()};
};

struct Popup : CPopupAlert {
    using CPopupAlert::GenerateRegion;
    using CPopupAlert::Get24BitPixels;
    std::function<void()> onLink;

protected:
    LRESULT WindowProc(UINT nMessage, WPARAM wParam, LPARAM lParam) override {
        if (const auto act = onLink; act && nMessage == WM_POPUP_LINK_CLICKED) {
            act();
            return 0;
        }
        return CPopupAlert::WindowProc(nMessage, wParam, lParam);
    }
};

class PopupTest : public LibraryTest {
protected:
    PopupTest() {
        Configure(kNoReader);
        Configure(kCardAlert);
        s_announced.clear();
        s_beeps.clear();
        Closed();
    }
    ~PopupTest() override {
        m_popup.reset();
        Closed();
    }

    void Configure(const char* pszKey) {
        m_hive.SetDword(pszKey, "Enable", 1);
        m_hive.SetDword(pszKey, "Duration", 3);
        m_hive.SetString(pszKey, "Message", "Said.");
    }
    bool Init(int nType) {
        EXPECT_NE(m_popup->Create(m_host), 0);
        return m_popup->InitWindow(m_host, nType, GetCurrentThreadId());
    }
    void Send(UINT nMessage, WPARAM wParam = 0, LPARAM lParam = 0) {
        m_popup->SendMessage(nMessage, wParam, lParam);
    }
    void SendPassword(const char* pszText) {
        Send(WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(NewPopupText(pszText)));
    }
    std::string Timers() const { return MadeTimers::Of(*m_popup); }
    void Tick() { Send(WM_TIMER, static_cast<WPARAM>(Timers()[0] - '0')); }
    // The ticks until another timer runs, or none.
    int TickAway() {
        int ticks = 0;
        for (const std::string first = Timers(); Timers() == first && ticks < 1000; ++ticks) {
            Tick();
        }
        return ticks;
    }
    // 0 before Show, 1 between Show and the first tick, 2 showing, 3 waiting, 4 hiding.
    void BringTo(int nState) {
        if (nState >= 1) {
            m_popup->Show();
        }
        if (nState >= 3) {
            TickAway();
        }
        for (int ticks = nState == 4 ? 2 : nState == 2 ? 1 : 0; ticks > 0; --ticks) {
            Tick();
        }
    }

    CRect Place() const {
        CRect place;
        m_popup->GetWindowRect(&place);
        return place;
    }
    int Alpha() const {
        BYTE alpha = 0;
        GetLayeredWindowAttributes(*m_popup, nullptr, &alpha, nullptr);
        return alpha;
    }
    // How often WM_POPUP_CLOSED has come, "window thread", others being served meanwhile.
    std::string Closed() const {
        int window = 0;
        int thread = 0;
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_POPUP_CLOSED) {
                window += message.hwnd == m_host.m_hWnd ? 1 : 0;
                thread += message.hwnd == nullptr ? 1 : 0;
                EXPECT_EQ(message.wParam, 0U);
                EXPECT_EQ(message.lParam, 0);
            } else {
                DispatchMessageA(&message);
            }
        }
        return std::to_string(window) + " " + std::to_string(thread);
    }

    // From top to bottom.
    std::vector<HWND> Controls() const {
        std::vector<HWND> controls;
        for (HWND child = GetWindow(*m_popup, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            controls.push_back(child);
        }
        std::ranges::sort(controls, {}, [&](HWND h) { return RectIn(*m_popup, h).top; });
        return controls;
    }
    static char IsSeen(HWND hControl) {
        return (GetWindowLongA(hControl, GWL_STYLE) & WS_VISIBLE) != 0 ? '+' : '-';
    }
    static std::string TextIn(HWND hControl) { return Control::Of(hControl).strText; }
    // "12,15,40,60"
    static std::string Text(const RECT& r) {
        return std::to_string(r.left) + "," + std::to_string(r.top) + "," +
               std::to_string(r.right) + "," + std::to_string(r.bottom);
    }
    // "789 40,13,335,137 + Said.": identifier, place, whether it is to be seen, text.
    std::string Describe(HWND hControl) const {
        return std::to_string(GetDlgCtrlID(hControl)) + " " + Text(RectIn(*m_popup, hControl)) +
               " " + IsSeen(hControl) + " " + TextIn(hControl);
    }
    std::vector<std::string> Described() const {
        std::vector<std::string> all;
        for (const HWND control : Controls()) {
            all.push_back(Describe(control));
        }
        return all;
    }
    static CHtmlDrawer& DrawerOf(HWND hControl) {
        return static_cast<CHtmlStatic*>(CWnd::FromHandlePermanent(hControl))->Drawer();
    }
    // The button down and up on the first link of a text.
    static void Click(HWND hControl) {
        CHtmlDrawer& drawer = DrawerOf(hControl);
        CRect client;
        GetClientRect(hControl, &client);
        drawer.SetWidth(client.Width());
        const RECT link = drawer.LinkRects(0).at(0);
        const LPARAM in = MAKELPARAM(link.left + 2, link.top + 2);
        SendMessageA(hControl, WM_LBUTTONDOWN, MK_LBUTTON, in);
        SendMessageA(hControl, WM_LBUTTONUP, 0, in);
    }

    static void WINAPI TakeAlert(DWORD dwEvent, HWND hWnd, LONG nObject, LONG) {
        if (dwEvent == EVENT_SYSTEM_ALERT && nObject == OBJID_CLIENT) {
            s_announced.push_back(hWnd);
        }
    }
    static BOOL WINAPI TakeBeep(DWORD dwHertz, DWORD dwMilliseconds) {
        s_beeps += std::to_string(dwHertz) + "/" + std::to_string(dwMilliseconds) + " ";
        return TRUE;
    }

    static inline std::vector<HWND> s_announced;
    static inline std::string s_beeps;
    const PatchedImports m_system{
        nullptr, {{"NotifyWinEvent", Address(&TakeAlert)}, {"Beep", Address(&TakeBeep)}}};
    MadeTimers m_timers;
    HostWindow m_host;
    std::unique_ptr<Popup> m_popup = std::make_unique<Popup>();
};

}  // namespace mvp::test
