// DisplayUnlockCode with its dialog, and the notice that the card manager is blocked.
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/card_manager_locked_dialog.h"
#include "mvpingui/display_unlock_code.h"
#include "services/error_text.h"
#include "services/format_text.h"
#include "services/help_topic.h"
#include "support/dialog_driver.h"
#include "support/patched_imports.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kConsoleKey[] = R"(SOFTWARE\Quillon\Veskara\UserConsole)";
constexpr char kPxrmKey[] = R"(SOFTWARE\Quillon\Veskara\PXRM)";
constexpr int kThrows = 4711;
using LockedNotice = LibraryTest;

std::string g_strBox;
int WINAPI TakeBox(HWND hOwner, LPCSTR pszText, LPCSTR pszCaption, UINT nType) {
    g_strBox = std::to_string(nType) + pszCaption + (hOwner != nullptr ? "!" : "?") + pszText;
    return IDOK;
}

class UnlockCode : public LibraryTest {
protected:
    struct Card {
        int nResult = 0;
        std::string strCode = "0123456789ABCDEF";
        int nNever = 0;
    };
    static int GetCode(void* pContext, CString& strCode) {
        const auto& card = *static_cast<Card*>(pContext);
        EXPECT_TRUE(strCode.IsEmpty());
        strCode = card.strCode.c_str();
        return card.nResult != kThrows ? card.nResult : throw std::runtime_error("callback");
    }
    static int Never(void* pContext) {
        ++static_cast<Card*>(pContext)->nNever;
        throw std::runtime_error("what it returns is ignored");
    }
    int Show(MvpNeverDisplayCallback pfnNever = &Never) {
        return DisplayUnlockCode(&m_parent, &m_card, &GetCode, pfnNever, "Reader A");
    }
    HANDLE Property() { return GetPropA(m_parent.m_hWnd, "DisplayUCodeWnd"); }

    HostWindow m_parent;
    Card m_card;
};

TEST_F(UnlockCode, IsAcceptedByOkWithTheBoxTickedAlone) {
    for (const std::string way : {"tick ok", "ok", "tick cancel", "tick remove", "tick ok null"}) {
        SCOPED_TRACE(way);
        m_card.nNever = 0;
        const DialogDriver driver([&](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_UNLOCK_CODE_CODE), "0123-4567-89AB-CDEF");
            EXPECT_EQ(Property(), d.Handle());
            EXPECT_NE(GetWindowLongA(d.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
            EXPECT_FALSE(d.IsChecked(IDC_UNLOCK_CODE_NEVER_AGAIN));
            const CRect panel = RectIn(d.Handle(), GetParent(d.Control(IDC_UNLOCK_CODE_CODE)));
            EXPECT_EQ(panel.TopLeft(), CRect(d.Rect(IDC_UNLOCK_CODE_PANEL_PLACE)).TopLeft());
            if (way.starts_with("tick")) {
                d.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
            }
            if (way == "tick remove") {
                VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
            } else {
                way == "tick cancel" ? d.Escape() : d.Enter();
            }
        });
        const bool withoutCallback = way == "tick ok null";
        const int accepted = way.starts_with("tick ok") ? 1 : 0;
        EXPECT_EQ(Show(withoutCallback ? nullptr : &Never), accepted);
        EXPECT_EQ(m_card.nNever, withoutCallback ? 0 : accepted);
        EXPECT_EQ(Property(), nullptr);
        EXPECT_TRUE(m_log.Contains(16, "DisplayUnlockCode (" + std::to_string(accepted) + ")"));
    }
}

TEST_F(UnlockCode, IsShownUnlessTheSettingIsAnotherNumber) {
    const auto expect = [&](bool bShown) {
        if (bShown) {
            const DialogDriver driver([](Dialog& d) { d.Escape(); });
            EXPECT_EQ(Show(), 0);
        } else {
            const DialogDriver noDialog;
            EXPECT_EQ(Show(), 0);
        }
    };
    expect(true);
    m_hive.SetString(kConsoleKey, "DisplayUnlockCode", "0");
    expect(true);
    for (const DWORD setting : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        m_hive.SetDword(kConsoleKey, "DisplayUnlockCode", setting);
        expect(setting == 1);
    }
    EXPECT_EQ(m_card.nNever, 0);
}

