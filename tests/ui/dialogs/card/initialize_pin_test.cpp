// CInitializePinDlg: the policy values that it hands on and shows as rules, and what comes of OK.
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/initialize_pin_dialog.h"
#include "services/error_text.h"
#include "services/format_text.h"
#include "support/dialog_driver.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\PXRM)";
constexpr int kNew = IDC_INITIALIZE_PIN_NEW_EDIT;
constexpr int kConfirm = IDC_INITIALIZE_PIN_CONFIRM_EDIT;
constexpr auto kUnset = MVP_POLICY_FROM_CONFIGURATION;
constexpr PINPolicies kAllUnset = {kUnset, kUnset, kUnset, kUnset, kUnset,
                                   kUnset, kUnset, kUnset, kUnset};
using Texts = std::vector<std::string>;

void TypePins(Dialog& d, const std::string& strNew, const std::string& strConfirm) {
    d.Type(kNew, strNew);
    d.Type(kConfirm, strConfirm);
}
void Enter(Dialog& d) {
    TypePins(d, "58381", "58381");
    d.Click(IDOK);
}
void SendOk(Dialog& d) {
    d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0); });
}

class InitializePin : public LibraryTest {
protected:
    static InitializePin& From(void* pContext) { return *static_cast<InitializePin*>(pContext); }
    static int Initialize(void* pContext, CString strPin, int nMin, int nMax, int nTries, int nWeak,
                          int nForce, int nUnlock) {
        std::string call(strPin);
        for (const int value : {nMin, nMax, nTries, nWeak, nForce, nUnlock}) {
            call += " " + std::to_string(value);
        }
        From(pContext).m_calls.push_back(call);
        return From(pContext).m_initialize();
    }
    static int NeverDisplay(void* pContext) { return ++From(pContext).m_nNever; }
    static int GetCode(void* pContext, CString& strCode) {
        strCode = "0123456789";
        return From(pContext).m_nCodeResult;
    }
    template <class Dialog = CInitializePinDlg, class... Missing>
    Dialog Make(const PINPolicies* pPolicies, Missing... missing) {
        return Dialog(missing..., nullptr, pPolicies, this, &Initialize, &NeverDisplay, &GetCode,
                      "Reader A");
    }
    template <class... Steps>
    INT_PTR Run(const PINPolicies* pPolicies, Steps&&... steps) {
        CInitializePinDlg dialog = Make(pPolicies);
        const DialogDriver driver(std::forward<Steps>(steps)...);
        const INT_PTR result = dialog.DoModal();
        m_nPending = dialog.m_bUnlockCodePending;
        return result;
    }

    Texts m_calls;
    std::function<int()> m_initialize = [] { return MVPINGUI_CARD_OK; };
    int m_nCodeResult = MVPINGUI_CARD_FAILED;
    int m_nNever = 0;
    int m_nPending = -1;
};

TEST_F(InitializePin, HandsOnTheValuesOfTheCallerTheConfigurationOrItsOwn) {
    EXPECT_EQ(Run(&kAllUnset, Enter), IDOK);
    EXPECT_EQ(m_log.Texts(1), Texts(7, "RegOpenKeyEx returns the error 2"));
    EXPECT_EQ(Run(nullptr, Enter), IDOK);
    const struct {
        const char* pszName;
        DWORD dwConfigured;
        const char* pszWithoutIt;
    } values[] = {
        {"MinimumPINLength", 0, "58381 4 9 -1 2 1 7"},
        {"MaximumPINLength", 9, "58381 0 25 -1 2 1 7"},
        {"MaxPINTries", 0xFFFFFFFF, "58381 0 9 6 2 1 7"},
        {"MaxPINUnlock", 7, "58381 0 9 -1 2 1 6"},
        {"WeakPINAllowed", 2, "58381 0 9 -1 0 1 7"},
        {"ForceChangePIN", 1, "58381 0 9 -1 2 0 7"},
        {"AlphaPINAllowed", 0, "58381 0 9 -1 2 1 7"},
    };
    for (const auto& value : values) {
        m_hive.SetDword(kKey, value.pszName, value.dwConfigured);
    }
    const PINPolicies callers = {3, kUnset, 0, 11, 12, 13, kUnset, 0, kUnset};
    EXPECT_EQ(Run(&callers, Enter), IDOK);
    EXPECT_EQ(m_calls, (Texts{"58381 4 25 6 0 0 6", "58381 4 25 6 0 0 6", "58381 3 9 0 2 0 12"}));
    const std::pair<DWORD, std::string> spoiled[] = {
        {REG_SZ, std::string("3", 2)}, {REG_BINARY, "abcd"}, {REG_DWORD, "ab"}, {REG_NONE, ""}};
    for (const auto& value : values) {
        for (const auto& [type, bytes] : spoiled) {
            SCOPED_TRACE(value.pszName + bytes);
            type == REG_NONE ? m_hive.DeleteValue(kKey, value.pszName)
                             : m_hive.SetRaw(kKey, value.pszName, type, bytes);
            m_log.Clear();
            EXPECT_EQ(Run(&kAllUnset, Enter), IDOK);
            EXPECT_EQ(m_calls.back(), value.pszWithoutIt);
            EXPECT_EQ(m_log.Texts(1), Texts{"RegQueryValueEx returns the error " +
                                            std::string(type == REG_NONE ? "2" : "1804")});
        }
        m_hive.SetDword(kKey, value.pszName, value.dwConfigured);
    }
}

