// What a screen reader is told, through the system's own way to it.
#include <windows.h>
#include <oleacc.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "html_host.h"
#include "platform/handle.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Interface>
struct ComTraits {
    using Handle = Interface*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { handle->Release(); }
};
using Accessible = UniqueHandle<ComTraits<IAccessible>>;

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
        if ((m_object.get()->*get)(Child(nChild), &str) != S_OK)
            return "none";
        char szText[200] = "";
        WideCharToMultiByte(CP_ACP, 0, str, -1, szText, sizeof szText, nullptr, nullptr);
        SysFreeString(str);
        return szText;
    }
    using NumberGetter = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, VARIANT*);
    long Number(NumberGetter get, long nChild) {
        VARIANT number{};
        return (m_object.get()->*get)(Child(nChild), &number) == S_OK && number.vt == VT_I4
                   ? number.lVal
                   : -1;
    }

    CHtmlHost m_host;
    Accessible m_object;
};

TEST_F(HtmlAccessible, TellsTextAndLinks) {
    long nChildren = 0;
    ASSERT_EQ(m_object.get()->get_accChildCount(&nChildren), S_OK);
    EXPECT_EQ(nChildren, 2);
    EXPECT_EQ(Text(&IAccessible::get_accName, CHILDID_SELF), "Your card:\ndetails or help");
    EXPECT_EQ(Text(&IAccessible::get_accName, 1), "details");
    EXPECT_EQ(Text(&IAccessible::get_accName, 2), "help");
    EXPECT_EQ(Text(&IAccessible::get_accValue, 2), "http://d.example/");
    EXPECT_EQ(Text(&IAccessible::get_accValue, 1), "none");
    EXPECT_EQ(Text(&IAccessible::get_accDefaultAction, 1), "Jump");
    EXPECT_EQ(Number(&IAccessible::get_accRole, CHILDID_SELF), ROLE_SYSTEM_GROUPING);
    EXPECT_EQ(Number(&IAccessible::get_accRole, 1), ROLE_SYSTEM_LINK);
    EXPECT_EQ(Number(&IAccessible::get_accState, 1), STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE);
    EXPECT_NE(Number(&IAccessible::get_accState, 0) & STATE_SYSTEM_READONLY, 0);

    m_host.m_pStatic->SetWindowText("no links");
    EXPECT_EQ(Number(&IAccessible::get_accRole, CHILDID_SELF), ROLE_SYSTEM_STATICTEXT);
}

TEST_F(HtmlAccessible, PlacesAreWhereTheyAreSeen) {
    long nLeft = 0;
    long nTop = 0;
    long nWidth = 0;
    long nHeight = 0;
    ASSERT_EQ(m_object.get()->accLocation(&nLeft, &nTop, &nWidth, &nHeight, Child(2)), S_OK);
    RECT link = m_host.m_pStatic->Drawer().LinkRects(1).at(0);
    m_host.m_pStatic->ClientToScreen(&link);
    EXPECT_EQ(nLeft, link.left);
    EXPECT_EQ(nTop, link.top);
    EXPECT_EQ(nWidth, link.right - link.left);
    EXPECT_EQ(nHeight, link.bottom - link.top);

    VARIANT hit{};
    ASSERT_EQ(m_object.get()->accHitTest(link.left + 1, link.top + 1, &hit), S_OK);
    EXPECT_EQ(hit.lVal, 2);
    ASSERT_EQ(m_object.get()->accHitTest(link.right + 40, link.top + 1, &hit), S_OK);
    EXPECT_EQ(hit.lVal, CHILDID_SELF);
    EXPECT_EQ(m_object.get()->accHitTest(0, 0, &hit), S_FALSE);

    VARIANT next{};
    ASSERT_EQ(m_object.get()->accNavigate(NAVDIR_FIRSTCHILD, Child(CHILDID_SELF), &next), S_OK);
    EXPECT_EQ(next.lVal, 1);
    ASSERT_EQ(m_object.get()->accNavigate(NAVDIR_NEXT, Child(1), &next), S_OK);
    EXPECT_EQ(next.lVal, 2);
    EXPECT_EQ(m_object.get()->accNavigate(NAVDIR_NEXT, Child(2), &next), S_FALSE);
}

TEST_F(HtmlAccessible, ActsLaterAndOnlyWhenEnabled) {
    for (const BOOL bEnabled : {FALSE, TRUE}) {
        m_host.m_pStatic->EnableWindow(bEnabled);
        ASSERT_EQ(m_object.get()->accDoDefaultAction(Child(1)), S_OK);
        EXPECT_THAT(m_host.m_aMessages, IsEmpty()) << "not while the reader waits";
        MSG message{};
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
        EXPECT_EQ(m_host.m_aMessages.size(), bEnabled ? 1U : 0U);
    }
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("m"));
    EXPECT_EQ(m_object.get()->accDoDefaultAction(Child(CHILDID_SELF)), DISP_E_MEMBERNOTFOUND);

    m_host.SetForegroundWindow();
    ASSERT_EQ(m_object.get()->accSelect(SELFLAG_TAKEFOCUS, Child(2)), S_OK);
    VARIANT focus{};
    ASSERT_EQ(m_object.get()->get_accFocus(&focus), S_OK);
    EXPECT_EQ(focus.lVal, 2);
    EXPECT_NE(Number(&IAccessible::get_accState, 2) & STATE_SYSTEM_FOCUSED, 0);
}

TEST_F(HtmlAccessible, RefusesWhatIsNotThere) {
    for (const long nChild : {3L, -1L, 0x7FFFFFFFL}) {
        BSTR str = nullptr;
        EXPECT_EQ(m_object.get()->get_accName(Child(nChild), &str), E_INVALIDARG) << nChild;
        EXPECT_EQ(m_object.get()->accDoDefaultAction(Child(nChild)), E_INVALIDARG) << nChild;
    }
    VARIANT noNumber{};
    noNumber.vt = VT_BSTR;
    BSTR str = nullptr;
    EXPECT_EQ(m_object.get()->get_accName(noNumber, &str), E_INVALIDARG);
}

TEST_F(HtmlAccessible, OutlivesTheControl) {
    m_host.m_pStatic.reset();
    BSTR str = nullptr;
    long n = 0;
    EXPECT_EQ(m_object.get()->get_accName(Child(1), &str), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(m_object.get()->get_accChildCount(&n), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(m_object.get()->accDoDefaultAction(Child(1)), CO_E_OBJNOTCONNECTED);
    IAccessible* pLast = m_object.release();
    EXPECT_EQ(pLast->Release(), 0u) << "nobody else holds it";
}

}  // namespace
}  // namespace mvp::test
