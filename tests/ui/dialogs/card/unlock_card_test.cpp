// Unlocking a card: the dialog from its callbacks to its result, and the small ones that tell of
// it.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "dialogs/card/code_groups.h"
#include "mvpingui/policies_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "services/error_text.h"
#include "support/resource_counts.h"
#include "ui/dialogs/enlarged_dialogs.h"

namespace mvp::test {
namespace {

using UnlockCard = LibraryTest;

constexpr int kNew = IDC_UNLOCK_CARD_NEW_EDIT;
constexpr int kConfirm = IDC_UNLOCK_CARD_CONFIRM_EDIT;
constexpr int kCode = IDC_UNLOCK_CARD_CODE_EDIT;
constexpr int kHeading = IDC_UNLOCK_RESULT_HEADING;
constexpr char kTyped[] = "1234-5678-9abc-def058385838";
constexpr char kAttempt[] = "123456789abcdef0/5838 ";
// Unused, digits, weak, same, minimum, maximum, no cancelling.
constexpr PwdRuleArgs kRules = {0xDEAD, 1, 2, 1, 4, 8, 1};

// The card as the callbacks have it.
struct Card {
    const char* pszChallenge = nullptr;       // null: it takes a fixed code
    std::vector<int> results = {0};           // of the attempts, the next one last
    std::function<void()> onAttempt = [] {};  // while the callback runs
    std::string strAttempts = {};             // "code/PIN " each
    int nMissing = -1;                        // of the dialog, see Incomplete
    bool bBare = false;                       // neither rules nor callbacks

