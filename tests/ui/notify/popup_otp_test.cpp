// The popup's one-time password: the busy bar, the text whenever it comes, and what becomes of it.
#include <atomic>
#include <cstring>
#include <functional>
#include <optional>
#include <thread>

#include "support/freed_blocks.h"
#include "support/waiting.h"
#include "ui/notify/popup_probe.h"

namespace mvp::test {
namespace {

constexpr char kSecret[] = "740291 is the password of this test, and of no other text";

std::atomic<HWND> g_routineWindow;
std::atomic<DWORD> g_routineThread;

DWORD WINAPI Routine(void* pWindow) {
    g_routineThread = GetCurrentThreadId();
    g_routineWindow = static_cast<HWND>(pWindow);
    return 0;
}

class PopupOtpTest : public PopupTest {
protected:
    void Fetch(const char* pszReader = nullptr) {
        g_routineWindow = nullptr;
        m_popup->SetMessage("Wait.");
        m_popup->SetReader(pszReader);
        EXPECT_TRUE(Init(DIALOG_POPUP_CARD_OTP));
        m_popup->SetThreadRoutine(&Routine);
        EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [] { return g_routineWindow != nullptr; }));
    }
    char* PostText(const char* pszText = kSecret) {
        char* text = NewPopupText(pszText);
        EXPECT_TRUE(m_popup->PostMessage(WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(text)));
        return text;
    }
    HWND Bar() const { return FindWindowExA(*m_popup, nullptr, "VkProgressBar", nullptr); }
    std::string Message() const {
        std::string all;
        for (const HWND control : Controls()) {
            if (GetDlgCtrlID(control) == 789 && TextIn(control) != TextOf(3127)) {
                all += Describe(control);
            }
        }
        return all;
    }
    // Which of the controls are to be seen, from top to bottom.
    std::string Seen() const {
        std::string seen;
        for (const HWND control : Controls()) {
            seen += IsSeen(control);
        }
        return seen;
    }
    // In the middle of the help link's bullet.
    COLORREF Bullet() {
        const Canvas painted;
        Send(WM_ERASEBKGND, reinterpret_cast<WPARAM>(painted.dc.get()));
        return GetPixel(painted.dc.get(), 20 + 9, 155 + 9);
    }
};

TEST_F(PopupOtpTest, ShowsABarUntilThePasswordComesAndThenThat) {
    m_hive.SetString(R"(SOFTWARE\Quillon\Veskara\GlobalConfig)", "VeskaraHelpPath", "v.chm");
    m_hive.SetDword(kAgent, "OTPWindowTimeout", 7);
    m_hive.SetDword(R"(SOFTWARE\Quillon\Veskara\Notification)", "Enablenotificationbip", 1);
    Fetch();
    EXPECT_EQ(g_routineWindow, m_popup->m_hWnd);
    EXPECT_NE(g_routineThread, GetCurrentThreadId());
    EXPECT_TRUE(m_log.Contains(2, "Reader name empty => no register to vkevent"));
    ASSERT_NE(Bar(), nullptr);
    EXPECT_EQ(Describe(Bar()), "45 15,20,325,35 + Wait.");
    EXPECT_EQ(Message(), "789 10,35,335,137 + Wait.");
    EXPECT_EQ(GetWindowLongA(Bar(), GWL_STYLE) & ~WS_DISABLED, 0x54000000L);
    BringTo(3);
    EXPECT_EQ(Seen(), "++---") << "bar, message, title, close and help";
    EXPECT_EQ(Bullet(), GetPixel(Canvas(3102).dc.get(), 29, 164)) << "the bare skin";
    // Neither a beep nor a stay before the password is there.
    EXPECT_EQ(Timers() + s_beeps, "-");
    m_popup->SetSkin(3102, true, true, -1, -1, -1);
    EXPECT_EQ(Describe(Bar()), "45 15,76,325,91 + Wait.") << "a third down the skin";
    EXPECT_TRUE(m_popup->InitWindow(m_host, 2, 0));
    EXPECT_TRUE(Seen().ends_with("--")) << "not while the bar runs";

    s_announced.clear();
    PostText();
    Closed();
    EXPECT_EQ(Bar(), nullptr);
    EXPECT_EQ(Message(), "789 40,13,335,117 + " + std::string(kSecret));
    EXPECT_EQ(Seen(), "++++");
    EXPECT_EQ(Bullet(), GetPixel(Canvas(3126).dc.get(), 9, 9));
    EXPECT_EQ(Timers() + s_beeps, "2:7000");
    EXPECT_EQ(s_announced, std::vector<HWND>{*m_popup});
    // White on a plate.
    const WindowDc text(ChildWindowFromPoint(*m_popup, {60, 60}));
    int white = 0;
    for (int i = 0; i < 200 * 40; ++i) {
        white += GetPixel(text.get(), i % 200, i / 200) == RGB(255, 255, 255);
    }
    EXPECT_GT(white, 50);
    // The plate is clear of the icon, and no taller than the text.
    for (const POINT at : {POINT{1, 9}, POINT{2, 9}, POINT{9, 0}, POINT{9, 99}}) {
        EXPECT_EQ(GetPixel(text.get(), at.x, at.y) == RGB(0x17, 0x4A, 0x5C), at.x > 1 && at.y < 99);
    }
    // A second one takes the place of the first, a line higher.
    PostText("another");
    Closed();
    EXPECT_EQ(Message(), "789 40,13,335,102 + another");
}

TEST_F(PopupOtpTest, BeepsWhenItIsThereIfItMay) {
    constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\Notification)";
    for (const auto& enabled : std::vector<std::optional<DWORD>>{{}, 0U, 1U}) {
        if (enabled) {
            m_hive.SetDword(kKey, "Enablenotificationbip", *enabled);
        }
        Init(0);
        BringTo(3);
        EXPECT_EQ(s_beeps, enabled.value_or(0) != 0 ? "750/300 " : "");
    }
}