TEST_F(InitializePin, JudgesByTheRulesThatComeOfTheValues) {
    // Weak PINs are refused by exactly 1, letters by all but 1.
    const struct {
        const char* pszName;
        std::uint32_t dwValue;
        const char* pszPin;
        bool bAllowed;
    } cases[] = {
        {"WeakPINAllowed", 0, "1234", true},         {"WeakPINAllowed", 1, "1234", false},
        {"WeakPINAllowed", 1, "5838", true},         {"WeakPINAllowed", 0xFFFFFFFF, "1234", true},
        {"AlphaPINAllowed", 0, "58a8", false},       {"AlphaPINAllowed", 1, "58a8", true},
        {"AlphaPINAllowed", 2, "58a8", false},       {"MinimumPINLength", 6, "58381", false},
        {"MinimumPINLength", 0xFFFFFFFF, "5", true}, {"MaximumPINLength", 4, "58381", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pszName + std::to_string(c.dwValue) + " " + c.pszPin);
        m_hive.SetDword(kKey, c.pszName, c.dwValue);
        m_calls.clear();
        const auto enter = [&](Dialog& d) {
            TypePins(d, c.pszPin, c.pszPin + std::string("x"));
            EXPECT_FALSE(d.IsEnabled(IDOK)) << "they differ";
            d.Press(VK_BACK);
            EXPECT_EQ(d.IsEnabled(IDOK), c.bAllowed);
            EnableWindow(d.Control(IDOK), TRUE);
            SendOk(d);
            c.bAllowed ? d.WaitGone() : d.Escape();
        };
        EXPECT_EQ(Run(nullptr, enter), c.bAllowed ? IDOK : IDCANCEL);
        EXPECT_EQ(m_calls.size(), c.bAllowed ? 1U : 0U) << "whoever sends the command";
        m_hive.DeleteKey(kKey);
    }
}