    static int Challenge(void* pContext, CString& strChallenge) {
        const auto& card = *static_cast<Card*>(pContext);
        strChallenge += card.pszChallenge != nullptr ? card.pszChallenge : "ignored";
        return card.pszChallenge != nullptr ? 0 : 3;
    }
    static int Unlock(void* pContext, CString strCode, CString strPin) {
        auto& card = *static_cast<Card*>(pContext);
        card.strAttempts += std::string(strCode) + "/" + std::string(strPin) + " ";
        const int result = card.results.back();
        card.results.pop_back();
        card.onAttempt();
        return result != MVPINGUI_CARD_FAILED ? result : throw std::runtime_error("no card");
    }
    template <class... Scripts>
    INT_PTR Ask(const Scripts&... scripts) {
        Incomplete<CUnlockCardDlg> dialog(nMissing, nullptr, bBare ? nullptr : &kRules, this,
                                          bBare ? nullptr : &Unlock, bBare ? nullptr : &Challenge,
                                          "Reader A");
        return Open(dialog, {scripts...});
    }
};

void Fill(const Dialog& d) {
    d.SetText(kCode, "1234-5678-9abc-def0");
    d.SetText(kNew, "5838");
    d.SetText(kConfirm, "5838");
}

// Confirms the dialog over `d`, and returns what it tells.
std::string Confirm(Dialog& d, int nText) {
    Dialog top = d.Next();
    std::string text = top.Text(nText);
    top.Enter();
    top.WaitGone();
    return text;
}

// All is where the template has it, or `nUp` pixels above, and has made room for the rules.
void ExpectPlaces(const Dialog& d, int nUp) {
    const HWND plain = CreateDialogParamA(
        ResourceModule(), MAKEINTRESOURCEA(IDD_UNLOCK_CARD), nullptr,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    const CRect list = RectIn(d.Handle(), d.Control(IDC_POLICIES_BOX));
    const CRect box = RectIn(plain, GetDlgItem(plain, IDC_UNLOCK_CARD_PIN_BOX));
    EXPECT_EQ(list, CRect(RectIn(d.Handle(), d.Control(3040)).TopLeft(),
                          CSize(box.Width(), list.Height())));
    EXPECT_EQ(list, RectIn(d.Handle(), GetParent(d.Control(IDC_POLICIES_BOX))));
    for (HWND h = GetWindow(plain, GW_CHILD); h != nullptr; h = GetWindow(h, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(h);
        const bool upper = id == 3033 || id == 3035 || id == 3034 || id == 3026;
        CRect rect = RectIn(plain, h);
        rect.OffsetRect(0, (upper || id == 3032 ? 0 : -nUp) + (id < 3 ? list.Height() : 0));
        EXPECT_EQ(RectIn(d.Handle(), d.Control(id)), rect) << id;
        EXPECT_EQ(d.IsVisible(id), id != 3040 && (nUp == 0 || !upper)) << id;
    }
    const CRect window = RectIn(nullptr, d.Handle());
    EXPECT_EQ(window.Height(), RectIn(nullptr, plain).Height() + list.Height() - nUp);
    EXPECT_NEAR(window.top + window.bottom, GetSystemMetrics(SM_CYSCREEN), 1);
    DestroyWindow(plain);
}

TEST_F(UnlockCard, OpensReadyToTypeAndHelps) {
    RecordHelp();
    const std::string longest(10'000, 'W');
    for (const char* challenge :
         {static_cast<const char*>(nullptr), "", "0123456789ABCDE", "0123456789ABCDEF",
          "0123456789ABCDEFG", "\x80\xE9\xFF\xC4\xD6", longest.c_str()}) {
        const auto shown = GroupByFour<std::string>(challenge != nullptr ? challenge : "");
        const auto look = [&](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_UNLOCK_CARD_CHALLENGE), shown);
            EXPECT_EQ(d.Send(kNew, EM_GETPASSWORDCHAR) + d.Send(kConfirm, EM_GETPASSWORDCHAR),
                      2 * '*');
            EXPECT_FALSE(d.IsVisible(IDC_POLICIES_SAME_TEXT)) << "there is no current PIN";
            d.Run([&] {
                ExpectPlaces(d, challenge != nullptr ? 0 : 100);
                EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_UNLOCK, 16));
                EXPECT_TRUE(IsBold(d.Control(kHeading)) && IsTopMost(d.Handle()));
                EXPECT_EQ(GetForegroundWindow(), d.Handle());
                SendMessageA(d.Handle(), WM_HELP, 0, 0);
                EXPECT_EQ(std::exchange(s_strHelp, ""), "v.chm1013");
            });
            for (const int id : {kCode, kNew, kConfirm, IDCANCEL}) {  // OK is disabled
                EXPECT_EQ(d.FocusedId(), id);
                d.Tab();
            }
            d.Escape();
        };
        EXPECT_EQ(Card{.pszChallenge = challenge}.Ask(look, look), IDCANCEL);
    }
}

TEST(MirroredUnlockCard, KeepsCodesAndPicturesAsTheyAre) {
    const AttachedLibrary library("qps-plocm");
    const auto enter = [](Dialog& d) {
        EXPECT_TRUE(IsMirrored(d, kNew));
        for (const int id : {kCode, IDC_UNLOCK_CARD_CHALLENGE, IDC_POLICIES_MIN_ICON}) {
            EXPECT_FALSE(IsMirrored(d, id)) << id;
        }
        Fill(d);
        d.Enter();
        Dialog failed = d.Next();
        EXPECT_TRUE(IsMirrored(failed, kHeading));
        EXPECT_FALSE(IsMirrored(failed, IDC_UNLOCK_RESULT_ICON));
        failed.Enter();
        failed.WaitGone();
        d.Escape();
    };
    EXPECT_EQ((Card{.pszChallenge = "0123456789ABCDEF", .results = {1}}.Ask(enter)), IDCANCEL);
}

TEST_F(UnlockCard, TellsWhetherItCouldBeMadeShorter) {
    const auto refuse =
        +[](HWND hWnd, HWND hAfter, int x, int y, int cx, int cy, UINT nFlags) WINAPI -> BOOL {
        if (nFlags != (SWP_NOMOVE | SWP_NOZORDER)) {
            return SetWindowPos(hWnd, hAfter, x, y, cx, cy, nFlags);
        }
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    };
    const PatchedImports system("dlgfw.dll", {{"SetWindowPos", Address(refuse)}});
    Card().Ask([](Dialog& d) { d.Escape(); });
    EXPECT_TRUE(m_log.Contains(2, "SetWindowPos failed (GetLastError=1400)"));
    EXPECT_FALSE(m_log.Contains(2, "SetWindowPos succeeded"));
}

TEST_F(UnlockCard, TellsTheHelpDesksNumber) {
    const std::string full(511, '7');
    const std::string terminated("12\0", 3);
    using Case = std::tuple<DWORD, std::string, std::string>;
    for (const auto& [type, bytes, number] : {Case{REG_SZ, "", ""},
                                              {REG_SZ, "1", ""},
                                              {REG_SZ, terminated.substr(1), ""},
                                              {REG_SZ, terminated, "12"},
                                              {REG_EXPAND_SZ, terminated, "12"},
                                              {REG_BINARY, "1234", ""},
                                              {REG_SZ, full, full},
                                              {REG_SZ, full + '\0', full},
                                              {REG_SZ, full + "7", full + "7"},
                                              {REG_SZ, std::string(600, '7'), ""},
                                              {REG_SZ, "+33 %s 1", "+33 %s 1"}}) {
        m_hive.SetRaw(R"(software\Quillon\Veskara\GlobalConfig)", "ContactTel", type, bytes);
        const std::string text = number.empty()
                                     ? TextOf(IDS_UNLOCK_HELP_DESK)
                                     : Filled(IDS_UNLOCK_HELP_DESK_FORMAT, number.c_str());
        Card{.pszChallenge = ""}.Ask([&](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_UNLOCK_CARD_HELP_DESK), text);
            d.Escape();
        });
        EXPECT_EQ(m_log.ContainsPart("ContactTel"), bytes.size() == 600 || type == REG_BINARY);
        m_log.Clear();
    }
}

