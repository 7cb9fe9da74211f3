// DisplayUnlockCode with its dialog, and the notice that the card manager is blocked.
#include <algorithm>
#include <stdexcept>

#include "mvpingui/card_manager_locked_dialog.h"
#include "mvpingui/display_unlock_code.h"
#include "services/error_text.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kSetting[] = "DisplayUnlockCode";
constexpr char kConsoleKey[] = R"(SOFTWARE\Quillon\Veskara\UserConsole)";
constexpr char kPxrmKey[] = R"(SOFTWARE\Quillon\Veskara\PXRM)";
constexpr int kThrows = 4711;
using LockedNotice = LibraryTest;

class UnlockCode : public LibraryTest {
protected:
    static int GetCode(void* pContext, CString& strCode) {
        const auto& test = *static_cast<UnlockCode*>(pContext);
        strCode += test.m_pszCode;
        return test.m_nResult != kThrows ? test.m_nResult : throw std::runtime_error("callback");
    }
    static int Never(void* pContext) {
        ++static_cast<UnlockCode*>(pContext)->m_nNever;
        throw std::runtime_error("what comes of it is ignored");
    }
    int Show(std::vector<Script> scripts = {}, MvpNeverDisplayCallback pfnNever = &Never) {
        const DialogDriver driver(std::chrono::seconds(10), std::move(scripts));
        return DisplayUnlockCode(&m_parent, this, &GetCode, pfnNever, "Reader A");
    }
    HANDLE Property() { return GetPropA(m_parent.m_hWnd, "DisplayUCodeWnd"); }

    HostWindow m_parent;
    int m_nResult = MVPINGUI_CARD_OK;
    const char* m_pszCode = "0123456789ABCDEF";
    int m_nNever = 0;
};

TEST_F(UnlockCode, IsAcceptedByOkWithTheBoxTickedAlone) {
    for (const std::string way : {"ok", "tick cancel", "tick remove", "tick ok", "tick ok null"}) {
        const auto close = [&](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_UNLOCK_CODE_CODE), "0123-4567-89AB-CDEF");
            EXPECT_EQ(Property(), d.Handle());
            EXPECT_TRUE(IsTopMost(d.Handle()));
            d.Run(
                [&] { EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_UNLOCK, 16)); });
            EXPECT_EQ(RectIn(d.Handle(), GetParent(d.Control(IDC_UNLOCK_CODE_CODE))),
                      RectIn(d.Handle(), d.Control(IDC_UNLOCK_CODE_PANEL_PLACE)));
            if (way != "ok") {
                d.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
            }
            if (way == "tick remove") {
                RemoveCard("reader a");
            } else {
                way == "tick cancel" ? d.Escape() : d.Enter();
            }
        };
        const int accepted = way.starts_with("tick ok") ? 1 : 0;
        EXPECT_EQ(Show({close}, way == "tick ok null" ? nullptr : &Never), accepted) << way;
        EXPECT_EQ(m_nNever, accepted) << way << ": once in all";
        EXPECT_EQ(Property(), nullptr);
        EXPECT_TRUE(m_log.Contains(2, "pGetUnlockCode returned VK_OBJ_API_OK"));
        EXPECT_EQ(m_log.Texts(16).back(), "DisplayUnlockCode (" + std::to_string(accepted) + ")");
    }
}

TEST_F(UnlockCode, IsShownUnlessTheSettingIsAnotherNumber) {
    const auto leave = [](Dialog& d) { d.Escape(); };
    EXPECT_EQ(Show({leave}), 0);
    m_hive.SetString(kConsoleKey, kSetting, "0");
    EXPECT_EQ(Show({leave}), 0);
    for (const DWORD setting : {0U, 1U, 2U, ~0U}) {
        m_hive.SetDword(kConsoleKey, kSetting, setting);
        EXPECT_EQ(Show(setting == 1 ? std::vector<Script>{leave} : std::vector<Script>()), 0);
    }
}

