// What a screen reader gets of a PIN edit: anything but the PIN.
#include "dialogs/base/secret_accessible.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "common/accessible.h"
#include "mvpingui/caps_lock_sensitive_edit.h"
#include "support/waiting.h"
#include "ui/dialogs/library_test.h"
#include "ui/support/child_process.h"

namespace mvp::test {
namespace {

constexpr char kTitle[] = "owner of secrets";
constexpr char kPin[] = "73915";
constexpr long kGone = STATE_SYSTEM_PROTECTED | STATE_SYSTEM_UNAVAILABLE | STATE_SYSTEM_INVISIBLE;
constexpr auto kRole = &IAccessible::get_accRole;
constexpr auto kState = &IAccessible::get_accState;
constexpr auto kNameOf = &IAccessible::get_accName;
constexpr auto kValueOf = &IAccessible::get_accValue;
constexpr auto kShortcutOf = &IAccessible::get_accKeyboardShortcut;
constexpr auto kDescriptionOf = &IAccessible::get_accDescription;

class Com {
public:
    explicit Com(DWORD dwModel) { EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, dwModel))); }
    ~Com() { CoUninitialize(); }
};

void ExpectRefused(const Accessible& object) {
    for (const long child : {0L, 1L, 2L, -1L, -4L, 0x7FFFFFFFL}) {
        BSTR str = nullptr;
        EXPECT_EQ(object.get()->get_accValue(Child(child), &str), E_ACCESSDENIED) << child;
        EXPECT_EQ(str, nullptr);
        EXPECT_EQ(object.get()->put_accValue(Child(child), nullptr), E_ACCESSDENIED);
    }
}

// "name|shortcut" of a protected text.
std::string Read(const Accessible& object) {
    EXPECT_EQ(object.Number(kRole, Child(0)), ROLE_SYSTEM_TEXT);
    EXPECT_NE(object.Number(kState, Child(0)) & STATE_SYSTEM_PROTECTED, 0);
    EXPECT_EQ(object.Number(kState, Child(0)) & STATE_SYSTEM_INVISIBLE, 0);
    ExpectRefused(object);
    for (const auto text : {&IAccessible::get_accHelp, &IAccessible::get_accDefaultAction}) {
        EXPECT_EQ(object.Text(text, 0), "none");
    }
    return object.Text(kNameOf, 0) + "|" + object.Text(kShortcutOf, 0);
}

// One result for each question about a child, then one for each other.
std::vector<HRESULT> AskAll(IAccessible& a, const VARIANT& child, bool bOut = true) {
    BSTR str = nullptr;
    VARIANT v{};
    long n = 0;
    IDispatch* object = nullptr;
    BSTR* ps = bOut ? &str : nullptr;
    VARIANT* pv = bOut ? &v : nullptr;
    long* pn = bOut ? &n : nullptr;
    IDispatch** po = bOut ? &object : nullptr;
    std::vector<HRESULT> results = {
        a.get_accName(child, ps),           a.get_accDescription(child, ps),
        a.get_accHelp(child, ps),           a.get_accKeyboardShortcut(child, ps),
        a.get_accDefaultAction(child, ps),  a.get_accHelpTopic(ps, child, pn),
        a.get_accRole(child, pv),           a.get_accState(child, pv),
        a.get_accChild(child, po),          a.accLocation(pn, pn, pn, pn, child),
        a.accNavigate(NAVDIR_UP, child, pv)};
    if (!bOut) {
        for (const HRESULT hr :
             {a.get_accValue(child, ps), a.get_accChildCount(pn), a.get_accParent(po),
              a.get_accFocus(pv), a.get_accSelection(pv), a.accHitTest(0, 0, pv)}) {
            results.push_back(hr);
        }
    }
    return results;
}

// An edit of the system's and one of ours, each behind its label, with the PIN.
struct Fields {
    Fields() {
        for (const char* label : {"&Stock:", "Pin && c&ode:"}) {
            Add("STATIC", label);
            m_hStock = std::exchange(m_hEdit, Add("EDIT", "", ES_PASSWORD));
            SetWindowTextA(m_hEdit, kPin);
        }
        m_edit.SubclassWindow(m_hEdit);
        m_edit.SetWindowText(kPin);
        m_host.SetWindowText(kTitle);
        m_host.SetForegroundWindow();
    }
    HWND Add(const char* pszClass, const char* pszText, DWORD dwStyle = 0) {
        return CreateWindowExA(0, pszClass, pszText, WS_CHILD | WS_VISIBLE | dwStyle, 100, 40, 100,
                               20, m_host.m_hWnd, nullptr, nullptr, nullptr);
    }
    HostWindow m_host;
    HWND m_hEdit = nullptr;
    HWND m_hStock = nullptr;
    CCapsLockSensitiveEdit m_edit;
};

