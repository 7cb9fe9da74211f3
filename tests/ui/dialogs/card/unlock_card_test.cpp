// Unlocking a card: the dialog from the caller's callbacks to its result, and the small ones that
// tell of it.
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/unlock_card_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "services/error_text.h"
#include "services/format_text.h"
#include "services/help_topic.h"
#include "support/dialog_driver.h"
#include "support/patched_imports.h"
#include "support/resource_counts.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

using UnlockCard = LibraryTest;

constexpr int kNew = IDC_UNLOCK_CARD_NEW_EDIT;
constexpr int kConfirm = IDC_UNLOCK_CARD_CONFIRM_EDIT;
constexpr int kCode = IDC_UNLOCK_CARD_CODE_EDIT;
constexpr int kHeading = IDC_UNLOCK_RESULT_HEADING;
constexpr char kTyped[] = "1234-5678-9abc-def0 5838 5838";
constexpr char kAttempt[] = "123456789abcdef0/5838 ";
constexpr int kThrow = -77;
// Unused, digits, weak, same, minimum, maximum, no cancelling.
constexpr PwdRuleArgs kRules = {0xDEAD, 1, 2, 1, 4, 8, 1};

// The card as the callbacks have it.
struct Card {
    const char* pszChallenge = nullptr;       // null: it takes a fixed code
    std::vector<int> results = {0};           // of the attempts, the next one last; 0 stays
    std::function<void()> onAttempt = [] {};  // while the callback runs
    std::string strAttempts = {};             // "code/PIN " each
    int nMissing = -1;                        // of the dialog, see Incomplete

    static int Challenge(void* pContext, CString& strChallenge) {
        const auto& card = *static_cast<Card*>(pContext);
        strChallenge += card.pszChallenge != nullptr ? card.pszChallenge : "ignored";
        return card.pszChallenge != nullptr ? 0 : 3;
    }
    static int Unlock(void* pContext, CString strCode, CString strPin) {
        auto& card = *static_cast<Card*>(pContext);
        card.strAttempts += std::string(strCode) + "/" + std::string(strPin) + " ";
        const int result = card.results.back();
        if (result != 0) {
            card.results.pop_back();
        }
        card.onAttempt();
        return result != kThrow ? result : throw std::runtime_error("the card is gone");
    }
    template <class... Scripts>
    INT_PTR Ask(Scripts&&... scripts) {
        Incomplete<CUnlockCardDlg> dialog(nMissing, nullptr, &kRules, this, &Unlock, &Challenge,
                                          "Reader A");
        const DialogDriver driver(std::forward<Scripts>(scripts)...);
        return dialog.DoModal();
    }
};

void Set(const Dialog& d, int nEdit, const char* pszText) {
    d.Run([&] { SetDlgItemTextA(d.Handle(), nEdit, pszText); });
}

void Fill(const Dialog& d) {
    Set(d, kCode, "1234-5678-9abc-def0");
    Set(d, kNew, "5838");
    Set(d, kConfirm, "5838");
}

std::string Fields(const Dialog& d) {
    return d.Text(kCode) + " " + d.Text(kNew) + " " + d.Text(kConfirm);
}

// Confirms the dialog over `d`, and returns what it tells.
std::string Confirm(Dialog& d, int nText) {
    Dialog top = d.Next();
    std::string text = top.Text(nText);
    top.Enter();
    top.WaitGone();
    return text;
}

void RemoveCard(const char* pszReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
    EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
}

// Where the controls are, and the client area (-1).
std::map<int, CRect> PlacesIn(HWND hDialog) {
    std::map<int, CRect> places;
    GetClientRect(hDialog, &places[-1]);
    for (HWND h = GetWindow(hDialog, GW_CHILD); h != nullptr; h = GetWindow(h, GW_HWNDNEXT)) {
        places[GetDlgCtrlID(h)] = RectIn(hDialog, h);
    }
    return places;
}

