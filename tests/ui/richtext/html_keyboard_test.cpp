// Links by keyboard, through the dialog manager's own message filter.
#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "html_host.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;

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
        for (const UINT nMessage : {UINT{WM_KEYDOWN}, UINT{WM_KEYUP}}) {
            MSG message{GetFocus(), nMessage, nKey, 1, 0, {}};
            if (!IsDialogMessageA(m_host, &message))
                DispatchMessageA(&message);
        }
        Hold(nKey, bShift, 0);
    }
    static void Hold(WORD nKey, bool bShift, BYTE nState) {
        std::array<BYTE, 256> aKeys{};
        GetKeyboardState(aKeys.data());
        aKeys[nKey] = nState;
        aKeys[VK_SHIFT] = bShift ? nState : BYTE{0};
        SetKeyboardState(aKeys.data());
    }
    // A window has the focus and, if it is the control, one of its links.
    void ExpectFocus(HWND hWnd, int nLink) {
        EXPECT_EQ(GetFocus(), hWnd);
        EXPECT_EQ(m_host.m_pStatic->Drawer().FocusLink(), nLink);
    }

    CHtmlHost m_host;
    HWND m_hBefore = nullptr;
    HWND m_hAfter = nullptr;
};

TEST_F(HtmlKeyboard, TabGoesFromLinkToLinkAndOn) {
    const HWND hControl = m_host.m_pStatic->m_hWnd;
    // A link without anything to see is passed over.
    const struct {
        HWND hWnd;
        int nLink;
        bool bShift;
    } kSteps[] = {{hControl, 0, false}, {hControl, 2, false}, {m_hAfter, kNoLink, false},
                  {hControl, 2, true},  {hControl, 0, true},  {m_hBefore, kNoLink, true}};
    for (const auto& step : kSteps) {
        SCOPED_TRACE(&step - kSteps);
        Press(VK_TAB, step.bShift);
        ExpectFocus(step.hWnd, step.nLink);
    }
}

TEST_F(HtmlKeyboard, EnterAndSpaceFollowTheLink) {
    constexpr WORD kKeys[] = {VK_TAB, VK_RETURN, VK_TAB, VK_SPACE};
    for (const WORD nKey : kKeys)
        Press(nKey);
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
