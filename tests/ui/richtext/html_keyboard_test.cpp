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
    int FocusLink() { return m_host.m_pStatic->Drawer().FocusLink(); }
    bool ControlHasFocus() { return GetFocus() == m_host.m_pStatic->m_hWnd; }

    CHtmlHost m_host;
    HWND m_hBefore = nullptr;
    HWND m_hAfter = nullptr;
};

TEST_F(HtmlKeyboard, TabGoesFromLinkToLinkAndOn) {
    Press(VK_TAB);
    EXPECT_TRUE(ControlHasFocus());
    EXPECT_EQ(FocusLink(), 0);
    Press(VK_TAB);
    EXPECT_TRUE(ControlHasFocus());
    EXPECT_EQ(FocusLink(), 2) << "a link without anything to see is passed over";
    Press(VK_TAB);
    EXPECT_EQ(GetFocus(), m_hAfter);
    EXPECT_EQ(FocusLink(), kNoLink);

    Press(VK_TAB, true);
    EXPECT_TRUE(ControlHasFocus());
    EXPECT_EQ(FocusLink(), 2) << "backwards from the last one";
    Press(VK_TAB, true);
    EXPECT_EQ(FocusLink(), 0);
    Press(VK_TAB, true);
    EXPECT_EQ(GetFocus(), m_hBefore);
}

TEST_F(HtmlKeyboard, EnterAndSpaceFollowTheLink) {
    Press(VK_TAB);
    Press(VK_RETURN);
    Press(VK_TAB);
    Press(VK_SPACE);
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("one", "two"));
}

TEST_F(HtmlKeyboard, WithoutLinksTheDialogKeepsTheKeys) {
    m_host.m_pStatic->SetWindowText("nothing to follow");
    Press(VK_TAB);
    EXPECT_EQ(FocusLink(), kNoLink);
    Press(VK_TAB);
    EXPECT_EQ(GetFocus(), m_hAfter);
}

TEST_F(HtmlKeyboard, AClickTakesTheFocus) {
    m_host.Click(2);
    EXPECT_TRUE(ControlHasFocus());
    EXPECT_EQ(FocusLink(), 2);
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("two"));
}

}  // namespace
}  // namespace mvp::test