void ExpectPlaces(const Dialog& d, int nUp) {
    const HWND plain = CreateDialogParamA(
        ResourceModule(), MAKEINTRESOURCEA(IDD_UNLOCK_CARD), nullptr,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    std::map<int, CRect> expected = PlacesIn(plain);
    DestroyWindow(plain);
    const CRect list = RectIn(d.Handle(), d.Control(IDC_POLICIES_BOX));
    const CRect place = expected.at(IDC_UNLOCK_CARD_POLICIES_PLACE);
    EXPECT_EQ(list.TopLeft(), CPoint(place.left, place.top - nUp));
    EXPECT_EQ(list.Width(), expected.at(IDC_UNLOCK_CARD_PIN_BOX).Width());
    EXPECT_GT(list.Height(), 50);
    std::map<int, CRect> places = PlacesIn(d.Handle());
    EXPECT_EQ(places[0], list) << "the panel is as large as its list";
    for (auto& [id, rect] : expected) {
        const bool upper = id == 3033 || id == 3035 || id == 3034 || id == 3026;
        const int down = (upper || id == 3032 ? 0 : -nUp) + (id < 3 ? list.Height() : 0);
        rect.top += id > 0 ? down : 0;
        rect.bottom += down;
        EXPECT_EQ(places[id], rect) << id;
        EXPECT_TRUE(id < 0 || d.IsVisible(id) == (id != 3040 && (nUp == 0 || !upper))) << id;
    }
    const RECT window = d.ScreenRect();
    EXPECT_NEAR(window.top + window.bottom, GetSystemMetrics(SM_CYSCREEN), 1);
}

std::string g_strHelp;

TEST_F(UnlockCard, OpensReadyToTypeAndHelps) {
    m_hive.SetString(R"(SOFTWARE\Quillon\Veskara\GlobalConfig)", "VeskaraHelpPath", "v.chm");
    SetHelpViewer([](HWND, LPCSTR pszFile, UINT, DWORD_PTR nTopic) -> HWND {
        g_strHelp = pszFile + std::to_string(nTopic);
        return nullptr;
    });
    const std::pair<const char*, const char*> challenges[] = {
        {nullptr, ""}, {"", ""}, {"ABCD", "ABCD"}, {"ABCDE", "ABCD-E"}, {"ABCDEFGH", "ABCD-EFGH"}};
    for (const auto& each : challenges) {
        const auto look = [&each](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_UNLOCK_CARD_CHALLENGE), each.second);
            EXPECT_EQ(d.Send(kNew, EM_GETPASSWORDCHAR), '*');
            EXPECT_EQ(d.Send(kConfirm, EM_GETPASSWORDCHAR), '*');
            EXPECT_FALSE(d.IsVisible(IDC_POLICIES_SAME_TEXT)) << "there is no current PIN";
            HELPINFO info{};
            info.cbSize = sizeof info;
            d.Run([&] {
                ExpectPlaces(d, each.first != nullptr ? 0 : 100);
                EXPECT_EQ(SendMessageA(d.Handle(), WM_GETICON, ICON_SMALL, 0),
                          reinterpret_cast<LRESULT>(LoadResourceIcon(IDI_CARD_UNLOCK, 16)));
                EXPECT_EQ(GetForegroundWindow(), d.Handle());
                SendMessageA(d.Handle(), WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
            });
            for (const int id : {kCode, kNew, kConfirm, IDCANCEL}) {  // OK is disabled
                EXPECT_EQ(d.FocusedId(), id);
                d.Tab();
            }
            d.Escape();
        };
        EXPECT_EQ(Card{.pszChallenge = each.first}.Ask(look), IDCANCEL);
    }
    SetHelpViewer(nullptr);
    EXPECT_EQ(g_strHelp, "v.chm1013");
}

