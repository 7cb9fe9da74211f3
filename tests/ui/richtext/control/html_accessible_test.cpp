// What a screen reader is told, through the system's own way to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/accessible.h"
#include "support/waiting.h"
#include "ui/richtext/control/html_host.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HtmlAccessible : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        m_host.Add(
            "Your <b>card</b>:<br><a msg=m>details</a> or <a href=http://d.example/>help</a>",
            WS_TABSTOP);
        m_object = Accessible::Of(*m_host.m_pStatic);
        ASSERT_TRUE(m_object);
    }
    void TearDown() override {
        m_object.reset();
        m_host.m_pStatic.reset();
        CoUninitialize();
    }

    HRESULT NameResult(const VARIANT& child) {
        BSTR str = nullptr;
        return m_object.get()->get_accName(child, &str);
    }
    HRESULT Act(long nChild) { return m_object.get()->accDoDefaultAction(Child(nChild)); }

    HtmlHost m_host;
    Accessible m_object;
};

TEST_F(HtmlAccessible, TellsTextAndLinks) {
    long children = 0;
    ASSERT_EQ(m_object.get()->get_accChildCount(&children), S_OK);
    EXPECT_EQ(children, 2);
    EXPECT_EQ(m_object.Text(&IAccessible::get_accName, CHILDID_SELF),
              "Your card:\ndetails or help");
    EXPECT_EQ(m_object.Text(&IAccessible::get_accName, 1), "details");
    EXPECT_EQ(m_object.Text(&IAccessible::get_accName, 2), "help");
    EXPECT_EQ(m_object.Text(&IAccessible::get_accValue, 2), "http://d.example/");
    EXPECT_EQ(m_object.Text(&IAccessible::get_accValue, 1), "none");
    EXPECT_EQ(m_object.Text(&IAccessible::get_accDefaultAction, 1), "Jump");
    const auto role = &IAccessible::get_accRole;
    const auto state = &IAccessible::get_accState;
    EXPECT_EQ(m_object.Number(role, Child(CHILDID_SELF)), ROLE_SYSTEM_GROUPING);
    EXPECT_EQ(m_object.Number(role, Child(1)), ROLE_SYSTEM_LINK);
    EXPECT_EQ(m_object.Number(state, Child(1)), STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE);
    EXPECT_NE(m_object.Number(state, Child(0)) & STATE_SYSTEM_READONLY, 0);

    m_host.m_pStatic->SetWindowText("no links");
    EXPECT_EQ(m_object.Number(role, Child(CHILDID_SELF)), ROLE_SYSTEM_STATICTEXT);
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
    EXPECT_EQ(m_object.Number(hit, link.left + 1, link.top + 1), 2);
    EXPECT_EQ(m_object.Number(hit, link.right + 40, link.top + 1), CHILDID_SELF);
    EXPECT_EQ(m_object.Number(hit, 0, 0), -1);

    const auto navigate = &IAccessible::accNavigate;
    EXPECT_EQ(m_object.Number(navigate, NAVDIR_FIRSTCHILD, Child(CHILDID_SELF)), 1);
    EXPECT_EQ(m_object.Number(navigate, NAVDIR_NEXT, Child(1)), 2);
    EXPECT_EQ(m_object.Number(navigate, NAVDIR_NEXT, Child(2)), -1);
}

TEST_F(HtmlAccessible, ActsLaterAndOnlyWhenEnabled) {
    for (const BOOL enabled : {FALSE, TRUE}) {
        m_host.m_pStatic->EnableWindow(enabled);
        ASSERT_EQ(Act(1), S_OK);
        EXPECT_THAT(m_host.m_aMessages, IsEmpty()) << "not while the reader waits";
        DispatchAll();
        EXPECT_EQ(m_host.m_aMessages.size(), enabled ? 1U : 0U);
    }
    EXPECT_THAT(m_host.m_aMessages, ElementsAre("m"));
    EXPECT_EQ(Act(CHILDID_SELF), DISP_E_MEMBERNOTFOUND);

    m_host.SetForegroundWindow();
    ASSERT_EQ(m_object.get()->accSelect(SELFLAG_TAKEFOCUS, Child(2)), S_OK);
    EXPECT_EQ(m_object.Number(&IAccessible::get_accFocus), 2);
    EXPECT_NE(m_object.Number(&IAccessible::get_accState, Child(2)) & STATE_SYSTEM_FOCUSED, 0);
    EXPECT_EQ(m_object.Number(&IAccessible::get_accState, Child(1)) & STATE_SYSTEM_FOCUSED, 0);
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
