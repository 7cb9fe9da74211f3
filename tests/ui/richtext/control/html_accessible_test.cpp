// What a screen reader is told, through the system's own way to it.
#include <windows.h>
#include <oleacc.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/handle.h"
#include "ui/richtext/control/html_host.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct AccessibleTraits {
    using Handle = IAccessible*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { handle->Release(); }
};

VARIANT Child(long nChild) {
    VARIANT child{};
    child.vt = VT_I4;
    child.lVal = nChild;
    return child;
}

class HtmlAccessible : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        m_host.Add(
            "Your <b>card</b>:<br><a msg=m>details</a> or <a href=http://d.example/>help</a>",
            WS_TABSTOP);
        ASSERT_EQ(AccessibleObjectFromWindow(*m_host.m_pStatic, static_cast<DWORD>(OBJID_CLIENT),
                                             __uuidof(IAccessible),
                                             reinterpret_cast<void**>(m_object.put())),
                  S_OK);
    }
    void TearDown() override {
        m_object.reset();
        m_host.m_pStatic.reset();
        CoUninitialize();
    }

    using TextGetter = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, BSTR*);
    std::string Text(TextGetter get, long nChild) {
        BSTR str = nullptr;
        if ((m_object.get()->*get)(Child(nChild), &str) != S_OK) {
            return "none";
        }
        char text[200] = "";
        WideCharToMultiByte(CP_ACP, 0, str, -1, text, sizeof text, nullptr, nullptr);
        SysFreeString(str);
        return text;
    }
    // -1 when there is none.
    template <class... Arguments, class... Values>
    long Number(HRESULT (STDMETHODCALLTYPE IAccessible::*get)(Arguments...), Values... values) {
        VARIANT number{};
        return (m_object.get()->*get)(values..., &number) == S_OK && number.vt == VT_I4
                   ? number.lVal
                   : -1;
    }
    HRESULT NameResult(const VARIANT& child) {
        BSTR str = nullptr;
        return m_object.get()->get_accName(child, &str);
    }
    HRESULT Act(long nChild) { return m_object.get()->accDoDefaultAction(Child(nChild)); }

    HtmlHost m_host;
    UniqueHandle<AccessibleTraits> m_object;
};

TEST_F(HtmlAccessible, TellsTextAndLinks) {
    long children = 0;
    ASSERT_EQ(m_object.get()->get_accChildCount(&children), S_OK);
    EXPECT_EQ(children, 2);
    EXPECT_EQ(Text(&IAccessible::get_accName, CHILDID_SELF), "Your card:\ndetails or help");
    EXPECT_EQ(Text(&IAccessible::get_accName, 1), "details");
    EXPECT_EQ(Text(&IAccessible::get_accName, 2), "help");
    EXPECT_EQ(Text(&IAccessible::get_accValue, 2), "http://d.example/");
    EXPECT_EQ(Text(&IAccessible::get_accValue, 1), "none");
    EXPECT_EQ(Text(&IAccessible::get_accDefaultAction, 1), "Jump");
    const auto role = &IAccessible::get_accRole;
    const auto state = &IAccessible::get_accState;
    EXPECT_EQ(Number(role, Child(CHILDID_SELF)), ROLE_SYSTEM_GROUPING);
    EXPECT_EQ(Number(role, Child(1)), ROLE_SYSTEM_LINK);
    EXPECT_EQ(Number(state, Child(1)), STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE);
    EXPECT_NE(Number(state, Child(0)) & STATE_SYSTEM_READONLY, 0);

    m_host.m_pStatic->SetWindowText("no links");
    EXPECT_EQ(Number(role, Child(CHILDID_SELF)), ROLE_SYSTEM_STATICTEXT);
}

TEST_F(HtmlAccessible, PlacesAreWhereTheyAreSeen) {
    RECT link = m_host.LinkRect(1);
    m_host.m_pStatic->ClientToScreen(&link);
    RECT told{};
    ASSERT_EQ(
        m_object.get()->accLocation(&told.left, &told.top, &told.right, &told.bottom, Child(2)),
        S_OK);
    told.right += told.left;  // width and height were told
    told.bottom += told.top;
    EXPECT_TRUE(EqualRect(&told, &link));

    const auto hit = &IAccessible::accHitTest;
    EXPECT_EQ(Number(hit, link.left + 1, link.top + 1), 2);
    EXPECT_EQ(Number(hit, link.right + 40, link.top + 1), CHILDID_SELF);
    EXPECT_EQ(Number(hit, 0, 0), -1);

    const auto navigate = &IAccessible::accNavigate;
    EXPECT_EQ(Number(navigate, NAVDIR_FIRSTCHILD, Child(CHILDID_SELF)), 1);
    EXPECT_EQ(Number(navigate, NAVDIR_NEXT, Child(1)), 2);
    EXPECT_EQ(Number(navigate, NAVDIR_NEXT, Child(2)), -1);
}

TEST_F(HtmlAccessible, ActsLaterAndOnlyWhenEnabled) {
    for (const BOOL enabled : {FALSE, TRUE}) {
        m_host.m_pStatic->EnableWindow(enabled);
        ASSERT_EQ(Act(1), S_OK);
        EXPECT_THAT(m_host.m_aMessages, IsEmpty()) << "not while the reader waits";
        MSG message{};
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageA(&message);
        }
        EXPECT_EQ(m_host.m_aMessages.size(), enabled ? 1U : 0U);
    }
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("m"));
    EXPECT_EQ(Act(CHILDID_SELF), DISP_E_MEMBERNOTFOUND);

    m_host.SetForegroundWindow();
    ASSERT_EQ(m_object.get()->accSelect(SELFLAG_TAKEFOCUS, Child(2)), S_OK);
    EXPECT_EQ(Number(&IAccessible::get_accFocus), 2);
    EXPECT_NE(Number(&IAccessible::get_accState, Child(2)) & STATE_SYSTEM_FOCUSED, 0);
    EXPECT_EQ(Number(&IAccessible::get_accState, Child(1)) & STATE_SYSTEM_FOCUSED, 0);
}

TEST_F(HtmlAccessible, RefusesWhatIsNotThere) {
    for (const long child : {3L, -1L, 0x7FFFFFFFL}) {
        EXPECT_EQ(NameResult(Child(child)), E_INVALIDARG) << child;
        EXPECT_EQ(Act(child), E_INVALIDARG) << child;
    }
    VARIANT noNumber{};
    noNumber.vt = VT_BSTR;
    EXPECT_EQ(NameResult(noNumber), E_INVALIDARG);
}

TEST_F(HtmlAccessible, OutlivesTheControl) {
    m_host.m_pStatic.reset();
    long n = 0;
    EXPECT_EQ(NameResult(Child(1)), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(m_object.get()->get_accChildCount(&n), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(Act(1), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(m_object.release()->Release(), 0u) << "nobody else holds it";
}

}  // namespace
}  // namespace mvp::test