TEST_F(UnlockCard, TellsTheHelpDesksNumber) {
    const std::string full(511, '7');
    const std::tuple<DWORD, std::string, std::string> cases[] = {
        {REG_NONE, "no key", ""},
        {REG_SZ, std::string("1\0", 2), ""},
        {REG_SZ, std::string("12\0", 3), "12"},
        {REG_SZ, full + '\0', full},
        {REG_SZ, full + "7", full + "7"},
        {REG_SZ, std::string(600, '7'), ""},
        {REG_SZ, "+33 %s 1", "+33 %s 1"},
        {REG_BINARY, "1234", ""}};
    for (const auto& [type, bytes, number] : cases) {
        if (type != REG_NONE) {
            m_hive.SetRaw(R"(software\Quillon\Veskara\GlobalConfig)", "ContactTel", type, bytes);
        }
        const CString text = number.empty()
                                 ? ResourceString(IDS_UNLOCK_HELP_DESK)
                                 : FormatResourceText(IDS_UNLOCK_HELP_DESK_FORMAT, number.c_str());
        Card{.pszChallenge = ""}.Ask([&](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_UNLOCK_CARD_HELP_DESK), std::string(text)) << bytes;
            d.Escape();
        });
    }
}

TEST_F(UnlockCard, OkFollowsEveryEdit) {
    const std::tuple<int, const char*, bool> steps[] = {{kNew, "5838", false},
                                                        {kConfirm, "5838", false},
                                                        {kCode, "--0123456789abcDEF", true},
                                                        {kCode, "0123456789ABCDE", false},
                                                        {kCode, "0123456789ABCDEF", true},
                                                        {kCode, "0123456789ABCDEG", false},
                                                        {kCode, "0123456789ABCDEF", true},
                                                        {kConfirm, "583", false},
                                                        {kNew, "583", false},
                                                        {kNew, "58385838", false},
                                                        {kConfirm, "58385838", true},
                                                        {kCode, "", false}};
    Card card;
    card.Ask([&](Dialog& d) {
        for (const auto& [edit, text, allowed] : steps) {
            Set(d, edit, text);
            EXPECT_EQ(d.IsEnabled(IDOK), allowed) << text;
            if (allowed) {
                continue;
            }
            // The command comes without the button, too.
            PostMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            if (d.Text(kNew) != d.Text(kConfirm)) {
                EXPECT_EQ(Confirm(d, 0xFFFF), std::string(ResourceString(IDS_UNLOCK_PINS_DIFFER)));
            }
            d.Settle();
        }
        EXPECT_EQ(Fields(d), " 58385838 58385838");
        d.Escape();
    });
    EXPECT_EQ(card.strAttempts, "");
}

TEST_F(UnlockCard, TriesUntilTheCardIsUnlocked) {
    WNDCLASSA info{};
    info.lpfnWndProc = &DefWindowProcA;
    info.lpszClassName = "VkTrayHandlerClass";
    RegisterClassA(&info);
    const HWND tray =
        CreateWindowA(info.lpszClassName, "", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    constexpr char kNotice[] = "message: 78946, on reader Reader A to the Smart Card Agent";
    std::string told[4] = {std::string(ResourceString(IDS_UNLOCK_WRONG_CODE))};
    for (const auto& [i, code] : {std::pair{1, 7}, {2, 99}, {3, MVPINGUI_CARD_FAILED}}) {
        told[i] = std::string(FormatResourceText(IDS_UNLOCK_FAILED_FORMAT, ErrorText(code)));
    }
    Card card{.results = {0, kThrow, 99, 7, 5}};
    const auto attempt = [&](Dialog& d) {
        Fill(d);
        for (const std::string& text : told) {
            d.Click(IDOK);
            EXPECT_EQ(Confirm(d, IDC_UNLOCK_RESULT_MESSAGE), text);
            EXPECT_EQ(Fields(d), kTyped);
            EXPECT_EQ(std::exchange(card.strAttempts, ""), kAttempt);
        }
        d.Click(IDOK);
        Dialog success = d.Next();
        EXPECT_FALSE(m_log.ContainsPart(kNotice)) << "before the user has seen it";
        success.Enter();
    };
    EXPECT_EQ(card.Ask(attempt), IDOK);
    EXPECT_EQ(card.strAttempts, kAttempt);
    EXPECT_TRUE(m_log.ContainsPart(kNotice)) << m_log.Dump();
    DestroyWindow(tray);
}

enum class When { Open, Attempt, Told };

TEST_F(UnlockCard, RemovalEndsItUnlessTheCardIsUnlocked) {
    const std::tuple<When, const char*, int, INT_PTR> cases[] = {
        {When::Open, "reader a", 0, IDCANCEL}, {When::Open, "Reader B", 0, IDOK},
        {When::Attempt, "Reader A", 0, IDOK},  {When::Attempt, "Reader A", 5, IDCANCEL},
        {When::Told, "Reader A", 0, IDOK},     {When::Told, "Reader A", 5, IDCANCEL}};
    for (const auto& each : cases) {
        const auto [when, reader, code, end] = each;
        SCOPED_TRACE(testing::Message() << static_cast<int>(when) << " " << code);
        const auto reach = [&each](When now) {
            if (now == std::get<0>(each)) {
                RemoveCard(std::get<1>(each));
            }
        };
        Card card{.results = {0, code}};
        card.onAttempt = [&] {
            reach(When::Attempt);
            // Not heard while the callback runs.
            PostMessageA(GetActiveWindow(), WM_COMMAND, IDOK, 0);
            for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
                DispatchMessageA(&message);
            }
        };
        const auto script = [&](Dialog& d) {
            Fill(d);
            reach(When::Open);
            d.Settle();
            if (d.IsOpen()) {
                d.Click(IDOK);
                Dialog result = d.Next();
                reach(When::Told);
                result.Settle();
                result.Enter();
            }
        };
        EXPECT_EQ(card.Ask(script), end);
        EXPECT_EQ(card.strAttempts, when == When::Open && end == IDCANCEL ? "" : kAttempt);
    }
}

