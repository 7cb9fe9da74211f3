// The control: painting, links, hover, keyboard.
#include <array>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "ui/richtext/canvas.h"
#include "ui/richtext/control/html_host.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HtmlStatic : public testing::Test {
protected:
    // What the control draws when it is asked to.
    const Canvas& Print(const Canvas& canvas) {
        m_host.m_pStatic->SendMessage(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(canvas.Dc()),
                                      PRF_CLIENT);
        return canvas;
    }

    HtmlHost m_host;
};

TEST_F(HtmlStatic, PaintsOnWhatTheDrawingModeSays) {
    CHtmlStatic& control = m_host.Add("text");
    EXPECT_EQ(m_host.At(195, 75), HtmlHost::kStatic);
    control.SetDrawingMode(CHtmlStatic::kTransparent);
    EXPECT_EQ(m_host.At(100, 60), HtmlHost::kBackground);
    EXPECT_EQ(m_host.At(195, 75), HtmlHost::kMark) << "the parent's picture, in its place";
    const Canvas canvas(200, 80);
    EXPECT_EQ(Print(canvas).At(100, 60), HtmlHost::kBackground);
    EXPECT_EQ(canvas.At(195, 75), HtmlHost::kMark);
}

TEST_F(HtmlStatic, TakesTextMarginsColoursAndFont) {
    CHtmlStatic& control = m_host.Add("<b>first</b>");
    EXPECT_EQ(control.Drawer().PlainText(), "first") << "the text it is created with";
    control.SetWindowText("second");
    EXPECT_EQ(control.Drawer().PlainText(), "second");
    CString text;
    control.GetWindowText(text);
    EXPECT_EQ(text, "second");

    control.SetWindowText("<a msg=m>n</a>");
    const RECT before = m_host.LinkRect(0);
    control.SetMargins(45, 7);
    EXPECT_EQ(m_host.LinkRect(0).left - before.left, 45);
    EXPECT_EQ(m_host.LinkRect(0).top - before.top, 7);

    // The handle is kept, its font's description is copied: the font may go at once.
    LOGFONTA description{};
    description.lfHeight = -30;
    HFONT font = CreateFontIndirectA(&description);
    control.SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    EXPECT_EQ(control.SendMessage(WM_GETFONT), reinterpret_cast<LRESULT>(font));
    DeleteObject(font);
    EXPECT_GT(m_host.LinkRect(0).bottom - m_host.LinkRect(0).top, 29);

    control.SetWindowText("<font size=60px>\x95</font>");
    control.SetColors(RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255));
    const Canvas canvas(200, 80);
    EXPECT_GT(Print(canvas).CountOf(RGB(255, 255, 255)), 20);
}

TEST_F(HtmlStatic, IsBoundToAControlThatIsThere) {
    const HWND made = CreateWindowA("STATIC", "<i>from</i> a template", WS_CHILD, 0, 0, 140, 40,
                                    m_host, nullptr, nullptr, nullptr);
    CHtmlStatic control;
    ASSERT_TRUE(control.SubclassWindow(made));
    EXPECT_EQ(control.Drawer().PlainText(), "from a template");
}

TEST_F(HtmlStatic, KnowsItsLinksBeforeItIsPainted) {
    m_host.ShowWindow(SW_HIDE);
    CHtmlStatic& control = m_host.Add("one two three <a msg=m>link</a>");
    EXPECT_EQ(m_host.LinkRect(0).top, 0) << "all on one line";
    control.MoveWindow(0, 0, 40, 80, FALSE);
    EXPECT_GT(m_host.LinkRect(0).top, 10);
}

TEST_F(HtmlStatic, LinksDoWhatTheySayOrAreLogged) {
    const LogRecorder log;
    CHtmlStatic& control = m_host.Add(
        "<a msg=\"one &amp; only\">first</a> <a href=http://a.example/>second</a> "
        "<a msg=both href=http://b.example/>third</a> plain");
    for (const int linkIndex : {0, 1, 2}) {
        m_host.Click(linkIndex);
    }
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("one & only", "both"));
    EXPECT_EQ(m_host.m_lParam, 77);
    EXPECT_THAT(m_host.m_shell.m_aOpened, ElementsAre("http://a.example/"));
    EXPECT_THAT(m_host.m_shell.m_aStarted, IsEmpty());

    // The shell's errors end at 32.
    m_host.m_shell.m_nResult = 32;
    m_host.Click(1);
    EXPECT_THAT(log.Texts(1), IsEmpty());
    m_host.m_shell.m_strCommand.clear();
    m_host.Click(1);
    m_host.m_shell.m_bThrows = true;
    m_host.Click(1);
    EXPECT_THAT(log.Texts(1), ElementsAre("CHtmlDrawer::FollowLink: the link was not opened",
                                          "CHtmlDrawer::FollowLink: exception"));
    EXPECT_THAT(m_host.m_shell.m_aStarted,
                ElementsAre("\"C:\\Programs\\browser.exe\" -new  http://a.example/"));

    // Pressed on one link and let go on another, or pressed beside it: nothing.
    m_host.Click(0, 1);
    m_host.Click(kNoLink, 0);
    control.SetLinkCallback(nullptr, HtmlHost::kLinkMessage, 0);
    m_host.Click(0);
    control.SetLinkCallback(m_host, 0, 0);
    m_host.Click(0);
    EXPECT_EQ(m_host.m_aMessages.size(), 2u);
    EXPECT_EQ(m_host.m_shell.m_aOpened.size(), 3u);
}