// Every block that a text was posted in is looked at as it is given back.
TEST_F(PopupOtpTest, ShowsEachTextInItsTimeAndFreesItOnceAndWiped) {
    std::map<const void*, int> frees;
    std::size_t dirty = 0;
    const FreedBlocks look({nullptr}, [&](const void* pBlock, std::size_t nBytes) {
        if (const auto found = frees.find(pBlock); found != frees.end()) {
            ++found->second;
            dirty += DirtyBytes(pBlock, nBytes);
        }
    });
    const auto wait = [](char*) {};
    const auto end = [&](char*) { m_popup = std::make_unique<Popup>(); };
    const auto post = [&](char* pszText) {
        m_popup->PostMessage(WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(pszText));
    };
    const struct {
        const char* pszName;
        int nState;  // in which it comes
        std::function<void(char*)> then;
        const char* pszShown;  // null: the popup has gone
        int nFrees = 1;
    } flows[] = {
        {"in its time", 3, wait, kSecret},
        {"before Show", 0, wait, kSecret},
        {"before a step", 1, wait, kSecret},
        {"on its way", 2, wait, kSecret},
        {"twice", 2, post, kSecret},
        {"replaced", 2, [&](char*) { PostText("another"); }, "another", 0},
        {"made anew", 2, [&](char*) { Init(0); }, "Said."},
        {"kept", 2, end, nullptr},
        {"unseen", 3, end, nullptr},
    };
    for (const auto& flow : flows) {
        SCOPED_TRACE(flow.pszName);
        Fetch();
        BringTo(flow.nState);
        m_log.Clear();
        char* text = PostText();
        frees = {{text, 0}};
        if (flow.nState != 3) {
            Closed();
            EXPECT_TRUE(
                m_log.Contains(2, "m_nAnimStatus != IDT_WAITING => Treat this event later"));
            EXPECT_NE(Bar(), nullptr);
        }
        flow.then(text);
        for (int i = 0; i < 2 && flow.pszShown != nullptr; ++i) {  // and once
            Closed();
            m_popup->Show();
            if (Timers()[0] == '1') {
                TickAway();
            }
            Closed();
            EXPECT_EQ(Bar(), nullptr);
            EXPECT_TRUE(Message().ends_with(flow.pszShown)) << Message();
            EXPECT_EQ(Timers(), flow.pszShown == std::string("Said.") ? "2:3000" : "2:15000");
            m_popup->Hide();
        }
        EXPECT_FALSE(m_log.ContainsPart("no text of the process's heap"));
        EXPECT_EQ(frees[text], flow.nFrees);
        frees.clear();
        if (flow.nFrees == 0) {
            HeapFree(GetProcessHeap(), 0, text);
        }
        end(nullptr);
    }
    EXPECT_EQ(dirty, 0U);
}

TEST_F(PopupOtpTest, TakesNoTextThatIsNoBlockAndNoRoutine) {
    Fetch();
    m_popup->SetThreadRoutine(nullptr);
    BringTo(3);
    // One that is wiped in spite of it must not take the stack along, and the report with it.
    static constexpr char kFixed[] = "no block";
    for (const LPARAM bad : {LPARAM{0}, reinterpret_cast<LPARAM>(kFixed)}) {
        Send(WM_POPUP_OTP_READY, 0, bad);
    }
    EXPECT_NE(Bar(), nullptr);
    EXPECT_EQ(Timers(), "-");
    // A block without a terminator ends with itself.
    auto* block = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, 5));
    std::memcpy(block, "12345", 5);
    Send(WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(block));
    EXPECT_TRUE(Message().ends_with("+ 12345")) << Message();
}

TEST_F(PopupOtpTest, HearsOfItsReaderAndPostsNothingToADeadWindow) {
    Fetch("Reader A");
    EXPECT_TRUE(m_log.Contains(2, "Reader name (Reader A) => register to vkevent"));
    BringTo(3);
    RemoveCard("Reader B");
    EXPECT_EQ(Closed(), "0 0");
    RemoveCard();
    EXPECT_EQ(Closed(), "1 1");
    m_popup = std::make_unique<Popup>();
    RemoveCard();
    Fetch(nullptr);
    RemoveCard();
    EXPECT_EQ(Closed(), "0 0");
}

TEST_F(PopupOtpTest, EndsWhatWasBegunForItWithItsNotice) {
    Fetch();
    m_popup->SetThreadRoutine(&Routine);
    EXPECT_EQ(Controls().size(), 5U) << "one bar";
    EXPECT_FALSE(IsWindowEnabled(Bar())) << "a timer before Show";
    BringTo(3);
    EXPECT_TRUE(IsWindowEnabled(Bar()));
    m_popup->Hide();
    EXPECT_FALSE(IsWindowEnabled(Bar())) << "a timer behind the scenes";

    // Another notice has no bar, takes no password, and goes after its stay.
    EXPECT_TRUE(m_popup->InitWindow(m_host, DIALOG_POPUP_NO_READER, GetCurrentThreadId()));
    EXPECT_EQ(Bar(), nullptr);
    BringTo(3);
    PostText();
    Closed();
    EXPECT_TRUE(Message().ends_with("+ Said.")) << Message();
    EXPECT_EQ(Timers(), "2:3000");

    // A window that goes takes its texts along, but not the end of its thread.
    PostText();
    PostQuitMessage(7);
    m_popup->DestroyWindow();
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) {
    }
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, 7U);
}

}  // namespace
}  // namespace mvp::test