TEST_F(UnlockCard, NeedsItsEditsAndThePlaceOfTheRules) {
    for (const int missing : {0, IDOK, IDC_UNLOCK_CARD_CHALLENGE, IDC_UNLOCK_CARD_HEADING,
                              IDC_UNLOCK_CARD_POLICIES_PLACE, kCode, kNew, kConfirm}) {
        SCOPED_TRACE(missing);
        Card card{.pszChallenge = missing % 2 == 0 ? "A" : nullptr, .nMissing = missing};
        if (missing == kCode || missing == kNew || missing == kConfirm) {
            EXPECT_EQ(card.Ask(), -1);
            continue;
        }
        const bool judged = missing != IDC_UNLOCK_CARD_POLICIES_PLACE;
        const auto script = [&](Dialog& d) {
            Fill(d);
            PostMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            if (!judged) {
                EXPECT_FALSE(d.IsEnabled(IDOK));
                d.Escape();
            } else if (missing != 0) {  // else nothing tells of the success
                Confirm(d, IDOK);
            }
        };
        EXPECT_EQ(card.Ask(script), judged ? IDOK : IDCANCEL);
        EXPECT_EQ(card.strAttempts, judged ? kAttempt : "");
        LoadResourceModule();
    }
}

BOOL WINAPI RefuseToPlace(HWND, HWND, int, int, int, int, UINT) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

TEST_F(UnlockCard, TellsWhatItDoesAndKeepsNothing) {
    const auto attempt = [](Dialog& d) {
        Fill(d);
        d.Click(IDOK);
        Confirm(d, IDOK);
    };
    Card().Ask(attempt);
    Card{.pszChallenge = ""}.Ask([](Dialog&) { RemoveCard("Reader A"); });
    {
        const PatchedImports refused("dlgfw.dll", {{"SetWindowPos", Address(&RefuseToPlace)}});
        Card().Ask([](Dialog& d) { d.Escape(); });
    }
    const std::string shape = LogShape();
    for (const char* part :
         {"::CUnlockCardDlg{2 m_pStaticPolicies = NULL; } ", "Dlg::OnInitDialog{CBaseDialog::On",
          "0 Unlock static; ", "2 WindowRect (left=", "2 SetWindowPos succeeded; ",
          "2 SetWindowPos failed (GetLastError=5); ", "0 Unlock challenge response; ",
          "PINPolicies{2 Test m_pStaticPolicies; 2 m_pStaticPolicies == NULL; 2 new m_pStatic",
          "2 Test m_pStaticPolicies; 2 m_pStaticPolicies != NULL; ", "Dlg::OnChangeEdit{",
          "Dlg::OnMove{", "Dlg::OnCardEvent(){CUnlockCardDlg::OnCancel{} } ", "Dlg::OnDestroy{",
          "::~CUnlockCardDlg{2 Here 1 : m_pStaticPolicies = 0x"}) {
        EXPECT_NE(shape.find(part), std::string::npos) << part << shape;
    }
    // The exit of OnOK is told as an entry.
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size() + 2) << m_log.Dump();
    ExpectRoundsKeepNothing(2, 20, [&](int) {
        Card().Ask(attempt);
        m_log.Clear();
    });
}