TEST_F(UnlockCode, TellsWhyThereIsNone) {
    const PatchedImports boxes(nullptr, {{"MessageBoxA", Address(&TakeBox)}});
    for (const int result : {1, 5, -3, kThrows}) {
        m_nResult = result;
        EXPECT_EQ(Show(), 0);
        const MessageBoxCall& box = m_boxes.Calls().back();
        EXPECT_EQ(box.strText,
                  Filled(IDS_UNLOCK_CODE_FAILED_FORMAT, ErrorText(result == kThrows ? 1 : result)));
        EXPECT_TRUE(box.nMessageType == -1 && box.nButtons + box.nIcon + box.nFlags == 0);
    }
    EXPECT_EQ(m_boxes.Calls().size(), 4U);
    EXPECT_EQ(DisplayUnlockCode(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_TRUE(m_log.Contains(2, "pGetUnlockCode returned an error (-1)"));
    m_nResult = MVPINGUI_CARD_OK;
    m_pszCode = "";
    EXPECT_EQ(Show(), 1);
    EXPECT_EQ(g_strBox, "64Veskara!" + TextOf(IDS_UNLOCK_CODE_NONE));
    EXPECT_EQ(m_nNever, 0);
}

class Modeless : public CDisplayUnlockCodeDlg {
public:
    explicit Modeless(CWnd& parent) : CDisplayUnlockCodeDlg(&parent, "A", nullptr, 0) {
        EXPECT_NE(CreateFromResourceModule(&parent), 0);
    }
};

TEST_F(UnlockCode, LeavesItsParentAsItWas) {
    for (const bool isOuterFirst : {true, false}) {
        Modeless outer(m_parent);
        Modeless inner(m_parent);
        EXPECT_EQ(Property(), inner.m_hWnd);
        Modeless& last = isOuterFirst ? inner : outer;
        (isOuterFirst ? outer : inner).DestroyWindow();
        EXPECT_EQ(Property(), last.m_hWnd);
        last.DestroyWindow();
        EXPECT_EQ(Property(), nullptr);
    }
    const Modeless child(m_parent);
    m_parent.DestroyWindow();
    EXPECT_EQ(child.m_hWnd, nullptr) << "it goes with its parent";
}

TEST_F(UnlockCode, WithoutItsPanelItIsAcceptedByOk) {
    for (const int missing : {IDC_UNLOCK_CODE_PANEL_PLACE, 0}) {
        Incomplete<CDisplayUnlockCodeDlg> dialog(missing, &m_parent, "A", "Reader A", 0);
        const INT_PTR result = Open(dialog, {[](Dialog& d) { d.Click(IDOK); }});
        EXPECT_EQ(result, missing == 0 ? IDOK : IDCANCEL);
    }
    EXPECT_TRUE(m_log.Contains(1, "g_hResInstance is NULL"));
    EXPECT_TRUE(m_log.Contains(1, "LocCreate Failed"));
    EXPECT_EQ(Show(), 0) << "the module has gone";
    EXPECT_EQ(CDisplayUCChild(0, nullptr, "A", nullptr).IsNeverDisplayChecked(), 1) << "no box";
}

void ExpectFitted(Dialog& d, const std::string& strText) {
    constexpr int kText = IDC_CARD_MANAGER_LOCKED_TEXT;
    CRect client;
    SIZE size{};
    RECT units = {7, 7, 236, 14};
    d.Run([&] {
        const WindowDc dc(d.Control(kText));
        const DcSelection font(dc.get(), reinterpret_cast<HGDIOBJ>(d.Send(kText, WM_GETFONT)));
        GetTextExtentPoint32A(dc.get(), strText.c_str(), static_cast<int>(strText.size()), &size);
        GetClientRect(d.Handle(), &client);
        MapDialogRect(d.Handle(), &units);
        SendMessageA(d.Handle(), WM_HELP, 0, 0);
    });
    EXPECT_EQ(d.Text(kText), strText);
    EXPECT_TRUE(IsTopMost(d.Handle()));
    const CRect text = RectIn(d.Handle(), d.Control(kText));
    EXPECT_EQ(text, CRect(CPoint(units.left, units.top),
                          CSize(units.right, (1 + size.cx / units.right) * size.cy)));
    EXPECT_EQ(RectIn(d.Handle(), d.Control(IDOK)).top, text.bottom);
    EXPECT_EQ(RectIn(d.Handle(), d.Control(IDOK)).bottom, text.bottom + units.bottom);
    EXPECT_EQ(client.bottom, RectIn(d.Handle(), d.Control(IDOK)).bottom + text.top);
}

TEST_F(LockedNotice, IsFittedToTheTextOfTheConfigurationOrItsOwn) {
    RecordHelp();
    const std::string own = TextOf(IDS_CARD_MANAGER_LOCKED);
    const std::string longest(259, 'W');
    for (const std::string& text : {std::string("Short & sweet"), std::string("One\nTwo\r\nThree"),
                                    longest, longest + "W", std::string()}) {
        m_hive.SetString(kPxrmKey, "BlockedCardManagerMessage", text);
        m_log.Clear();
        CCMLockedDlg dialog(nullptr, "Reader A");
        const bool isOwn = text.empty() || text.size() > longest.size();
        EXPECT_EQ(m_log.ContainsPart("calling LoadString"), isOwn);
        const DialogDriver driver([&](Dialog& d) {
            ExpectFitted(d, isOwn ? own : text);
            EXPECT_EQ(std::exchange(s_strHelp, ""), "v.chm1014");
            RemoveCard("reader A");
        });
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    }
    m_hive.DeleteKey(kPxrmKey);
    Incomplete<CCMLockedDlg> withoutButton(IDOK, nullptr, nullptr);
    EXPECT_EQ(Open(withoutButton, {[](Dialog& d) { d.Cancel(); }}), IDCANCEL);
    FreeResourceModule();
    EXPECT_EQ(CCMLockedDlg(nullptr, nullptr).DoModal(), -1);
    EXPECT_TRUE(m_log.ContainsPart("CCMLockedDlg::CCMLockedDlg: LoadString failed"));
}

TEST_F(LockedNotice, HasAHeightOfItsOwnWhereNothingCanBeMeasured) {
    const auto noDevice = +[](HWND) WINAPI -> HDC { return nullptr; };
    const PatchedImports system(nullptr, {{"GetDC", Address(noDevice)}});
    CCMLockedDlg dialog(nullptr, nullptr);
    const auto look = [](Dialog& d) {
        const CRect text = RectIn(d.Handle(), d.Control(IDC_CARD_MANAGER_LOCKED_TEXT));
        EXPECT_EQ(text.Height(), 64);
        EXPECT_EQ(RectIn(d.Handle(), d.Control(IDOK)).top, text.bottom);
        d.Enter();
    };
    EXPECT_EQ(Open(dialog, {look}), IDOK);
}

}  // namespace
}  // namespace mvp::test