TEST_F(HtmlStatic, TellsWhyNothingIsDrawn) {
    static bool throws;
    static std::vector<std::string> failures;
    throws = false;
    failures.clear();
    CHtmlDrawer drawer(
        [](LPCSTR, LPCSTR) -> HINSTANCE {
            return throws ? throw std::bad_alloc() : GetModuleHandleA("user32.dll");
        },
        richtext::SystemShell(),
        [](const char* pszFailure) noexcept { failures.emplace_back(pszFailure); });
    drawer.SetText("<icon idres=32512>");
    EXPECT_GT(drawer.Measure(200).cy, 0);
    throws = true;
    const Canvas canvas(200, 80, drawer);
    drawer.SetText("<icon idres=32512>");
    drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
    EXPECT_THAT(failures, ElementsAre("CHtmlDrawer::Draw: exception",
                                      "CHtmlDrawer::Layout: the text was not laid out"));
}

TEST_F(HtmlStatic, LinkTextsBecomeLinks) {
    CHtmlStatic& control = m_host.Add("");
    control.SetLinkText(CHtmlStatic::LinkKind::Msg, "msg", "Close");
    CString text;
    control.GetWindowText(text);
    EXPECT_EQ(text, "<a msg=\"msg\">Close</a>");
    m_host.Click(0);
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("msg"));
    control.SetLinkText(CHtmlStatic::LinkKind::Href, "http://c.example/", "Open");
    m_host.Click(0);
    EXPECT_THAT(m_host.m_shell.m_aOpened, ElementsAre("http://c.example/"));
}

TEST_F(HtmlStatic, MayGoWhileALinkIsFollowed) {
    m_host.Add("<a msg=m>link</a>");
    m_host.m_bDeletesControl = true;
    m_host.Click(0);
    EXPECT_EQ(m_host.m_pStatic, nullptr);
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("m"));
}

TEST_F(HtmlStatic, HoverRepaintsTheLinkAlone) {
    CHtmlStatic& control = m_host.Add("before <a msg=m>link</a> after <a msg=n>other</a>");
    m_host.MoveTo(kNoLink);
    EXPECT_EQ(control.Drawer().HoverLink(), kNoLink);
    control.UpdateWindow();

    m_host.MoveTo(0);
    EXPECT_EQ(control.Drawer().HoverLink(), 0);
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_HAND));
    RECT dirty{};
    ASSERT_TRUE(GetUpdateRect(control, &dirty, FALSE));
    const RECT link = m_host.LinkRect(0);
    EXPECT_EQ(dirty.top, link.top);
    EXPECT_EQ(dirty.bottom, link.bottom);
    EXPECT_NEAR(dirty.left, link.left, 3);
    EXPECT_NEAR(dirty.right, link.right, 3);
    control.UpdateWindow();
    m_host.MoveTo(0);
    EXPECT_FALSE(GetUpdateRect(control, &dirty, FALSE)) << "the same link again";

    m_host.MoveTo(1);
    EXPECT_EQ(control.Drawer().HoverLink(), 1);
    control.SendMessage(WM_MOUSELEAVE);
    EXPECT_EQ(control.Drawer().HoverLink(), kNoLink);

    // Anybody can send the message.
    for (const int linkIndex : {2, -2, 0x7FFFFFFF}) {
        control.SendMessage(0x8064, static_cast<WPARAM>(INT_PTR{linkIndex}));
        EXPECT_EQ(control.Drawer().HoverLink(), kNoLink) << linkIndex;
    }
    control.SendMessage(0x8064, 1);
    EXPECT_EQ(control.Drawer().HoverLink(), 1);
    control.SendMessage(0x8065, 99);
    EXPECT_THAT(m_host.m_aMessages, IsEmpty());
}

TEST_F(HtmlStatic, MovesImagesByTheClockItIsGiven) {
    std::uint32_t pixels[16 * 8];
    for (std::size_t i = 0; i < std::size(pixels); ++i) {
        pixels[i] = i % 16 < 8 ? 0xFF0000 : 0x0000FF;
    }
    const Bitmap strip(CreateBitmap(16, 8, 1, 32, pixels));
    const HIMAGELIST list = ImageList_Create(8, 8, ILC_COLOR24, 2, 0);
    ASSERT_EQ(ImageList_Add(list, strip.get(), nullptr), 0);
    // The clock may begin anew at any time.
    constexpr DWORD kStart = 0xFFFFFFC0;
    static DWORD now;
    now = kStart;
    CHtmlStatic& control = m_host.Add("", 0, []() WINAPI -> DWORD { return now; });
    control.AllowImageList(list);
    const std::string handle = std::to_string(reinterpret_cast<UINT_PTR>(list));
    control.SetWindowText(("<ilst cx=40 cy=40 index=1 speed=100 handle=" + handle + ">").c_str());
    constexpr std::pair<DWORD, COLORREF> kMoments[] = {
        {0, kBlue}, {99, kBlue}, {100, kRed}, {199, kRed}, {1000, kBlue}};
    EXPECT_EQ(control.Drawer().AnimationInterval(), 100u);
    for (const auto& [passed, colour] : kMoments) {
        now = kStart + passed;
        control.SendMessage(WM_TIMER, 1);
        EXPECT_EQ(m_host.At(20, 20), colour) << passed;
    }
    m_host.m_pStatic.reset();
    ImageList_Destroy(list);
}

