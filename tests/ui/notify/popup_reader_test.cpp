// What a screen reader in a process of its own gets of popups: an alert for each, from which it
// reads the title, the message and the links, and follows one.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/accessible.h"
#include "popup_owner.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

class PopupReader : public testing::Test {
protected:
    PopupReader() {
        EXPECT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        s_pReader = this;
        m_hook = SetWinEventHook(EVENT_SYSTEM_ALERT, EVENT_SYSTEM_ALERT, nullptr, &OnAlert, 0, 0,
                                 WINEVENT_OUTOFCONTEXT);
    }
    ~PopupReader() override {
        UnhookWinEvent(m_hook);
        CoUninitialize();
    }

    static void CALLBACK OnAlert(HWINEVENTHOOK, DWORD, HWND hWnd, LONG nObject, LONG nChild, DWORD,
                                 DWORD) {
        s_pReader->m_alerts.push_back(hWnd);
        s_pReader->Read(hWnd, nObject, nChild);
    }

    void Read(HWND hWnd, LONG nObject, LONG nChild) {
        Accessible alert;
        VARIANT child{};
        ASSERT_EQ(AccessibleObjectFromEvent(hWnd, static_cast<DWORD>(nObject),
                                            static_cast<DWORD>(nChild), alert.put(), &child),
                  S_OK);
        EXPECT_EQ(alert.Number(&IAccessible::get_accRole, child), ROLE_SYSTEM_ALERT);
        m_strSaid = alert.Text(&IAccessible::get_accName, child.lVal);
        EXPECT_NE(alert.Text(&IAccessible::get_accName, 1), m_strSaid) << "a child's";
        m_links.clear();
        long children = 0;
        EXPECT_EQ(alert.get()->get_accChildCount(&children), S_OK);
        for (HWND control = GetWindow(hWnd, GW_CHILD); control != nullptr; --children) {
            ReadControl(control);
            control = GetWindow(control, GW_HWNDNEXT);
        }
        EXPECT_EQ(children, 0);
    }
    void ReadControl(HWND hControl) {
        const Accessible object = Accessible::Of(hControl);
        if (IsWindowVisible(hControl) && object &&
            object.Number(&IAccessible::get_accRole, Child(1)) == ROLE_SYSTEM_LINK) {
            m_links.push_back(hControl);
            m_strSaid += "|" + object.Text(&IAccessible::get_accName, 1);
            EXPECT_EQ(object.Text(&IAccessible::get_accDefaultAction, 1), "Jump");
        }
    }
    // What the alert says that has come as the next one, with the links behind it.
    std::string Next(HWND hPopup) {
        m_expected.push_back(hPopup);
        EXPECT_TRUE(PumpUntil([&] { return m_alerts.size() >= m_expected.size(); })) << "no alert";
        EXPECT_EQ(m_alerts, m_expected);
        return m_strSaid;
    }
    static inline PopupReader* s_pReader = nullptr;
    PopupOwner m_owner;
    HWINEVENTHOOK m_hook = nullptr;
    std::vector<HWND> m_alerts, m_expected;
    // What the last alert said.
    std::string m_strSaid;
    std::vector<HWND> m_links;
};

TEST_F(PopupReader, GetsEveryPopup) {
    for (int i = 0; i < 12; ++i) {
        const int type = i % 3;
        std::string text = "Notice " + std::to_string(i + 1);
        HWND popup = m_owner.Show(type);
        if (type == DIALOG_POPUP_CARD_OTP) {  // without title and links at first
            EXPECT_EQ(Next(popup), "Fetching " + std::to_string(i + 1));
            ASSERT_TRUE(BringIn(popup));
            m_owner.BringPassword();
            text = "Your password: 740 291";
        }
        EXPECT_EQ(Next(popup), "Veskara smart card: " + text + "|Close this message" +
                                   (type == DIALOG_POPUP_CARD_ALERT ? "" : "|Show help"));
        EXPECT_EQ(Accessible::Of(m_links.at(0)).get()->accDoDefaultAction(Child(1)), S_OK);
        EXPECT_TRUE(PumpUntil([&] { return m_owner.Number("closed") == i + 1; }));
        EXPECT_EQ(IsWindowVisible(popup), FALSE);
    }
}

}  // namespace
}  // namespace mvp::test
