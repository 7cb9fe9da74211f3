// What a screen reader in a process of its own gets of popups: an alert for each, from which it
// reads the title, the message and the links, and follows the links.
#include <windows.h>
#include <oleacc.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/handle.h"
#include "popup_owner.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

struct AccessibleTraits {
    using Handle = IAccessible*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { handle->Release(); }
};
using Accessible = UniqueHandle<AccessibleTraits>;

VARIANT Child(long nChild) {
    VARIANT child{};
    child.vt = VT_I4;
    child.lVal = nChild;
    return child;
}

using TextGetter = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, BSTR*);
std::string Text(const Accessible& object, TextGetter get, long nChild) {
    BSTR str = nullptr;
    if ((object.get()->*get)(Child(nChild), &str) != S_OK) {
        return "none";
    }
    char text[500] = "";
    WideCharToMultiByte(CP_ACP, 0, str, -1, text, sizeof text, nullptr, nullptr);
    SysFreeString(str);
    return text;
}

long Role(const Accessible& object, long nChild) {
    VARIANT role{};
    object.get()->get_accRole(Child(nChild), &role);
    return role.vt == VT_I4 ? role.lVal : -1;
}

Accessible Client(HWND hWnd) {
    Accessible object;
    AccessibleObjectFromWindow(hWnd, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                               reinterpret_cast<void**>(object.put()));
    return object;
}

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
        EXPECT_EQ(Role(alert, child.lVal), ROLE_SYSTEM_ALERT);
        m_strSaid = Text(alert, &IAccessible::get_accName, child.lVal);
        EXPECT_NE(Text(alert, &IAccessible::get_accName, 1), m_strSaid) << "a child's";
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
        const Accessible object = Client(hControl);
        if (IsWindowVisible(hControl) && object && Role(object, 1) == ROLE_SYSTEM_LINK) {
            m_links.push_back(hControl);
            m_strSaid += "|" + Text(object, &IAccessible::get_accName, 1);
            EXPECT_EQ(Text(object, &IAccessible::get_accDefaultAction, 1), "Jump");
        }
    }
    // What the alert says that has come as the next one, with the links behind it.
    std::string Next(HWND hPopup) {
        m_expected.push_back(hPopup);
        EXPECT_TRUE(PumpUntil([&] { return m_alerts.size() >= m_expected.size(); })) << "no alert";
        EXPECT_EQ(m_alerts, m_expected);
        return m_strSaid;
    }
    void Follow(std::size_t nLink) {
        EXPECT_EQ(Client(m_links.at(nLink)).get()->accDoDefaultAction(Child(1)), S_OK);
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
    CWnd service;  // that shows help
    service.CreateEx(0, "STATIC", "vkcrdsub", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr);
    const std::string password =
        "Veskara smart card: Your password: 740 291|Close this message|Show help";
    for (int i = 0; i < 12; ++i) {
        const int type = i % 3;
        const std::string number = std::to_string(i + 1);
        HWND popup = m_owner.Show(type);
        if (type == DIALOG_POPUP_CARD_OTP) {  // without title and links at first
            EXPECT_EQ(Next(popup), "Fetching " + number);
            ASSERT_TRUE(BringIn(popup));
            m_owner.BringPassword();
            EXPECT_EQ(Next(popup), password);
        } else {
            std::string notice = "Veskara smart card: Notice ";
            notice.append(number)
                .append("|Close this message")
                .append(type == 0 ? "|Show help" : "");
            EXPECT_EQ(Next(popup), notice);
        }
        if (type != DIALOG_POPUP_CARD_ALERT) {
            Follow(1);
            MSG asked{};
            EXPECT_TRUE(WaitFor(std::chrono::seconds(30), [&] {
                return PeekMessageA(&asked, service, WM_POPUP_SHOW_HELP, WM_POPUP_SHOW_HELP,
                                    PM_REMOVE) != FALSE;
            }));
            EXPECT_EQ(asked.wParam, type == 0 ? 1017U : 1025U);
        }
        Follow(0);
        EXPECT_TRUE(PumpUntil([&] { return m_owner.Number("closed") == i + 1; }));
        EXPECT_EQ(IsWindowVisible(popup), FALSE);
    }
    service.DestroyWindow();
}

}  // namespace
}  // namespace mvp::test
