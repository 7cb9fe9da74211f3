// The control: painting, links, hover.
#include <dlgfw/dialog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "canvas.h"
#include "html_host.h"
#include "support/dialog_template.h"
#include "support/log_recorder.h"
#include "support/resource_counts.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(HtmlStatic, PaintsOnWhatTheDrawingModeSays) {
    CHtmlHost host;
    CHtmlStatic& control = host.Add("text");
    EXPECT_EQ(host.At(195, 75), CHtmlHost::kStatic);
    control.SetDrawingMode(CHtmlStatic::kTransparent);
    EXPECT_EQ(host.At(100, 60), CHtmlHost::kBackground);
    EXPECT_EQ(host.At(195, 75), RGB(255, 255, 0)) << "the parent's picture, in its place";

    const Canvas canvas(200, 80);
    control.SendMessage(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(canvas.Dc()), PRF_CLIENT);
    EXPECT_EQ(canvas.At(100, 60), CHtmlHost::kBackground);
    EXPECT_EQ(canvas.At(195, 75), RGB(255, 255, 0));
}

TEST(HtmlStatic, TakesTextMarginsColoursAndFont) {
    CHtmlHost host;
    CHtmlStatic& control = host.Add("<b>first</b>");
    EXPECT_EQ(control.Drawer().PlainText(), "first") << "the text it is created with";
    control.SetWindowText("second");
    EXPECT_EQ(control.Drawer().PlainText(), "second");
    CString strText;
    control.GetWindowText(strText);
    EXPECT_EQ(strText, "second");

    control.SetWindowText("<a msg=m>n</a>");
    const RECT before = control.Drawer().LinkRects(0).at(0);
    control.SetMargins(45, 7);
    const RECT after = control.Drawer().LinkRects(0).at(0);
    EXPECT_EQ(after.left - before.left, 45);
    EXPECT_EQ(after.top - before.top, 7);

    // The handle is kept, its font's description is copied: the font may go at once.
    LOGFONTA description{};
    description.lfHeight = -30;
    HFONT hFont = CreateFontIndirectA(&description);
    control.SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(hFont), TRUE);
    EXPECT_EQ(control.SendMessage(WM_GETFONT), reinterpret_cast<LRESULT>(hFont));
    DeleteObject(hFont);
    const RECT larger = control.Drawer().LinkRects(0).at(0);
    EXPECT_GT(larger.bottom - larger.top, 29);

    control.SetWindowText("<font size=60px>\x95</font>");
    control.SetColors(RGB(255, 255, 255), RGB(255, 255, 255), RGB(255, 255, 255));
    control.UpdateWindow();
    const Canvas canvas(200, 80);
    control.SendMessage(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(canvas.Dc()), PRF_CLIENT);
    int nWhite = 0;
    for (int x = 0; x < 200; ++x) {
        for (int y = 0; y < 80; ++y)
            nWhite += canvas.At(x, y) == RGB(255, 255, 255);
    }
    EXPECT_GT(nWhite, 20);
}

TEST(HtmlStatic, IsBoundToAControlOfADialog) {
    DialogTemplate form("form", {0, 0, 160, 60});
    form.Add("STATIC", 1001, "<i>from</i> the template", {7, 7, 140, 40}, 0);
    class CFormDlg : public CDialog {
    public:
        BOOL Open(LPCDLGTEMPLATE pTemplate) { return CreateIndirect(pTemplate); }
    } dialog;
    ASSERT_TRUE(dialog.Open(form.Get()));
    CHtmlStatic control;
    ASSERT_TRUE(control.SubclassDlgItem(1001, &dialog));
    EXPECT_EQ(control.Drawer().PlainText(), "from the template");
    dialog.DestroyWindow();
}

TEST(HtmlStatic, KnowsItsLinksBeforeItIsPainted) {
    CHtmlHost host;
    host.ShowWindow(SW_HIDE);
    CHtmlStatic& control = host.Add("one two three <a msg=m>link</a>");
    EXPECT_EQ(control.Drawer().LinkRects(0).at(0).top, 0) << "all on one line";
    control.MoveWindow(0, 0, 40, 80, FALSE);
    EXPECT_GT(control.Drawer().LinkRects(0).at(0).top, 10);
}