TEST_F(HtmlStatic, HoldsNothingMoreAfterManyTexts) {
    CHtmlStatic& control = m_host.Add("");
    control.SetDrawingMode(CHtmlStatic::kTransparent);
    const auto round = [&](int n) {
        const std::string text =
            "<font size=" + std::to_string(8 + n % 80) +
            "px face=Verdana>text</font><a msg=m>x</a><icon idres=32512 iddll=user32.dll>"
            "<table border=2 bgcolor=red bgeffect=" +
            std::to_string(n % 16) + "><tr><td><b>cell</table>";
        control.SetWindowText(text.c_str());
        m_host.MoveTo(0);
        control.UpdateWindow();
    };
    // The fonts of some texts are kept; how many lies between none and these.
    ExpectRoundsKeepNothing(80, 200, round,
                            {.objects = 40, .heapBlocks = 150, .heapBytes = 150000});
}

// Links by keyboard, through the dialog manager's own message filter.
class HtmlKeyboard : public testing::Test {
protected:
    void SetUp() override {
        m_host.SetForegroundWindow();
        m_hBefore = MakeEdit(0);
        m_host.Add("<a msg=one>one</a> and <a msg=></a><a msg=two>two</a>", WS_TABSTOP);
        m_hAfter = MakeEdit(1);
        SetFocus(m_hBefore);
    }

    HWND MakeEdit(int n) {
        return CreateWindowExA(0, "EDIT", "", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 110 + 30 * n,
                               100, 20, m_host, nullptr, nullptr, nullptr);
    }
    // What a message loop does with a key.
    void Press(WORD nKey, bool bShift = false) {
        Hold(nKey, bShift, 0x80);
        for (const UINT messageId : {UINT{WM_KEYDOWN}, UINT{WM_KEYUP}}) {
            MSG message{GetFocus(), messageId, nKey, 1, 0, {}};
            if (!IsDialogMessageA(m_host, &message)) {
                DispatchMessageA(&message);
            }
        }
        Hold(nKey, bShift, 0);
    }
    static void Hold(WORD nKey, bool bShift, BYTE nState) {
        std::array<BYTE, 256> keys{};
        GetKeyboardState(keys.data());
        keys[nKey] = nState;
        keys[VK_SHIFT] = bShift ? nState : BYTE{0};
        SetKeyboardState(keys.data());
    }
    // A window has the focus and, if it is the control, one of its links.
    void ExpectFocus(HWND hWnd, int nLink) {
        EXPECT_EQ(GetFocus(), hWnd);
        EXPECT_EQ(m_host.m_pStatic->Drawer().FocusLink(), nLink);
    }

    HtmlHost m_host;
    HWND m_hBefore = nullptr;
    HWND m_hAfter = nullptr;
};

TEST_F(HtmlKeyboard, TabGoesFromLinkToLinkAndOn) {
    const HWND control = m_host.m_pStatic->m_hWnd;
    // A link without anything to see is passed over.
    const struct {
        HWND hWnd;
        int nLink;
        bool bShift;
    } kSteps[] = {{control, 0, false}, {control, 2, false}, {m_hAfter, kNoLink, false},
                  {control, 2, true},  {control, 0, true},  {m_hBefore, kNoLink, true}};
    for (const auto& step : kSteps) {
        SCOPED_TRACE(&step - kSteps);
        Press(VK_TAB, step.bShift);
        ExpectFocus(step.hWnd, step.nLink);
    }
}

TEST_F(HtmlKeyboard, EnterAndSpaceFollowTheLink) {
    constexpr WORD kKeys[] = {VK_TAB, VK_RETURN, VK_TAB, VK_SPACE};
    for (const WORD key : kKeys) {
        Press(key);
    }
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("one", "two"));
}

TEST_F(HtmlKeyboard, WithoutLinksTheDialogKeepsTheKeys) {
    m_host.m_pStatic->SetWindowText("nothing to follow");
    Press(VK_TAB);
    ExpectFocus(m_host.m_pStatic->m_hWnd, kNoLink);
    Press(VK_TAB);
    ExpectFocus(m_hAfter, kNoLink);
}

TEST_F(HtmlKeyboard, AClickTakesTheFocus) {
    m_host.Click(2);
    ExpectFocus(m_host.m_pStatic->m_hWnd, 2);
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("two"));
}

}  // namespace
}  // namespace mvp::test