TEST_F(UnlockCard, OkFollowsEveryEdit) {
    const PatchedImports boxes("dlgfw.dll", {{"MessageBoxA", Address(&TakeBox)}});
    const auto expect = [](Dialog& d, int nEdit, const char* pszText, bool bAllowed) {
        d.SetText(nEdit, pszText);
        EXPECT_EQ(d.IsEnabled(IDOK), bAllowed) << pszText;
        if (!bAllowed) {  // the command comes without the button, too
            SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            const std::string differ = "64Veskara!" + TextOf(IDS_UNLOCK_PINS_DIFFER);
            EXPECT_EQ(std::exchange(g_strBox, ""), d.Text(kNew) == d.Text(kConfirm) ? "" : differ);
        }
    };
    const auto edit = [&](Dialog& d) {
        EXPECT_EQ(d.Text(IDC_UNLOCK_CARD_HELP_DESK), TextOf(IDS_UNLOCK_HELP_DESK)) << "no key";
        expect(d, kNew, "5838", false);
        expect(d, kConfirm, "5838", false);
        for (const char* code : {"0123456789ABCDE", "0123456789ABCDEG", ""}) {
            expect(d, kCode, "--0123456789abcDEF", true);
            expect(d, kCode, code, false);
        }
        expect(d, kCode, "0123456789ABCDEF", true);
        for (const char* pin : {"1234", "58a8", "583858385", "583"}) {
            expect(d, kConfirm, pin, false);
            expect(d, kNew, pin, false);
        }
        d.Escape();
    };
    Card card;
    EXPECT_EQ(card.Ask(edit), IDCANCEL);
    EXPECT_EQ(card.strAttempts, "");
    EXPECT_EQ(std::ranges::count(m_log.Texts(2), "Test m_pStaticPolicies"), 2) << "at no edit";
}

TEST_F(UnlockCard, TriesUntilTheCardIsUnlocked) {
    const TrayWindow tray;
    constexpr char kNotice[] = "message: 78946, on reader Reader A to the Smart Card Agent";
    Card card{.results = {0, MVPINGUI_CARD_FAILED, 99, 7, 5}};
    const auto attempt = [&](Dialog& d) {
        Fill(d);
        for (const int code : {5, 7, 99, MVPINGUI_CARD_FAILED}) {
            d.Click(IDOK);
            EXPECT_EQ(Confirm(d, IDC_UNLOCK_RESULT_MESSAGE),
                      code == 5 ? TextOf(IDS_UNLOCK_WRONG_CODE)
                                : Filled(IDS_UNLOCK_FAILED_FORMAT, ErrorText(code)));
            EXPECT_EQ(d.Text(kCode) + d.Text(kNew) + d.Text(kConfirm), kTyped);
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
}

// The card goes while the callback runs, or after it while its result is told.
void RemoveAround(bool bInCallback, int nCode) {
    Card card{.pszChallenge = nCode == 5 ? "A" : nullptr, .results = {0, nCode}};
    card.onAttempt = [&] {
        EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_WAIT));
        bInCallback ? RemoveCard() : void();
        // Not heard while the callback runs.
        const HWND first = card.strAttempts == kAttempt ? GetActiveWindow() : nullptr;
        PostMessageA(first, WM_COMMAND, IDOK, 0);
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            DispatchMessageA(&message);
        }
    };
    const auto script = [&](Dialog& d) {
        Fill(d);
        RemoveCard("Reader B");
        d.Click(IDOK);
        Dialog result = d.Next();
        bInCallback ? void() : RemoveCard("reader a");
        result.Settle();
        EXPECT_EQ(d.IsOpen(), !bInCallback && nCode == 0);
        result.Enter();
    };
    EXPECT_EQ(card.Ask(script), nCode == 0 ? IDOK : IDCANCEL);
    EXPECT_EQ(card.strAttempts, kAttempt);
}

