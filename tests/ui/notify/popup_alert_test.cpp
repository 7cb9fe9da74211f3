// The popup's life: how it is made, what stands in it, what the administrator says of it, and how
// it ends.
#include "mvpingui/popup_alert.h"

#include <functional>
#include <thread>
#include <tuple>

#include "platform/resolution.h"
#include "support/resource_counts.h"
#include "ui/dialogs/enlarged_dialogs.h"
#include "ui/notify/popup_probe.h"

namespace mvp::test {
namespace {

using Texts = std::vector<std::string>;

constexpr char kGlobal[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr int kStates = 5;

TEST_F(PopupTest, IsMadeAsHostsExpectItAndAnew) {
    EXPECT_EQ(m_popup->Create(m_host), 1);
    constexpr char kMade[] =
        "2 Calling CreateEx(); CPopupAlert::OnCreate{} 2 m_bHasBeenCreated = 1; } ";
    EXPECT_EQ(LogShape(), "CPopupAlert::CPopupAlert{} CPopupAlert::Create{" + std::string(kMade));
    const HWND first = *m_popup;
    EXPECT_EQ(GetWindowLongA(first, GWL_STYLE) & ~WS_CLIPSIBLINGS, 0x9004000CL);
    EXPECT_EQ(GetWindowLongA(first, GWL_EXSTYLE), 0x108 | 0x80000);
    EXPECT_EQ(TextIn(first), "");
    EXPECT_EQ(GetWindow(first, GW_OWNER), m_host.m_hWnd);
    EXPECT_EQ(GetClassLongA(first, GCL_STYLE), 0U);
    EXPECT_EQ(GetClassLongPtrA(first, GCLP_HCURSOR),
              reinterpret_cast<ULONG_PTR>(LoadCursorA(nullptr, IDC_ARROW)));
    EXPECT_EQ(GetClassLongPtrA(first, GCLP_HBRBACKGROUND),
              reinterpret_cast<ULONG_PTR>(GetSysColorBrush(COLOR_WINDOW)));

    m_log.Clear();
    EXPECT_EQ(m_popup->Create(nullptr), 1);
    EXPECT_EQ(LogShape(), "CPopupAlert::Create{2 Calling OnDestroy(); CPopupAlert::OnDestroy{} " +
                              std::string(kMade));
    EXPECT_FALSE(IsWindow(first));
    EXPECT_EQ(GetWindow(*m_popup, GW_OWNER), nullptr);
    // A window that went by another way is not destroyed once more.
    m_popup->DestroyWindow();
    m_log.Clear();
    EXPECT_EQ(m_popup->Create(nullptr), 1);
    EXPECT_EQ(LogShape(), "CPopupAlert::Create{" + std::string(kMade));
    EXPECT_EQ(m_popup->Create(reinterpret_cast<HWND>(1)), 0);
    EXPECT_TRUE(m_log.Contains(2, "m_bHasBeenCreated = 0"));
    m_popup->Show();
    EXPECT_FALSE(m_popup->InitWindow(m_host, 0, 0));
}

// Where they stand the layout's own test holds.
TEST_F(PopupTest, HoldsTheControlsOfItsType) {
    static std::map<LRESULT, std::string> described;
    const auto makeFont = +[](const LOGFONTA* p) WINAPI {
        HFONT font = CreateFontIndirectA(p);
        described[reinterpret_cast<LRESULT>(font)] =
            std::to_string(p->lfHeight) + "/" + std::to_string(p->lfWeight);
        return font;
    };
    const PatchedImports fonts("dlgfw.dll", {{"CreateFontIndirectA", Address(makeFont)}});
    const std::string close = "<a msg=\"msg\">" + TextOf(3102) + "</a>";
    const std::string help = "<a msg=\"msg\">" + TextOf(3115) + "</a>";
    const std::string kInit = "CPopupAlert::InitWindow: ";
    const struct {
        int type;
        bool bHelp;  // configured
        std::string strText, strScope, strLog;
        std::string strLinks;  // close and help: + for those that are to be seen
        WPARAM nTopic;
        int nDown = 20;  // 0 with the help link below
    } cases[] = {
        {0, true, "Said.", kInit, "iWndType = DIALOG_POPUP_NO_READER", "++", 1017, 0},
        {0, false, "Said.", kInit, "iWndType = DIALOG_POPUP_NO_READER", "+-", 1017},
        {1, true, "Said.", kInit, "iWndType = DIALOG_POPUP_CARD_ALERT", "+-", 1016},
        {2, true, "Wait.", "", "iWndType = DIALOG_POPUP_CARD_OTP", "++", 1025, 0},
        // Told once, shown once.
        {2, false, "", "", "iWndType = DIALOG_POPUP_CARD_OTP", "+-", 1025},
        {3, true, "", kInit, "iWndType = 3", "--", 0},
        {-1, true, "", kInit, "iWndType = -1", "--", 0},
    };
    m_popup->SetMessage("Wait.");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type);
        m_hive.CreateKey(kGlobal);
        if (c.bHelp) {
            m_hive.SetString(kGlobal, "VeskaraHelpPath", "");
        }
        m_log.Clear();
        EXPECT_TRUE(Init(c.type));
        EXPECT_TRUE(m_log.Contains(2, c.strScope + c.strLog)) << m_log.Dump();
        EXPECT_TRUE(
            m_log.Contains(2, c.bHelp ? "GetDisplayHelpValue (1)" : "GetDisplayHelpValue (0)"));
        const auto line = [&](int nId, int nTop, char seen, const std::string& text) {
            const int top = nTop + c.nDown;
            return std::to_string(nId) + " 0," + std::to_string(top) + ",340," +
                   std::to_string(top + 15) + " " + seen + " " + text;
        };
        EXPECT_EQ(
            Described(),
            (Texts{"789 40,13,335,137 + " + c.strText, line(789, 116, '+', TextOf(3127)),
                   line(790, 137, c.strLinks[0], close), line(790, 157, c.strLinks[1], help)}));
        std::string looks;
        for (const HWND control : Controls()) {
            const CPoint margins = DrawerOf(control).Margins();
            looks += described[SendMessageA(control, WM_GETFONT, 0, 0)] + " " +
                     std::to_string(margins.x) + "," + std::to_string(margins.y) + "; ";
        }
        EXPECT_EQ(looks, "-11/400 5,5; -11/700 45,0; -11/400 45,0; -11/400 45,0; ");
        BringTo(3);
        m_popup->RedrawWindow();
        const Canvas skin(3102);
        const WindowDc text(Controls()[0]);
        EXPECT_EQ(GetPixel(text.get(), 200, 2), GetPixel(skin.dc.get(), 240, 15)) << "behind it";
        for (const bool there : {false, true}) {
            CWnd service;  // that shows help
            service.CreateEx(0, "STATIC", there ? "vkcrdsub" : "", WS_POPUP, 0, 0, 9, 9, nullptr,
                             nullptr);
            m_log.Clear();
            Click(Controls()[3]);
            MSG asked{};
            PeekMessageA(&asked, service, WM_USER + 203, WM_USER + 203, PM_REMOVE);
            EXPECT_EQ(asked.wParam, there ? c.nTopic : 0);
            EXPECT_EQ(m_log.Contains(2, (c.nTopic != 0 ? "" : "m_") + c.strLog), there);
            service.DestroyWindow();
        }
        EXPECT_EQ(Closed(), "0 0");
        m_popup->Hide();
        Closed();
        m_hive.DeleteKey(kGlobal);
    }
}

// The icon is that of the window that was filled last, in every one.
TEST_F(PopupTest, PaintsBulletsAndTheIconOnItsSkin) {
    m_hive.SetString(kGlobal, "VeskaraHelpPath", "v.chm");
    for (const int percent : {100, 150, 200}) {
        SCOPED_TRACE(percent);
        const EnlargedDialogs at(percent);
        const auto pixels = [=](int nPixels) { return PixelsAt(96 * percent / 100, nPixels); };
        const auto paints = [=](const Popup& popup, UINT icon, int link, int help) {
            const CSize skin(pixels(340), pixels(230));
            const Canvas expected(0, skin);
            const Canvas painted(0, skin);
            expected.Lay(3102, 0, 0, 96 * percent / 100);
            for (const auto& [bullet, top] : {std::pair<UINT, int>{3125, link}, {3126, help}}) {
                const int x = top != 0 ? pixels(20) : skin.cx;  // beside it: not at all
                expected.Lay(bullet, x, pixels(top), 96 * percent / 100);
            }
            DrawIconEx(expected.dc.get(), pixels(12), pixels(15),
                       LoadResourceIcon(icon, pixels(32)), pixels(32), pixels(32), 0, nullptr,
                       DI_NORMAL);
            popup.SendMessage(WM_ERASEBKGND, reinterpret_cast<WPARAM>(painted.dc.get()));
            const auto bits = [=](const Canvas& canvas) {
                std::vector<DWORD> words(static_cast<std::size_t>(skin.cx * skin.cy));
                GetBitmapBits(canvas.bitmap.get(), skin.cx * skin.cy * 4, words.data());
                return words;
            };
            return bits(expected) == bits(painted);
        };
        Init(0);
        EXPECT_TRUE(paints(*m_popup, 3130, 135, 155));
        Popup second;
        second.Create(m_host);
        second.InitWindow(m_host, 1, 0);
        EXPECT_TRUE(paints(second, 3129, 155, 0));
        EXPECT_TRUE(paints(*m_popup, 3129, 135, 155));
        second.InitWindow(m_host, 2, 0);
        EXPECT_TRUE(paints(second, 3128, 135, 155));
        second.InitWindow(m_host, 9, 0);
        EXPECT_TRUE(paints(second, 0, 0, 0));
    }
}

TEST_F(PopupTest, HidesInEveryStateAndTellsOnce) {
    const std::vector<std::pair<const char*, std::function<void()>>> ways = {
        {"Hide", [&] { m_popup->Hide(); }},
        {"its link", [&] { Click(Controls()[2]); }},
        {"the card's message", [&] { Send(RegisterWindowMessageA("VKCardRemovedEvent"), 1); }},
        {"a removed card", [] { RemoveCard(); }},
        {"Hide on another thread", [&] { std::thread([&] { m_popup->Hide(); }).join(); }},
    };
    for (const auto& [name, hide] : ways) {
        for (int state = 0; state < kStates; ++state) {
            SCOPED_TRACE(testing::Message() << name << " in state " << state);
            EXPECT_TRUE(Init(DIALOG_POPUP_CARD_ALERT));
            BringTo(state);
            EXPECT_EQ(Closed(), "0 0");
            EXPECT_TRUE(m_popup->IsWindowVisible());
            hide();
            EXPECT_EQ(Closed(), "1 1");
            EXPECT_EQ(Timers(), "-");
            EXPECT_FALSE(m_popup->IsWindowVisible());
            EXPECT_EQ(Place().TopLeft(), CPoint(0, 0));
            EXPECT_EQ(Alpha(), 0);
            for (const WPARAM timer : {1U, 2U, 3U}) {
                Send(WM_TIMER, timer);
            }
            EXPECT_EQ(Timers() + Closed(), "-0 0");
        }
    }
    // A popup that came to be about something else is not taken down by a card.
    EXPECT_TRUE(m_popup->InitWindow(m_host, DIALOG_POPUP_NO_READER, 0));
    RemoveCard();
    // Nor does one without its window hear of it.
    EXPECT_TRUE(Init(DIALOG_POPUP_CARD_ALERT));
    m_popup->DestroyWindow();
    RemoveCard();
    EXPECT_EQ(Closed(), "0 0");
}

TEST_F(PopupTest, TellsWhomItCanReach) {
    DWORD gone = 0;
    std::thread([&] { gone = GetCurrentThreadId(); }).join();
    const std::tuple<HWND, DWORD, const char*> cases[] = {{m_host, GetCurrentThreadId(), "1 1"},
                                                          {m_host, 0, "1 1"},
                                                          {nullptr, 0, "0 1"},
                                                          {m_host, gone, "1 0"},
                                                          {nullptr, gone, "0 0"}};
    for (const auto& [parent, thread, closed] : cases) {
        m_log.Clear();
        m_popup->Create(parent);
        EXPECT_TRUE(m_popup->InitWindow(parent, 0, thread));
        m_popup->Show();
        m_popup->Hide();
        EXPECT_EQ(Closed(), closed);
        EXPECT_EQ(m_log.Contains(2, "CPopupAlert::Hide: m_hWndParent = NULL"), parent == nullptr);
        EXPECT_EQ(m_log.Contains(1, "CPopupAlert::Hide: PostThreadMessage failed"), thread == gone);
        EXPECT_TRUE(m_log.Contains(
            0, "CPopupAlert::Hide: m_dwParentThreadID = " + std::to_string(thread) + " "));
    }
    // Another parent than it was made for is told from then on.
    Init(0);
    HostWindow other;
    for (const HWND parent : {other.m_hWnd, reinterpret_cast<HWND>(1)}) {
        EXPECT_TRUE(m_popup->InitWindow(parent, 0, 0));
        EXPECT_EQ(GetAncestor(*m_popup, GA_PARENT), other.m_hWnd);
        m_popup->Hide();
        MSG message;
        EXPECT_TRUE(PeekMessageA(&message, other, WM_POPUP_CLOSED, WM_POPUP_CLOSED, PM_REMOVE));
        EXPECT_EQ(Closed(), "0 1");
    }
}

TEST_F(PopupTest, TakesTheForegroundFromNobody) {
    m_host.SetForegroundWindow();
    m_host.m_ok.SetFocus();
    Init(0);
    BringTo(3);
    EXPECT_EQ(m_popup->SendMessage(WM_MOUSEACTIVATE, 0, MAKELPARAM(HTCLIENT, WM_LBUTTONDOWN)),
              MA_NOACTIVATE);
    SetWindowPos(*m_popup, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(GetForegroundWindow(), m_host.m_hWnd);
    EXPECT_EQ(GetFocus(), m_host.m_ok.m_hWnd);
    // All of it is client area, even the frame.
    const CRect r = Place();
    for (const LONG x : {r.left - 1, r.left, r.CenterPoint().x}) {
        EXPECT_EQ(m_popup->SendMessage(WM_NCHITTEST, 0, MAKELPARAM(x, r.top)),
                  x < r.left ? HTNOWHERE : HTCLIENT);
    }
    m_popup->Hide();
    EXPECT_EQ(GetForegroundWindow(), m_host.m_hWnd);
}

TEST_F(PopupTest, SaysNothingWithoutTheResources) {
    FreeResourceModule();
    for (const int type : {0, 1, 2, 3}) {
        EXPECT_FALSE(Init(type));
        BringTo(3);
        m_popup->Hide();
    }
}

TEST_F(PopupTest, MayGoInEveryStateAndKeepsNothing) {
    const auto live = [&](int round) {
        SCOPED_TRACE(round);
        // Of the others none slides: that is what takes the time.
        const Animation animation(round % 4 == DIALOG_POPUP_CARD_ALERT);
        auto parent = std::make_unique<HostWindow>();
        EXPECT_NE(m_popup->Create(*parent), 0);
        EXPECT_TRUE(m_popup->InitWindow(*parent, round % 4, 0));
        if (round % 4 == DIALOG_POPUP_CARD_OTP) {
            m_popup->SetThreadRoutine(&ReturnAtOnce);
        }
        BringTo(round % kStates);
        SendPassword("740291");
        m_popup->SetSkin(3102, true, true, 0, 0, 0);
        m_popup->InitWindow(*parent, (round + 1) % 3, 0);
        const HWND window = *m_popup;
        if (round % 3 == 0) {
            m_popup = std::make_unique<Popup>();
        } else if (round % 3 == 1) {
            m_popup->DestroyWindow();
        } else {
            parent.reset();
        }
        EXPECT_FALSE(IsWindow(window));
        Closed();
        m_popup->Show();
        m_popup->Hide();
        EXPECT_EQ(Closed(), "0 1");
        EXPECT_FALSE(m_popup->InitWindow(m_host, 0, 0));
        m_log.Clear();
    };
    // Twenty rounds bring each type to each state. The system keeps some memory for the regions of
    // windows and for threads that just ended, and as many device contexts as were ever in use.
    ExpectRoundsKeepNothing(20, 60, live, {.objects = 4, .threads = 2, .privateBytes = 4 << 20});
}

TEST_F(PopupTest, MayEndInItsOwnLinkBesideAnother) {
    Popup other;
    EXPECT_TRUE(other.Create(m_host) && other.InitWindow(m_host, DIALOG_POPUP_NO_READER, 0));
    for (const bool whole : {false, true}) {
        EXPECT_TRUE(Init(DIALOG_POPUP_CARD_ALERT));
        m_popup->onLink = [&] { whole ? m_popup.reset() : void(m_popup->DestroyWindow()); };
        const HWND window = *m_popup;
        Click(Controls()[2]);
        EXPECT_TRUE(!IsWindow(window) && IsWindow(other));
    }
}

// --- what the administrator says, from the registry to what is seen ---

// One value in the place of what a popup is set up with.
struct Setting {
    const char* pszName;
    DWORD dwType;  // REG_NONE: it is not there
    std::string bytes;
    const char* pszStay = "2:3000";
    std::string strText = "Said.";  // "default": the library's own
    bool bShown = true;
};

std::string Bytes(DWORD dwValue) {
    return {reinterpret_cast<const char*>(&dwValue), sizeof dwValue};
}

std::vector<Setting> Settings() {
    const std::string most(259, 'm');
    return {
        {"Enable", REG_NONE, "", "2:0", "", false},
        {"Enable", REG_DWORD, Bytes(0), "2:0", "", false},
        {"Enable", REG_DWORD, Bytes(0x80000000)},
        {"Enable", REG_SZ, "1", "2:0", "", false},
        {"Enable", REG_QWORD, Bytes(1) + Bytes(0), "2:0", "", false},
        {"Duration", REG_NONE, "", "2:0"},
        {"Duration", REG_DWORD, Bytes(0), "2:1000"},
        {"Duration", REG_DWORD, Bytes(4294968), "2:2147483647"},
        {"Duration", REG_SZ, "9", "2:0"},
        {"Message", REG_NONE, "", "2:3000", ""},
        {"Message", REG_DWORD, Bytes(65), "2:3000", ""},
        {"Message", REG_SZ, std::string(1, '\0'), "2:3000", ""},
        {"Message", REG_SZ, {most.c_str(), 260}, "2:3000", most},
        {"Message", REG_SZ, most + std::string("m\0", 2), "2:3000", ""},
        {"Message", REG_SZ, most + "m", "2:3000", most + "m"},  // without its terminator
        {"Message", REG_SZ, "caf\xE9 \x80", "2:3000", "caf\xE9 \x80"},
        {"Message", REG_SZ, R"(<b>\na\n)", "2:3000", "<b>\na\n"},
        {"Message", REG_SZ, R"(<a href\n="http://x.example/">go</a>)", "2:3000", "default"},
    };
}

TEST_F(PopupTest, FollowsTheRegistry) {
    const Animation none(false);
    for (const bool card : {false, true}) {
        const char* key = card ? kCardAlert : kNoReader;
        const std::string name = card ? "DIALOG_POPUP_CARD_ALERT" : "DIALOG_POPUP_NO_READER";
        for (const Setting& setting : Settings()) {
            SCOPED_TRACE(key + (": " + setting.bytes));
            Configure(key);
            if (setting.dwType == REG_NONE) {
                m_hive.DeleteValue(key, setting.pszName);
            } else {
                m_hive.SetRaw(key, setting.pszName, setting.dwType, setting.bytes);
            }
            m_log.Clear();
            EXPECT_EQ(Init(card ? 1 : 0), setting.bShown);
            const bool isDefault = setting.strText == "default";
            const std::string text = isDefault ? TextOf(card ? 3039 : 3038) : setting.strText;
            EXPECT_EQ(TextIn(Controls()[0]), text);
            m_popup->Show();
            EXPECT_EQ(Timers(), setting.pszStay);
            const auto logged = [&](const std::string& line) {
                return m_log.Contains(2, "CPopupAlert::GetRegistryParameters: " + line);
            };
            EXPECT_TRUE(logged("returning csText = " + text)) << m_log.Dump();
            EXPECT_EQ(logged("Security pattern matched !"), isDefault);
            EXPECT_EQ(logged("Displaying default message " + name), isDefault);
        }
        m_hive.DeleteKey(key);
        EXPECT_FALSE(Init(card ? 1 : 0));
    }
}

TEST_F(PopupTest, FollowsTheTimeoutOfPasswords) {
    const Animation none(false);
    for (const Setting& setting : {Setting{"", REG_DWORD, Bytes(0), "2:0"},
                                   {"", REG_DWORD, Bytes(4), "2:4000"},
                                   {"", REG_DWORD, Bytes(4294968), "2:2147483647"},
                                   {"", REG_SZ, "4", "2:15000"}}) {
        m_hive.SetRaw(kAgent, "OTPWindowTimeout", setting.dwType, setting.bytes);
        EXPECT_TRUE(Init(DIALOG_POPUP_CARD_OTP));
        m_popup->Show();
        EXPECT_EQ(Timers(), setting.pszStay) << setting.dwType;
    }
}

}  // namespace
}  // namespace mvp::test