TEST_F(InitializePin, OpensReadyToTypeAndGrowsByItsRules) {
    EXPECT_EQ(
        Run(nullptr,
            [](Dialog& d) {
                EXPECT_EQ(d.FocusedId(), kNew);
                EXPECT_FALSE(d.IsEnabled(IDOK));
                EXPECT_EQ(d.Send(kNew, EM_GETPASSWORDCHAR), '*');
                EXPECT_EQ(d.Send(kConfirm, EM_GETPASSWORDCHAR), '*');
                EXPECT_NE(GetWindowLongA(d.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
                const CRect place = d.Rect(IDC_INITIALIZE_PIN_POLICIES_PLACE);
                const CRect lines = RectIn(d.Handle(), GetParent(d.Control(IDC_POLICIES_BOX)));
                EXPECT_EQ(lines.TopLeft(), place.TopLeft());
                RECT units = {0, 0, 250, 7};
                RECT client = {};
                LOGFONTA font{};
                d.Run([&] {
                    MapDialogRect(d.Handle(), &units);
                    GetClientRect(d.Handle(), &client);
                    const LRESULT heading = d.Send(IDC_INITIALIZE_PIN_HEADING, WM_GETFONT);
                    GetObjectA(reinterpret_cast<HFONT>(heading), sizeof font, &font);
                    EXPECT_EQ(SendMessageA(d.Handle(), WM_GETICON, ICON_SMALL, 0),
                              reinterpret_cast<LRESULT>(LoadResourceIcon(IDI_CARD_INITIALIZE, 16)));
                });
                EXPECT_EQ(font.lfWeight, 700);
                // As the template has it: 7 units to the buttons and as many to the frame.
                EXPECT_NEAR(d.Rect(IDOK).top - lines.bottom, units.bottom, 1);
                EXPECT_EQ(d.Rect(IDOK).top, d.Rect(IDCANCEL).top);
                EXPECT_NEAR(client.bottom - d.Rect(IDOK).bottom, units.bottom, 1);
                EXPECT_EQ(client.right, units.right);
                d.Click(IDCANCEL);
            }),
        IDCANCEL);
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size()) << m_log.Dump();
}

TEST_F(InitializePin, FailureIsToldAndLeavesWhatWasTyped) {
    const auto tryAll = [&](Dialog& d) {
        TypePins(d, "58381", "58381");
        for (const int code : {1, 7, -1, 0}) {  // 0: the callback throws
            m_initialize = [=] { return code != 0 ? code : throw std::runtime_error("callback"); };
            d.Click(IDOK);
            Dialog failed = d.Next();
            CString expected;
            d.Run([&] {
                expected = FormatResourceText(IDS_INITIALIZE_FAILED_FORMAT,
                                              ErrorText(code == 0 ? 1 : code));
            });
            EXPECT_STREQ(expected, failed.Text(IDC_UNLOCK_RESULT_MESSAGE).c_str());
            EXPECT_STREQ(ResourceString(IDS_INITIALIZE_FAILED_TITLE), failed.Title().c_str());
            EXPECT_STREQ(ResourceString(IDS_INITIALIZE_FAILED_HEADING),
                         failed.Text(IDC_UNLOCK_RESULT_HEADING).c_str());
            failed.Click(IDOK);
            failed.WaitGone();
        }
        // What is typed while the callback serves messages is judged when it is over.
        m_initialize = [&] {
            SetDlgItemTextA(d.Handle(), kNew, "1");
            SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            return 1;
        };
        d.Click(IDOK);
        d.Next().Click(IDOK);
        d.WaitUntil("OK disabled", [&] { return !d.IsEnabled(IDOK); });
        d.Escape();
    };
    EXPECT_EQ(Run(nullptr, tryAll), IDCANCEL);
    EXPECT_EQ(m_calls, Texts(5, "58381 4 25 6 0 0 6"));
    CInitializePinDlg without(nullptr, nullptr, this, nullptr, nullptr, nullptr, nullptr);
    const DialogDriver driver([](Dialog& d) {
        Enter(d);
        d.Next().Escape();
        d.Cancel();
    });
    EXPECT_EQ(without.DoModal(), IDCANCEL) << "no callback, no PIN";
}

std::string g_strNotice;

LRESULT CALLBACK TakeNotice(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == WM_COPYDATA) {
        const auto& record = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        g_strNotice = std::to_string(record.dwData) + static_cast<char*>(record.lpData);
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

TEST_F(InitializePin, SuccessEndsTheWatchShowsTheCodeAndTellsTheSuite) {
    WNDCLASSA tray{};
    tray.lpszClassName = "VkTrayHandlerClass";
    tray.lpfnWndProc = &TakeNotice;
    RegisterClassA(&tray);
    CWnd receiver;
    receiver.CreateEx(0, tray.lpszClassName, "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr);
    const UINT removed = RegisterWindowMessageA("VKCardRemovedEvent");
    const struct {
        int nCodeResult;
        bool bTicked;
        int nPending;
    } cases[] = {{0, true, 0}, {0, false, 1}, {7, false, 1}};
    for (const auto& c : cases) {
        g_strNotice.clear();
        m_nCodeResult = c.nCodeResult;
        const auto enter = [&](Dialog& d) {
            // Pulled while the callback works, the card has its PIN when that succeeds.
            m_initialize = [&] {
                return static_cast<int>(SendMessageA(d.Handle(), removed, 0, 0));
            };
            Enter(d);
            if (c.nCodeResult == 0) {
                Dialog code = d.Next();
                EXPECT_EQ(code.Text(IDC_UNLOCK_CODE_CODE), "0123-4567-89");
                EXPECT_EQ(g_strNotice, "");
                if (c.bTicked) {
                    code.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
                }
                code.Click(IDOK);
            }
        };
        EXPECT_EQ(Run(nullptr, enter), IDOK);
        EXPECT_EQ(m_nPending, c.nPending);
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);  // takes what was sent
        EXPECT_EQ(g_strNotice, "78945Reader A");
    }
    EXPECT_EQ(m_nNever, 1);
    EXPECT_EQ(m_boxes.Calls().size(), 1U);
    receiver.DestroyWindow();
}

TEST_F(InitializePin, EndsWithItsCardAlone) {
    const auto remove = [](Dialog& d) {
        for (const char* reader : {"Reader B", "reader a"}) {
            EXPECT_TRUE(d.IsOpen());
            VKRaiseEvent(VKEVENT_CARD_REMOVED, reader);
            EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
            d.Settle();
        }
    };
    EXPECT_EQ(Run(nullptr, remove), IDCANCEL);
}

TEST_F(InitializePin, NeedsItsEditsItsRulesAndTheModule) {
    for (const int missing :
         {kNew, kConfirm, IDC_INITIALIZE_PIN_POLICIES_PLACE, IDC_INITIALIZE_PIN_HEADING, IDOK, 0}) {
        SCOPED_TRACE(missing);
        m_calls.clear();
        auto dialog = Make<Incomplete<CInitializePinDlg>>(nullptr, missing);
        if (missing == kNew || missing == kConfirm) {
            EXPECT_EQ(dialog.DoModal(), -1);
            continue;
        }
        const DialogDriver driver([&](Dialog& d) {
            TypePins(d, "58381", "58381");
            SendOk(d);
            d.Cancel();
        });
        dialog.DoModal();
        EXPECT_EQ(m_calls.empty(), missing == IDC_INITIALIZE_PIN_POLICIES_PLACE);
    }
    EXPECT_EQ(Make(nullptr).DoModal(), -1) << "the module has gone with the last one";
}

}  // namespace
}  // namespace mvp::test