void TakeStyleOff(HWND hEdit) {
    SetWindowLongA(hEdit, GWL_STYLE, GetWindowLongA(hEdit, GWL_STYLE) & ~ES_PASSWORD);
}

// The object for an edit that would give the PIN.
class OpenEdit : public CEdit {
public:
    explicit OpenEdit(HWND hEdit) {
        TakeStyleOff(hEdit);
        SubclassWindow(hEdit);
    }
    ~OpenEdit() override { SecretAccessible::Drop(m_pObject); }

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        return message != WM_GETOBJECT || static_cast<LONG>(lParam) != OBJID_CLIENT
                   ? CEdit::WindowProc(message, wParam, lParam)
                   : SecretAccessible::Answer(m_pObject, m_hWnd, wParam, [] { return "Told"; });
    }

private:
    SecretAccessible* m_pObject = nullptr;
};

TEST(SecretReader, DISABLED_Reads) {
    const Com com(COINIT_APARTMENTTHREADED);
    const HWND owner = FindWindowA(nullptr, kTitle);
    const HWND stock = FindWindowExA(owner, nullptr, "EDIT", nullptr);
    const HWND edit = FindWindowExA(owner, stock, "EDIT", nullptr);
    const Accessible object = Accessible::Of(edit);
    TakeStyleOff(stock);
    TakeStyleOff(edit);
    const Accessible control = Accessible::Of(stock);
    EXPECT_EQ(control.Text(kValueOf, 0), kPin) << "what the system gives of its own";
    EXPECT_EQ(control.Number(kState, Child(0)) & STATE_SYSTEM_PROTECTED, 0);
    EXPECT_EQ(Read(object), "Pin & code:|Alt+o");
    PostMessageA(owner, WM_CLOSE, 0, 0);
    EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [&] { return !IsWindow(edit); }));
    EXPECT_EQ(object.Number(kState, Child(0)), kGone);
    ExpectRefused(object);
}

TEST(SecretAccessible, TellsAnotherProcessAnythingButTheText) {
    const Com com(COINIT_APARTMENTTHREADED);  // the system ends its own with the last window
    Fields fields;
    DisabledTest reader("SecretReader.DISABLED_Reads");
    EXPECT_TRUE(
        PumpUntil([&] { return WaitForSingleObject(reader.Process(), 0) == WAIT_OBJECT_0; }));
    const ChildResult result = reader.Wait();
    EXPECT_EQ(result.dwExitCode, 0u) << result.strOutput;
}

TEST(SecretAccessible, RefusesWhatIsNotThereAndOutlivesTheControl) {
    const Com com(COINIT_APARTMENTTHREADED);
    Accessible object;
    {
        Fields fields;
        object = Accessible::Of(fields.m_hEdit);
        VARIANT noNumber{};
        noNumber.vt = VT_BSTR;
        for (const VARIANT& child : {Child(1), Child(-4), noNumber}) {
            for (const HRESULT hr : AskAll(*object.get(), child)) {
                EXPECT_EQ(hr, E_INVALIDARG);
            }
            EXPECT_EQ(object.get()->accSelect(SELFLAG_TAKEFOCUS, child), E_INVALIDARG);
        }
        for (const HRESULT hr : AskAll(*object.get(), Child(0), false)) {
            EXPECT_EQ(hr, E_INVALIDARG);
        }
        RECT told{};
        EXPECT_EQ(
            object.get()->accLocation(&told.left, &told.top, &told.right, &told.bottom, Child(0)),
            S_OK);
        EXPECT_EQ(told.right, 100);
        EXPECT_EQ(object.Number(&IAccessible::accHitTest, told.left + 1, told.top + 1), 0);
        const Accessible stock = Accessible::Of(fields.m_hStock);
        EXPECT_EQ(object.get()->accSelect(SELFLAG_TAKEFOCUS, Child(0)),
                  stock.get()->accSelect(SELFLAG_TAKEFOCUS, Child(0)));
        fields.m_edit.SetFocus();
        EXPECT_EQ(object.Number(&IAccessible::get_accFocus), 0);
        fields.m_edit.ShowText();
        EXPECT_EQ(Read(object), "Pin & code:|Alt+o");
        EXPECT_EQ(fields.m_edit.SendMessage(WM_GETOBJECT, 0, OBJID_CARET), 0) << "the system's";
        const OpenEdit open(fields.m_hStock);
        EXPECT_EQ(Read(Accessible::Of(fields.m_hStock)), "Stock:|Alt+S");
        EXPECT_EQ(Accessible::Of(fields.m_hStock).Text(kDescriptionOf, 0), "Told");
    }
    for (const HRESULT hr : AskAll(*object.get(), Child(0))) {
        EXPECT_TRUE(hr == CO_E_OBJNOTCONNECTED || hr == S_OK) << hr;
    }
    EXPECT_EQ(object.Number(kState, Child(0)), kGone);
    EXPECT_EQ(object.Number(kRole, Child(0)), ROLE_SYSTEM_TEXT);
    EXPECT_EQ(object.Text(kDescriptionOf, 0), "none");
    ExpectRefused(object);
    EXPECT_EQ(object.release()->Release(), 0u) << "nobody else holds it";
}

