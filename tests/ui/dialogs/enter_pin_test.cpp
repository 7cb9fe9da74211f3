// GetPINFromUser from the call to its result, and the dialog in between.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/module.h"
#include "mvpingui/mvpingui.h"
#include "resources/resource_numbers.h"
#include "services/help_topic.h"
#include "services/resource_module.h"
#include "support/caps_lock.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/message_box_recorder.h"
#include "support/registry_hive.h"
#include "support/resource_counts.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/other_system.h"
#include "ui/dialogs/pin_request.h"

namespace mvp::test {
namespace {

using Request = PinRequest;

class EnterPin : public testing::Test {
protected:
    ~EnterPin() override {
        FreeGetPinBuffer(nullptr, 0);
        SetPinPromptString(nullptr);
    }

    AttachedLibrary m_library;
    RegistryHive m_hive;
    LogRecorder m_log;
    MessageBoxRecorder m_boxes;
};

TEST_F(EnterPin, HandsOutExactlyWhatWasTyped) {
    struct Case {
        uint32_t dwMin;
        uint32_t dwMax;
        std::string strPin;
    };
    const Case cases[] = {
        {4, 8, "123456"},       {1, 1, "7"},
        {4, 4, "0000"},         {0, 8, "\xE9\xE8\xFC\xDF"},
        {0, 0xFFFFFFFF, "a b"}, {1, 20'000, std::string(10'000, '5')},
    };
    for (const Case& c : cases) {
        Request request{.dwMin = c.dwMin, .dwMax = c.dwMax};
        DialogDriver driver([&](Dialog& d) {
            if (c.strPin.size() > 100)
                d.Paste(IDC_ENTER_PIN_EDIT, c.strPin);
            else
                d.Type(IDC_ENTER_PIN_EDIT, c.strPin);
            d.Click(IDOK);
        });
        EXPECT_EQ(request.Call(), MVPINGUI_OK) << m_log.Dump();
        driver.Join();
        ASSERT_EQ(request.cbPin, c.strPin.size());
        EXPECT_TRUE(request.Pin() == c.strPin);
        FreeGetPinBuffer(request.pPin, request.cbPin);
    }
}

TEST_F(EnterPin, EmptyPinIsAnAnswerWhenAllowed) {
    Request request{.dwMin = 0};
    DialogDriver driver([](Dialog& d) {
        EXPECT_TRUE(d.IsEnabled(IDOK));
        d.Enter();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    EXPECT_EQ(request.pPin, nullptr);
    EXPECT_EQ(request.cbPin, 0U);
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: PIN empty"));
}

TEST_F(EnterPin, OkFollowsTheBoundsAtEveryStep) {
    Request request;
    DialogDriver driver([](Dialog& d) {
        EXPECT_FALSE(d.IsEnabled(IDOK));
        EXPECT_EQ(d.FocusedId(), IDC_ENTER_PIN_EDIT);
        for (int length = 1; length <= 9; ++length) {
            d.Type(IDC_ENTER_PIN_EDIT, "\xE9");
            const bool allowed = length >= 4 && length <= 8;
            EXPECT_EQ(d.IsEnabled(IDOK), allowed) << length;
            // The command comes without the button, and is refused all the same.
            if (!allowed)
                SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            ASSERT_TRUE(d.IsOpen()) << length;
        }
        for (int length = 8; length >= 0; --length) {
            d.Press(VK_BACK);
            EXPECT_EQ(d.IsEnabled(IDOK), length >= 4 && length <= 8) << length;
        }
        d.Paste(IDC_ENTER_PIN_EDIT, "12345");
        EXPECT_TRUE(d.IsEnabled(IDOK));
        d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, 0, -1);
        d.Send(IDC_ENTER_PIN_EDIT, WM_CLEAR);
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Enter();
        EXPECT_TRUE(d.IsOpen());
        d.Escape();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
}

TEST_F(EnterPin, WhatComesAfterItsEndChangesNothing) {
    const UINT nRemoved = RegisterWindowMessageA("VKCardRemovedEvent");
    const struct {
        UINT nMessage;
        WPARAM wParam;
        std::uint32_t dwResult;
    } ends[] = {{WM_COMMAND, IDOK, MVPINGUI_OK},
                {WM_COMMAND, IDCANCEL, MVPINGUI_REFUSED},
                {nRemoved, 1, MVPINGUI_REFUSED}};
    for (const auto& end : ends) {
        Request request;
        DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            // In one go, so that the modal loop has no chance to end in between.
            d.Run([&] {
                SendMessageA(d.Handle(), end.nMessage, end.wParam, 0);
                SetDlgItemTextA(d.Handle(), IDC_ENTER_PIN_EDIT, "1");
                SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            });
        });
        EXPECT_EQ(request.Call(), end.dwResult);
        if (end.dwResult == MVPINGUI_OK)
            EXPECT_EQ(request.Pin(), "1234");
        else
            EXPECT_TRUE(request.IsUntouched());
        request.Free();
    }
}

TEST_F(EnterPin, MovingTakesTheWarningDown) {
    const OldSystem system;
    const CapsLock capsLock(true);
    Request request;
    DialogDriver driver([](Dialog& d) {
        d.Focus(IDC_ENTER_PIN_EDIT);
        HWND hBalloon = nullptr;
        d.WaitUntil("the warning shows", [&] {
            hBalloon = FindWindowA(TOOLTIPS_CLASSA, nullptr);
            return hBalloon != nullptr && IsWindowVisible(hBalloon) != FALSE;
        });
        const RECT rect = d.ScreenRect();
        SetWindowPos(d.Handle(), nullptr, rect.left + 10, rect.top, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        EXPECT_FALSE(IsWindowVisible(hBalloon));
        d.Escape();
    });
    request.Call();
}

TEST_F(EnterPin, LinesOfTheLogAreTheStatedOnes) {
    Request request;
    DialogDriver driver([](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, "1234");
        d.Click(IDOK);
    });
    request.Call();
    driver.Join();
    std::vector<std::string> lines;
    for (const RecordedLine& line : m_log.Lines()) {
        // Addresses and flags, and moves of the window, are no two times the same.
        const std::string text = line.strText.substr(0, line.strText.find_first_of("(") - 1);
        if (line.nLevel != 0 && !text.ends_with("::OnMove"))
            lines.push_back(std::to_string(line.nLevel) + " " + text.substr(0, text.find("this:")));
    }
    EXPECT_THAT(lines, testing::ElementsAreArray({
                           "8 GetPINFromUser",
                           "2 GetPINFromUser: hParent = 0, Reader = Reader A",
                           "2 GetPINFromUser: Enter PIN action allowed",
                           "8 VKDetectCardRemovedDlg",
                           "2 VKDetectCardRemovedDlg: pParent = 0, Reader = Reader A",
                           "16 VKDetectCardRemovedDlg",
                           "8 CEnterPinDlg",
                           "2 CEnterPinDlg: pParent = 0, Reader = Reader A",
                           "8 CEnterPinDlg::IsHighColorSupported",
                           "16 CEnterPinDlg::IsHighColorSupported",
                           "16 CEnterPinDlg",
                           "2 CEnterPinDlg::OnContextualHelp: ",
                           "2 CEnterPinDlg::OnContextualHelp: CreateDlgIndirect with hWndParent",
                           "8 CEnterPinDlg::OnInitDialog",
                           "8 VKDetectCardRemovedDlg::OnInitDialog",
                           "8 CBaseDialog::OnInitDialog",
                           "16 CBaseDialog::OnInitDialog",
                           "8 VKDelegateSubscriberCardRemoved Constructor",
                           "16 VKDelegateSubscriberCardRemoved Constructor",
                           "16 VKDetectCardRemovedDlg::OnInitDialog",
                           "8 CEnterPinDlg::TryToInsertBitmap",
                           "8 CEnterPinDlg::GetBrandingBitmaps",
                           "16 CEnterPinDlg::GetBrandingBitmaps",
                           "16 CEnterPinDlg::TryToInsertBitmap",
                           "16 CEnterPinDlg::OnInitDialog",
                           "2 CEnterPinDlg::OnContextualHelp: CreateDlgIndirect success",
                           "8 CEnterPinDlg::OnOK",
                           "8 VKDetectCardRemovedDlg::StopDetectingRemoveEvent",
                           "2 VKDetectCardRemovedDlg::StopDetectingRemoveEvent: Card removed",
                           "8 VKDelegateSubscriberCardRemoved Destructor",
                           "16 VKDelegateSubscriberCardRemoved Destructor",
                           "16 VKDetectCardRemovedDlg::StopDetectingRemoveEvent",
                           "16 CEnterPinDlg::OnOK",
                           "8 VKDetectCardRemovedDlg::OnDestroy",
                           "8 VKDetectCardRemovedDlg::StopDetectingRemoveEvent",
                           "16 VKDetectCardRemovedDlg::StopDetectingRemoveEvent",
                           "16 VKDetectCardRemovedDlg::OnDestroy",
                           "2 GetPINFromUser: Enter PIN action validated",
                           "8 ~CEnterPinDlg",
                           "8 CBaseDialog::HidePinFromMemory",
                           "16 CBaseDialog::HidePinFromMemory",
                           "16 ~CEnterPinDlg",
                           "8 ~VKDetectCardRemovedDlg",
                           "16 ~VKDetectCardRemovedDlg",
                           "2 GetPINFromUser: returns: 0",
                           "16 GetPINFromUser",
                       }));
    for (const char* pszText :
         {"CEnterPinDlg::OnEnChangeEditPassword:BEG", "CEnterPinDlg::OnEnChangeEditPassword:END",
          "CEnterPinDlg::GetPinValue"})
        EXPECT_TRUE(m_log.Contains(0, pszText)) << pszText;
    // Once at the opening, once for each of four characters: overwriting the edit at the end is
    // nobody's change.
    EXPECT_EQ(std::ranges::count(m_log.Texts(0), "CEnterPinDlg::OnEnChangeEditPassword:BEG"), 5);
    for (const RecordedLine& line : m_log.Lines())
        EXPECT_EQ(line.strText.find("1234"), std::string::npos) << line.strText;
    FreeGetPinBuffer(request.pPin, request.cbPin);
}

TEST_F(EnterPin, OneRequestAtATime) {
    Request first;
    {
        DialogDriver driver([](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            d.Click(IDOK);
        });
        ASSERT_EQ(first.Call(), MVPINGUI_OK);
    }
    Request second;
    {
        DialogDriver noDialog;
        EXPECT_EQ(second.Call(), MVPINGUI_REFUSED);
    }
    EXPECT_TRUE(second.IsUntouched());
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: Enter PIN action NOT allowed"));
    EXPECT_TRUE(m_log.Contains(1, "GetPINFromUser: returns: -1"));
    FreeGetPinBuffer(first.pPin, first.cbPin);
    {
        DialogDriver driver([](Dialog& d) { d.Escape(); });
        EXPECT_EQ(second.Call(), MVPINGUI_REFUSED);
    }
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: Enter PIN action cancelled"));
    // Cancelled, and refused all the same until the caller has said that it holds nothing.
    {
        DialogDriver noDialog;
        EXPECT_EQ(second.Call(), MVPINGUI_REFUSED);
    }
    FreeGetPinBuffer(nullptr, 0);
    DialogDriver driver([](Dialog& d) { d.Escape(); });
    EXPECT_EQ(second.Call(), MVPINGUI_REFUSED);
}

TEST_F(EnterPin, NullOutArgumentsAreRefusedBeforeAnythingShows) {
    for (const bool nullPin : {true, false}) {
        m_log.Clear();
        Request request{.bShowLastTry = 1, .bNullPin = nullPin, .bNullLength = !nullPin};
        {
            DialogDriver noDialog;
            EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        }
        EXPECT_TRUE(request.IsUntouched());
        EXPECT_TRUE(m_boxes.Calls().empty());
        EXPECT_EQ(Module().nPinDialogInProgress, 0);
        EXPECT_EQ(m_log.Texts(1),
                  (std::vector<std::string>{
                      nullPin ? "GetPINFromUser: ppPin == NULL" : "GetPINFromUser: pcbPin == NULL",
                      "GetPINFromUser: returns: -1"}));
        EXPECT_EQ(m_log.Texts(16), std::vector<std::string>{"GetPINFromUser"});
    }
}

TEST_F(EnterPin, BoundsThatExcludeEachOtherAreTold) {
    Request request{.dwMin = 5, .dwMax = 4};
    DialogDriver driver([](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, "12345");
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Escape();
    });
    request.Call();
    driver.Join();
    EXPECT_TRUE(m_log.Contains(1, "GetPINFromUser: minimum length 5 > maximum length 4"));
}

TEST_F(EnterPin, LastTryComesFirst) {
    Request request{.bShowLastTry = 1};
    m_boxes.SetAnswer(0);
    {
        DialogDriver noDialog;
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    }
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_EQ(Module().nPinDialogInProgress, 0);
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: DisplayLastPINTry"));
    EXPECT_FALSE(m_log.ContainsPart("returns:")) << m_log.Dump();
    EXPECT_FALSE(m_log.Contains(16, "GetPINFromUser"));
    m_boxes.SetAnswer(1);
    DialogDriver driver([](Dialog& d) { d.Escape(); });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_EQ(m_boxes.Calls().size(), 2U);
    driver.Join();
    // Also while a PIN is still out: what is declined then leaves no word of the guard.
    for (const int nAnswer : {1, 0}) {
        m_log.Clear();
        m_boxes.SetAnswer(nAnswer);
        DialogDriver noDialog;
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        EXPECT_EQ(m_log.Contains(2, "GetPINFromUser: Enter PIN action NOT allowed"), nAnswer == 1);
    }
    EXPECT_EQ(m_boxes.Calls().size(), 4U);
}

TEST_F(EnterPin, MissingTemplateIsACancelledRequest) {
    FreeResourceModule();
    Request request;
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_EQ(Module().nPinDialogInProgress, 1);
    LoadResourceModule();
}

TEST_F(EnterPin, PromptReplacesTheText) {
    std::string standard;
    const auto textOfPrompt = [] {
        std::string text;
        Request request;
        DialogDriver driver([&](Dialog& d) {
            text = d.Text(IDC_ENTER_PIN_PROMPT);
            d.Escape();
        });
        request.Call();
        driver.Join();
        FreeGetPinBuffer(nullptr, 0);
        return text;
    };
    standard = textOfPrompt();
    EXPECT_FALSE(standard.empty());
    SetPinPromptString("PIN of the payroll card, please");
    EXPECT_EQ(textOfPrompt(), "PIN of the payroll card, please");
    SetPinPromptString(nullptr);
    EXPECT_EQ(textOfPrompt(), standard);
}

TEST_F(EnterPin, StandsOnTop) {
    Request request;
    DialogDriver driver([](Dialog& d) {
        EXPECT_NE(GetWindowLongA(d.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
        d.Run([&] { EXPECT_EQ(GetForegroundWindow(), d.Handle()); });
        d.Escape();
    });
    request.Call();
}

std::string g_strHelpFile;
DWORD_PTR g_nTopic;

HWND WINAPI RecordTopic(HWND, LPCSTR pszFile, UINT, DWORD_PTR nTopic) {
    g_strHelpFile = pszFile;
    g_nTopic = nTopic;
    return nullptr;
}

TEST_F(EnterPin, F1ShowsItsTopic) {
    m_hive.SetString(R"(SOFTWARE\Quillon\Veskara\GlobalConfig)", "VeskaraHelpPath", "v.chm");
    SetHelpViewer(RecordTopic);
    Request request;
    DialogDriver driver([](Dialog& d) {
        HELPINFO info{};
        info.cbSize = sizeof info;
        d.Run([&] { SendMessageA(d.Handle(), WM_HELP, 0, reinterpret_cast<LPARAM>(&info)); });
        d.Escape();
    });
    request.Call();
    driver.Join();
    SetHelpViewer(nullptr);
    EXPECT_EQ(g_strHelpFile, "v.chm");
    EXPECT_EQ(g_nTopic, 1015U);
}

TEST_F(EnterPin, CardRemovalCancels) {
    const UINT message = RegisterWindowMessageA("VKCardRemovedEvent");
    Request request;
    DialogDriver driver([&](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, "1234");
        PostMessageA(d.Handle(), message, 1, 0);
        d.WaitGone();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_TRUE(m_log.Contains(8, "VKDetectCardRemovedDlg::OnCardEvent"));
}

TEST_F(EnterPin, ManyRequestsKeepNothing) {
    ExpectRoundsKeepNothing(1, 50, [this](int) {
        Request request;
        DialogDriver driver([](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            d.Click(IDOK);
        });
        request.Call();
        driver.Join();
        FreeGetPinBuffer(request.pPin, request.cbPin);
        m_log.Clear();
    });
}

}  // namespace
}  // namespace mvp::test