TEST_F(UnlockCard, RemovalEndsItUnlessTheCardIsUnlocked) {
    ExpectRoundsKeepNothing(1, 4, [this](int) {
        m_log.Clear();
        for (const bool inCallback : {true, false}) {
            RemoveAround(inCallback, 0);
            RemoveAround(inCallback, 5);
        }
        EXPECT_EQ(Card().Ask([](Dialog&) { RemoveCard(); }), IDCANCEL);
    });
    const std::string shape = LogShape();
    for (const char* part :
         {"::CUnlockCardDlg{2 m_pStaticPolicies = NULL; } ", "Dlg::OnInitDialog{CBaseDialog::On",
          "0 Unlock static; VKDelegateSubscriberCardRemoved Constructor{",
          "2 WindowRect (left=", "2 SetWindowPos succeeded; ", "0 Unlock challenge response; ",
          "Dlg::OnMove{", "Dlg::OnDestroy{VKDelegateSubscriberCardRemoved Destructor{",
          "PINPolicies{2 Test m_pStaticPolicies; 2 m_pStaticPolicies == NULL; 2 new m_pStatic",
          "2 Test m_pStaticPolicies; 2 m_pStaticPolicies != NULL; ", "Dlg::OnChangeEdit{",
          "Dlg::OnCardEvent(){CUnlockCardDlg::OnCancel{} } ",
          "::~CUnlockCardDlg{2 Here 1 : m_pStaticPolicies = 0x"}) {
        EXPECT_NE(shape.find(part), std::string::npos) << part << shape;
    }
    EXPECT_FALSE(m_log.Contains(16, "CUnlockCardDlg::OnOK")) << "its exit is told as an entry";
}

TEST_F(UnlockCard, NeedsItsEditsAndThePlaceOfTheRules) {
    for (const int missing : {kCode, kNew, kConfirm}) {
        EXPECT_EQ(Card{.nMissing = missing}.Ask(), -1);
    }
    Card{.bBare = true}.Ask([](Dialog& d) {
        d.SetText(kCode, "0123456789ABCDEF");  // an empty PIN breaks no rule
        d.Click(IDOK);
        EXPECT_EQ(Confirm(d, IDC_UNLOCK_RESULT_MESSAGE),
                  Filled(IDS_UNLOCK_FAILED_FORMAT, ErrorText(MVPINGUI_CARD_FAILED)));
        d.Escape();
    });
    // 0, the whole module: nothing tells of the success. -1: memory for the rules.
    for (const int missing : {-1, IDOK, 3040, kHeading, 0}) {
        const bool judged = missing != 3040 && missing != -1;
        using Shortage = NoMemoryFor<VKPoliciesDlg>;
        const auto shortage = missing == -1 ? std::make_unique<Shortage>() : nullptr;
        const auto script = [&](Dialog& d) {
            Fill(d);
            PostMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            if (!judged) {
                EXPECT_FALSE(d.IsEnabled(IDOK));
                d.Escape();
            } else if (missing != 0) {
                Confirm(d, IDOK);
            }
        };
        Card card{.pszChallenge = missing % 2 == 0 ? "A" : nullptr, .nMissing = missing};
        EXPECT_EQ(card.Ask(script), judged ? IDOK : IDCANCEL);
        EXPECT_EQ(card.strAttempts, judged ? kAttempt : "");
    }
}

TEST_F(UnlockCard, ResultsLookAsTheirModeSays) {
    const EnlargedDialogs at(150);
    CUnlockFailedDlg failed(nullptr, "What happened", 2);
    CUnlockFailedDlg initialize(nullptr, "What happened", 1);
    CUnlockSuccessDlg success(nullptr);
    CUnlockInitToolDlg unlockTool(nullptr, "Reader A", 0);
    CUnlockInitToolDlg otherTool(nullptr, "Reader A", 1);
    // What it says are the strings of a first PIN, or of the tool for it, or they are not.
    const std::initializer_list<std::tuple<CDialog*, bool, UINT>> cases = {
        {&failed, false, IDI_CARD_UNLOCK},
        {&initialize, true, IDI_CARD_INITIALIZE},
        {&success, false, IDI_CARD_UNLOCK},
        {&unlockTool, true, IDI_CARD_PIN},
        {&otherTool, false, IDI_CARD_PIN}};
    for (const auto& [dialog, strings, icon] : cases) {
        const auto look = [isFirst = strings, picture = icon](Dialog& d) {
            d.Run([&] {
                const bool tool = picture == IDI_CARD_PIN;
                EXPECT_TRUE(tool || (d.Title() == TextOf(3036)) == isFirst);
                EXPECT_EQ(d.Text(kHeading) == TextOf(tool ? 3035 : 3037), isFirst);
                EXPECT_EQ(SmallIconOf(d.Handle()), tool ? nullptr : LoadResourceIcon(picture, 24));
                EXPECT_EQ(IconOf(d.Control(IDC_UNLOCK_RESULT_ICON)), LoadResourceIcon(picture, 48));
                EXPECT_NE(IsBold(d.Control(kHeading)), tool);
                EXPECT_TRUE(IsTopMost(d.Handle()));
            });
            d.Enter();
        };
        EXPECT_EQ(Open(*dialog, {look}), IDOK);
    }
    EXPECT_EQ(Open(otherTool, {[](Dialog&) { RemoveCard(); }}), IDCANCEL);
    FreeResourceModule();
    for (const auto& c : cases) {
        EXPECT_EQ(std::get<0>(c)->DoModal(), -1);
    }
    EXPECT_EQ(Card().Ask(), -1);
}

}  // namespace
}  // namespace mvp::test