TEST(HtmlStatic, LinksDoWhatTheySay) {
    CHtmlHost host;
    CHtmlStatic& control = host.Add(
        "<a msg=\"one &amp; only\">first</a> <a href=http://a.example/>second</a> "
        "<a msg=both href=http://b.example/>third</a> plain");
    host.Click(0);
    EXPECT_THAT(host.m_aMessages, ElementsAre("one & only"));
    EXPECT_EQ(host.m_lParam, 77);
    host.Click(1);
    EXPECT_THAT(host.m_shell.m_aOpened, ElementsAre("http://a.example/"));
    EXPECT_THAT(host.m_shell.m_aStarted, IsEmpty());
    host.Click(2);
    EXPECT_EQ(host.m_aMessages.size(), 2u);
    EXPECT_EQ(host.m_shell.m_aOpened.size(), 1u);

    // The shell's errors end at 32.
    host.m_shell.m_nResult = 32;
    host.Click(1);
    EXPECT_THAT(host.m_shell.m_aStarted,
                ElementsAre("\"C:\\Programs\\browser.exe\" -new  http://a.example/"));
    host.m_shell.m_strCommand.clear();
    host.Click(1);
    EXPECT_EQ(host.m_shell.m_aStarted.size(), 1u);

    // Pressed on one link and let go on another, or beside it: nothing.
    const RECT first = control.Drawer().LinkRects(0).at(0);
    const RECT second = control.Drawer().LinkRects(1).at(0);
    control.SendMessage(WM_LBUTTONDOWN, 0, MAKELPARAM(first.left + 1, first.top + 1));
    control.SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(second.left + 1, second.top + 1));
    control.SendMessage(WM_LBUTTONDOWN, 0, MAKELPARAM(190, 70));
    control.SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(first.left + 1, first.top + 1));
    EXPECT_EQ(host.m_aMessages.size(), 2u);

    control.SetLinkCallback(nullptr, kLinkMessage, 0);
    host.Click(0);
    control.SetLinkCallback(host, 0, 0);
    host.Click(0);
    EXPECT_EQ(host.m_aMessages.size(), 2u);
}

TEST(HtmlStatic, LogsLinksThatCannotBeFollowed) {
    const LogRecorder log;
    CHtmlHost host;
    host.Add("<a href=x>go</a>");
    host.Click(0);
    EXPECT_THAT(log.Texts(1), IsEmpty());
    host.m_shell.m_nResult = 2;
    host.m_shell.m_strCommand.clear();
    host.Click(0);
    host.m_shell.m_bThrows = true;
    host.Click(0);
    EXPECT_THAT(log.Texts(1), ElementsAre("CHtmlDrawer::FollowLink: the link was not opened",
                                          "CHtmlDrawer::FollowLink: exception"));
}

bool g_bFindThrows = false;
HINSTANCE FindOrThrow(LPCSTR, LPCSTR) {
    if (g_bFindThrows)
        throw std::bad_alloc();
    return GetModuleHandleA("user32.dll");
}

std::vector<std::string> g_aFailures;
void NoteFailure(const char* pszFailure) noexcept {
    g_aFailures.emplace_back(pszFailure);
}

TEST(HtmlStatic, TellsWhyNothingIsDrawn) {
    g_bFindThrows = false;
    g_aFailures.clear();
    CHtmlDrawer drawer(&FindOrThrow, richtext::SystemShell(), &NoteFailure);
    drawer.SetText("<icon idres=32512>");
    EXPECT_GT(drawer.Measure(200).cy, 0);
    g_bFindThrows = true;
    const Canvas canvas(200, 80);
    const RECT area = {0, 0, 200, 80};
    drawer.Draw(canvas.Dc(), area, area);
    drawer.SetText("<icon idres=32512>");
    drawer.Draw(canvas.Dc(), area, area);
    EXPECT_THAT(g_aFailures, ElementsAre("CHtmlDrawer::Draw: exception",
                                         "CHtmlDrawer::Layout: the text was not laid out"));
}

TEST(HtmlStatic, LinkTextsBecomeLinks) {
    CHtmlHost host;
    CHtmlStatic& control = host.Add("");
    control.SetLinkText(CHtmlStatic::LinkKind::Msg, "msg", "Close");
    CString strText;
    control.GetWindowText(strText);
    EXPECT_EQ(strText, "<a msg=\"msg\">Close</a>");
    host.Click(0);
    EXPECT_THAT(host.m_aMessages, ElementsAre("msg"));
    control.SetLinkText(CHtmlStatic::LinkKind::Href, "http://c.example/", "Open");
    host.Click(0);
    EXPECT_THAT(host.m_shell.m_aOpened, ElementsAre("http://c.example/"));
}

TEST(HtmlStatic, MayGoWhileALinkIsFollowed) {
    CHtmlHost host;
    host.Add("<a msg=m>link</a>");
    host.m_bDeletesControl = true;
    host.Click(0);
    EXPECT_EQ(host.m_pStatic, nullptr);
    EXPECT_THAT(host.m_aMessages, ElementsAre("m"));
}