// A result dialog: whether title and heading are those strings; its icons, the small one or 0.
struct Look {
    bool bStrings;
    UINT nTitle, nHeading, nSmall, nIcon;

    void Expect(Dialog& d) const {
        EXPECT_EQ(d.Title() == std::string(ResourceString(nTitle)), bStrings && nTitle != 0);
        EXPECT_EQ(d.Text(kHeading) == std::string(ResourceString(nHeading)), bStrings);
        EXPECT_NE(GetWindowLongA(d.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
        d.Run([&] {
            EXPECT_EQ(
                SendMessageA(d.Handle(), WM_GETICON, ICON_SMALL, 0),
                reinterpret_cast<LRESULT>(nSmall != 0 ? LoadResourceIcon(nSmall, 16) : nullptr));
            EXPECT_EQ(IconOf(d.Control(IDC_UNLOCK_RESULT_ICON)), LoadResourceIcon(nIcon, 32));
            LOGFONTA font{};
            GetObjectA(reinterpret_cast<HFONT>(d.Send(kHeading, WM_GETFONT)), sizeof font, &font);
            EXPECT_EQ(font.lfWeight == FW_BOLD, nSmall != 0);
        });
    }
};

TEST_F(UnlockCard, ResultsLookAsTheirModeSays) {
    CUnlockFailedDlg failed(nullptr, "What happened", 2);
    CUnlockFailedDlg initialize(nullptr, "What happened", 1);
    CUnlockSuccessDlg success(nullptr);
    CUnlockInitToolDlg unlockTool(nullptr, "Reader A", 0);
    CUnlockInitToolDlg otherTool(nullptr, "Reader A", 1);
    const std::pair<CDialog*, Look> cases[] = {
        {&failed, {false, 3036, 3037, IDI_CARD_UNLOCK, IDI_CARD_UNLOCK}},
        {&initialize, {true, 3036, 3037, IDI_CARD_INITIALIZE, IDI_CARD_INITIALIZE}},
        {&success, {false, 3036, 3037, IDI_CARD_UNLOCK, IDI_CARD_UNLOCK}},
        {&unlockTool, {true, 0, 3035, 0, IDI_CARD_PIN}},
        {&otherTool, {false, 0, 3035, 0, IDI_CARD_PIN}}};
    for (const auto& each : cases) {
        const DialogDriver driver([&](Dialog& d) {
            each.second.Expect(d);
            d.Enter();
        });
        EXPECT_EQ(each.first->DoModal(), IDOK);
    }
    const DialogDriver driver([](Dialog& d) {
        RemoveCard("Reader B");
        d.Settle();
        EXPECT_TRUE(d.IsOpen());
        RemoveCard("Reader A");
    });
    EXPECT_EQ(otherTool.DoModal(), IDCANCEL);
}

TEST_F(UnlockCard, ResultsShowWhatThereIs) {
    for (const int missing : {0, kHeading, IDC_UNLOCK_RESULT_ICON}) {
        Incomplete<CUnlockFailedDlg> failed(missing, nullptr, "", 1);
        Incomplete<CUnlockSuccessDlg> success(missing, nullptr);
        Incomplete<CUnlockInitToolDlg> tool(missing, nullptr, "Reader A", 0);
        for (CDialog* dialog : std::initializer_list<CDialog*>{&failed, &success, &tool}) {
            const DialogDriver driver([](Dialog& d) { d.Enter(); });
            EXPECT_EQ(dialog->DoModal(), IDOK) << missing;
            FreeResourceModule();
            EXPECT_EQ(dialog->DoModal(), -1);
            LoadResourceModule();
        }
    }
    FreeResourceModule();
    EXPECT_EQ(Card().Ask(), -1);
}

}  // namespace
}  // namespace mvp::test