TEST_F(UnlockCode, TellsWhyThereIsNone) {
    const DialogDriver noDialog;
    const PatchedImports boxes(nullptr, {{"MessageBoxA", Address(&TakeBox)}});
    for (const int result : {1, 5, -3, kThrows}) {
        m_card.nResult = result;
        m_boxes.Clear();
        EXPECT_EQ(Show(), 0);
        ASSERT_EQ(m_boxes.Calls().size(), 1U);
        const CString text = FormatResourceText(IDS_UNLOCK_CODE_FAILED_FORMAT,
                                                ErrorText(result == kThrows ? 1 : result));
        EXPECT_STREQ(text, m_boxes.Calls()[0].strText.c_str());
        EXPECT_EQ(m_boxes.Calls()[0].nMessageType, -1);
        EXPECT_EQ(m_boxes.Calls()[0].nButtons + m_boxes.Calls()[0].nIcon, 0U);
    }
    EXPECT_EQ(DisplayUnlockCode(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_TRUE(m_log.Contains(2, "pGetUnlockCode returned an error (-1)"));
    m_card = {0, ""};
    EXPECT_EQ(Show(), 1);
    EXPECT_EQ(g_strBox, "64Veskara!" + std::string(ResourceString(IDS_UNLOCK_CODE_NONE)));
    EXPECT_EQ(m_card.nNever, 0);
}

class Modeless : public CDisplayUnlockCodeDlg {
public:
    explicit Modeless(CWnd& parent) : CDisplayUnlockCodeDlg(&parent, "A", nullptr, 0) {
        EXPECT_NE(CreateFromResourceModule(&parent), 0);
    }
};

TEST_F(UnlockCode, LeavesItsParentAsItWas) {
    auto outer = std::make_unique<Modeless>(m_parent);
    auto inner = std::make_unique<Modeless>(m_parent);
    EXPECT_EQ(Property(), inner->m_hWnd);
    inner->DestroyWindow();
    EXPECT_EQ(Property(), outer->m_hWnd);
    inner = std::make_unique<Modeless>(m_parent);
    outer->DestroyWindow();
    EXPECT_EQ(Property(), inner->m_hWnd);
    inner->DestroyWindow();
    EXPECT_EQ(Property(), nullptr);
    outer = std::make_unique<Modeless>(m_parent);
    m_parent.DestroyWindow();
    EXPECT_EQ(outer->m_hWnd, nullptr) << "it goes with its parent";
}

TEST_F(UnlockCode, WithoutItsPanelItIsAcceptedByOk) {
    for (const int missing : {IDC_UNLOCK_CODE_PANEL_PLACE, IDOK, 0}) {
        Incomplete<CDisplayUnlockCodeDlg> dialog(missing, &m_parent, "A", "Reader A", 0);
        const DialogDriver driver(
            [](Dialog& d) { d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0); }); });
        EXPECT_EQ(dialog.DoModal(), missing == 0 ? IDOK : IDCANCEL);
    }
    EXPECT_TRUE(m_log.Contains(1, "g_hResInstance is NULL"));
    EXPECT_TRUE(m_log.Contains(1, "LocCreate Failed"));
    EXPECT_EQ(Show(), 0) << "the module has gone";
    EXPECT_EQ(Property(), nullptr);
    const CDisplayUCChild windowless(0, nullptr, "A", nullptr);
    EXPECT_EQ(windowless.IsNeverDisplayChecked(), 1) << "no box";
}

TEST_F(LockedNotice, IsFittedToTheTextOfTheConfigurationOrItsOwn) {
    static std::string s_strHelp;
    SetHelpViewer([](HWND, LPCSTR, UINT, DWORD_PTR dwTopic) -> HWND {
        s_strHelp += std::to_string(dwTopic) + " ";
        return nullptr;
    });
    m_hive.SetString(R"(SOFTWARE\Quillon\Veskara\GlobalConfig)", "VeskaraHelpPath", "help.chm");
    const std::string own(ResourceString(IDS_CARD_MANAGER_LOCKED));
    const std::pair<std::string, std::string> cases[] = {
        {"", own},
        {"Short & sweet", "Short & sweet"},
        {"One\nTwo\r\nThree", "One\nTwo\r\nThree"},
        {std::string(259, 'W'), std::string(259, 'W')},
        {std::string(260, 'W'), own},
    };
    for (const auto& [configured, shown] : cases) {
        m_hive.SetString(kPxrmKey, "BlockedCardManagerMessage", configured);
        m_log.Clear();
        CCMLockedDlg dialog(nullptr, "Reader A");
        EXPECT_EQ(m_log.ContainsPart("calling LoadString"), shown == own);
        const DialogDriver driver([&, &strShown = shown](Dialog& d) {
            constexpr int kText = IDC_CARD_MANAGER_LOCKED_TEXT;
            EXPECT_EQ(d.Text(kText), strShown);
            const CRect text = d.Rect(kText);
            CRect client;
            SIZE size{};
            RECT place = {7, 7, 236, 14};
            d.Run([&] {
                const WindowDc dc(d.Control(kText));
                const DcSelection font(dc.get(),
                                       reinterpret_cast<HGDIOBJ>(d.Send(kText, WM_GETFONT)));
                GetTextExtentPoint32A(dc.get(), strShown.c_str(), static_cast<int>(strShown.size()),
                                      &size);
                GetClientRect(d.Handle(), &client);
                MapDialogRect(d.Handle(), &place);
            });
            EXPECT_EQ(text, CRect(place.left, place.top, place.left + place.right,
                                  place.top + (1 + size.cx / place.right) * size.cy));
            EXPECT_EQ(d.Rect(IDOK).top, text.bottom);
            EXPECT_EQ(d.Rect(IDOK).bottom, text.bottom + place.bottom);
            EXPECT_EQ(client.bottom, d.Rect(IDOK).bottom + text.top);
            EXPECT_NE(GetWindowLongA(d.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
            s_strHelp.clear();
            d.Run([&] {
                HELPINFO info{};
                SendMessageA(d.Handle(), WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
            });
            EXPECT_EQ(s_strHelp, "1014 ");
            VKRaiseEvent(VKEVENT_CARD_REMOVED, "reader A");
        });
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    }
    SetHelpViewer(nullptr);
    m_hive.DeleteKey(kPxrmKey);
    Incomplete<CCMLockedDlg> withoutButton(IDOK, nullptr, nullptr);
    const DialogDriver driver([](Dialog& d) { d.Cancel(); });
    EXPECT_EQ(withoutButton.DoModal(), IDCANCEL);
    FreeResourceModule();
    EXPECT_EQ(CCMLockedDlg(nullptr, nullptr).DoModal(), -1);
    EXPECT_TRUE(m_log.ContainsPart("CCMLockedDlg::CCMLockedDlg: LoadString failed"));
}

}  // namespace
}  // namespace mvp::test