TEST(HtmlStatic, HoverRepaintsTheLinkAlone) {
    CHtmlHost host;
    CHtmlStatic& control = host.Add("before <a msg=m>link</a> after <a msg=n>other</a>");
    host.MoveTo(kNoLink);
    EXPECT_EQ(control.Drawer().HoverLink(), kNoLink);
    control.UpdateWindow();

    host.MoveTo(0);
    EXPECT_EQ(control.Drawer().HoverLink(), 0);
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_HAND));
    RECT dirty{};
    ASSERT_TRUE(GetUpdateRect(control, &dirty, FALSE));
    const RECT link = control.Drawer().LinkRects(0).at(0);
    EXPECT_EQ(dirty.top, link.top);
    EXPECT_EQ(dirty.bottom, link.bottom);
    EXPECT_NEAR(dirty.left, link.left, 3);
    EXPECT_NEAR(dirty.right, link.right, 3);
    control.UpdateWindow();
    host.MoveTo(0);
    EXPECT_FALSE(GetUpdateRect(control, &dirty, FALSE)) << "the same link again";

    host.MoveTo(1);
    EXPECT_EQ(control.Drawer().HoverLink(), 1);
    control.SendMessage(WM_MOUSELEAVE);
    EXPECT_EQ(control.Drawer().HoverLink(), kNoLink);

    // Anybody can send the message.
    for (const int nLink : {2, -2, 0x7FFFFFFF}) {
        control.SendMessage(0x8064, static_cast<WPARAM>(INT_PTR{nLink}));
        EXPECT_EQ(control.Drawer().HoverLink(), kNoLink) << nLink;
    }
    control.SendMessage(0x8064, 1);
    EXPECT_EQ(control.Drawer().HoverLink(), 1);
    control.SendMessage(0x8065, 99);
    EXPECT_THAT(host.m_aMessages, IsEmpty());
}

DWORD g_dwNow = 0;
DWORD WINAPI MadeClock() {
    return g_dwNow;
}

TEST(HtmlStatic, MovesImagesByTheClockItIsGiven) {
    std::uint32_t aPixels[16 * 8];
    for (std::size_t i = 0; i < std::size(aPixels); ++i)
        aPixels[i] = i % 16 < 8 ? 0xFF0000 : 0x0000FF;
    const Bitmap strip(CreateBitmap(16, 8, 1, 32, aPixels));
    const HIMAGELIST hList = ImageList_Create(8, 8, ILC_COLOR24, 2, 0);
    ASSERT_EQ(ImageList_Add(hList, strip.get(), nullptr), 0);
    CHtmlHost host;
    host.m_pStatic = std::make_unique<CHtmlStatic>(host.m_shell, &MadeClock);
    CHtmlStatic& control = *host.m_pStatic;
    control.Create("", WS_CHILD | WS_VISIBLE, CRect(10, 20, 210, 100), &host, 789);
    control.AllowImageList(hList);
    // The clock may begin anew at any time.
    g_dwNow = 0xFFFFFFC0;
    const std::string strHandle = std::to_string(reinterpret_cast<UINT_PTR>(hList));
    control.SetWindowText(("<ilst cx=40 cy=40 speed=100 handle=" + strHandle + ">").c_str());
    const struct {
        DWORD dwPassed;
        COLORREF colour;
    } kMoments[] = {{0, RGB(255, 0, 0)},
                    {99, RGB(255, 0, 0)},
                    {100, RGB(0, 0, 255)},
                    {199, RGB(0, 0, 255)},
                    {1000, RGB(255, 0, 0)}};
    for (const auto& moment : kMoments) {
        g_dwNow = 0xFFFFFFC0 + moment.dwPassed;
        control.SendMessage(WM_TIMER, 1);
        EXPECT_EQ(host.At(20, 20), moment.colour) << moment.dwPassed;
    }
    host.m_pStatic.reset();
    ImageList_Destroy(hList);
}

TEST(HtmlStatic, HoldsNothingMoreAfterManyTexts) {
    CHtmlHost host;
    CHtmlStatic& control = host.Add("");
    control.SetDrawingMode(CHtmlStatic::kTransparent);
    ExpectRoundsKeepNothing(20, 200, [&](int n) {
        control.SetWindowText(n % 2 == 0 ? "<h1>one</h1><table border=1 bgeffect=metal "
                                           "bgcolor=red><tr><td><a msg=m>x</a></table>"
                                         : "<a msg=m>two</a><icon idres=32512 iddll=user32.dll>");
        host.MoveTo(0);
        control.UpdateWindow();
    });
}

}  // namespace
}  // namespace mvp::test