TEST(SecretAccessible, HasTheNameOfTheNearestLabelThatShows) {
    const Com com(COINIT_APARTMENTTHREADED);
    struct Case {
        const char* pszClass;
        DWORD dwStyle;
        const char* pszText;
        const char* pszNamed;
    };
    for (const auto& [name, style, text, named] :
         {Case{"STATIC", SS_NOPREFIX, "A && &B", "A && &B|none"},
          {"BUTTON", BS_AUTORADIOBUTTON, "By &code", "By code|Alt+c"},
          {"BUTTON", BS_PUSHBUTTON, "&Other", "none|none"},
          {"EDIT", 0, "other's &text", "none|none"}}) {
        Fields fields;
        fields.Add(name, text, style);
        const HWND hidden = fields.Add("STATIC", "hidden");
        ShowWindow(hidden, SW_HIDE);
        fields.m_edit.SetWindowPos(CWnd::FromHandle(hidden), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        EXPECT_EQ(Read(Accessible::Of(fields.m_hEdit)), named);
    }
}

class CapsLockReader : public LibraryTest {
protected:
    CapsLockReader() {
        m_hook =
            SetWinEventHook(EVENT_OBJECT_DESCRIPTIONCHANGE, EVENT_OBJECT_DESCRIPTIONCHANGE, nullptr,
                            &OnEvent, GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
        s_events.clear();
    }
    ~CapsLockReader() override {
        UnhookWinEvent(m_hook);
        SetCapsLock(false);
    }
    static void CALLBACK OnEvent(HWINEVENTHOOK, DWORD, HWND hWnd, LONG nObject, LONG nChild, DWORD,
                                 DWORD) {
        EXPECT_EQ(nChild, CHILDID_SELF);
        s_events.push_back(nObject == OBJID_CLIENT ? hWnd : nullptr);
    }
    static inline std::vector<HWND> s_events;
    Com m_com{COINIT_APARTMENTTHREADED};
    HWINEVENTHOOK m_hook = nullptr;
};

TEST_F(CapsLockReader, IsToldOfEveryChangeWhileTheEditHasTheFocusAndOfNothingElse) {
    Fields fields;
    CCapsLockSensitiveEdit& edit = fields.m_edit;
    const std::string title = TextOf(IDS_CAPS_LOCK_TITLE) + ". ";
    const std::string pin = title + TextOf(IDS_CAPS_LOCK_PIN);
    const std::string password = title + TextOf(IDS_CAPS_LOCK_PASSWORD);
    const auto press = [&](bool bOn, UINT nKey = VK_CAPITAL) {
        SetCapsLock(bOn);
        edit.SendMessage(WM_KEYUP, nKey, 0);
    };
    struct Step {
        std::function<void()> act;
        bool bEvent;
        std::string strDescription;
    };
    const std::vector<Step> steps = {
        {[&] { press(true); }, false, "none"},  // without the focus
        {[&] { edit.SetFocus(); }, true, pin},
        {[&] { press(true, 'A'); }, false, pin},
        {[&] { edit.SetMode(false); }, false, password},
        {[&] { press(false); }, true, "none"},
        {[&] { press(false, 'A'); }, false, "none"},
        {[&] { press(true); }, true, password},
        {[&] { press(false, VK_SHIFT); }, true, "none"},  // where Shift ends it
        {[&] { press(true); }, true, password},
        {[&] { fields.m_host.m_ok.SetFocus(); }, true, "none"},
        {[&] { press(false); }, false, "none"},
        {[&] { edit.SetFocus(); }, false, "none"},
        {[&] { edit.SetReadOnly(); }, false, "none"},
        {[&] { press(true); }, false, "none"},
        {[&] { edit.SetReadOnly(FALSE), press(true); }, true, password},
    };
    std::vector<HWND> expected;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        steps[i].act();
        expected.resize(expected.size() + (steps[i].bEvent ? 1 : 0), edit.m_hWnd);
        ASSERT_TRUE(PumpUntil([&] { return s_events.size() >= expected.size(); })) << i;
        EXPECT_EQ(s_events, expected) << i;
        EXPECT_EQ(Accessible::Of(edit).Text(kDescriptionOf, 0), steps[i].strDescription) << i;
    }
}

}  // namespace
}  // namespace mvp::test
