#include "popup_owner.h"

#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "support/registry_hive.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kTitle[] = "owner of popups";

// Most popups of a series are hidden soon after they have begun to slide.
constexpr int kStepsOfMost = 5;
constexpr int kWholeLives = 20;

CRect PlaceOf(HWND hWnd) {
    CRect place;
    GetWindowRect(hWnd, &place);
    return place;
}

// What the other process talks to.
class OwnerWindow : public CWnd {
public:
    OwnerWindow() {
        CreateEx(0, "STATIC", kTitle, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr);
        m_hive.SetString(R"(SOFTWARE\Quillon\Veskara\GlobalConfig)", "VeskaraHelpPath", "v.chm");
    }
    ~OwnerWindow() override {
        m_ordinary.DestroyWindow();
        DestroyWindow();
    }

    void Run() {
        MSG message{};
        while (message.message != WM_QUIT) {
            if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&message);
                DispatchMessageA(&message);
            } else if (m_bRunning) {
                Step();
            } else {
                WaitMessage();
            }
            Tell("steps", m_nSteps);
            Tell("shown", m_nShown);
        }
    }

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case PopupOwner::AskShow:
                return reinterpret_cast<LRESULT>(Show(static_cast<int>(wParam)));
            case PopupOwner::AskPassword:
                BringPassword();
                return 0;
            case PopupOwner::AskSeries:
                m_bRunning = true;
                return 0;
            case WM_POPUP_CLOSED:
                Tell("closed", ++m_nClosed);
                return 0;
            case WM_CLOSE:
                PostQuitMessage(0);
                return 0;
            default:
                return CWnd::WindowProc(message, wParam, lParam);
        }
    }

private:
    // Another process reads it without waiting for this one.
    void Tell(const char* pszName, int nValue) {
        SetPropA(m_hWnd, pszName, reinterpret_cast<HANDLE>(static_cast<INT_PTR>(nValue)));
    }
    HWND Show(int nType) {
        if (nType == PopupOwner::kOrdinary) {
            m_ordinary.CreateEx(0, "STATIC", "ordinary", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 700, 50,
                                200, 100, nullptr, nullptr);
            m_ordinary.SetForegroundWindow();
            return m_ordinary;
        }
        const std::string number = std::to_string(++m_nShown);
        for (const char* notice : {"NoReaderWarning", "SmartCardPresenceWarning"}) {
            const std::string key =
                std::string(R"(SOFTWARE\Quillon\Veskara\Notification\)") + notice;
            m_hive.SetDword(key, "Enable", 1);
            m_hive.SetDword(key, "Duration", 60);
            m_hive.SetString(key, "Message", "<b>Notice</b> " + number);
        }
        m_popup = std::make_unique<CPopupAlert>();
        EXPECT_NE(m_popup->Create(m_hWnd), 0);
        m_popup->SetMessage(("Fetching " + number).c_str());
        EXPECT_TRUE(m_popup->InitWindow(m_hWnd, m_nType = nType, 0));
        if (nType == DIALOG_POPUP_CARD_OTP) {
            m_popup->SetThreadRoutine([](void*) -> DWORD { return 0; });
        }
        m_popup->Show();
        return *m_popup;
    }
    void BringPassword() {
        char* text = NewPopupText("Your password: <b>740 291</b>");
        m_popup->SendMessage(WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(text));
    }
    void Step() {
        ++m_nSteps;
        if (m_popup == nullptr || m_popup->IsWindowVisible() == FALSE) {
            Show(m_nShown % 3);
            m_nSteps = 0;
        } else if (m_nSteps == kStepsOfMost && m_nShown % kWholeLives != 0) {
            m_popup->Hide();
        } else if (m_nSteps == PopupOwner::kArrived && m_nType == DIALOG_POPUP_CARD_OTP) {
            BringPassword();
        } else if (m_nSteps < PopupOwner::kLeaving) {
            m_popup->SendMessage(WM_TIMER, 1);
        } else {
            m_popup->SendMessage(WM_TIMER, 2);
            m_popup->SendMessage(WM_TIMER, 3);
        }
    }

    AttachedLibrary m_library{"en"};
    RegistryHive m_hive;
    std::unique_ptr<CPopupAlert> m_popup;
    CWnd m_ordinary;
    bool m_bRunning = false;
    int m_nType = 0;
    int m_nShown = 0;
    int m_nSteps = 0;  // of this popup
    int m_nClosed = 0;
};

TEST(PopupOwnerProcess, DISABLED_Serves) {
    OwnerWindow().Run();
}

}  // namespace

PopupOwner::PopupOwner() : m_process("PopupOwnerProcess.DISABLED_Serves") {
    PumpUntil([this] { return (m_hWnd = FindWindowA(nullptr, kTitle)) != nullptr; });
    Ask(WM_NULL, 0);
}

PopupOwner::~PopupOwner() {
    PostMessageA(m_hWnd, WM_CLOSE, 0, 0);
    const ChildResult result = m_process.Wait();
    EXPECT_EQ(result.dwExitCode, 0u) << result.strOutput;
}

LRESULT PopupOwner::Ask(UINT message, int nParameter) const {
    constexpr UINT kMilliseconds = 30'000;
    DWORD_PTR result = 0;
    EXPECT_NE(SendMessageTimeoutA(m_hWnd, message, static_cast<WPARAM>(nParameter), 0, SMTO_NORMAL,
                                  kMilliseconds, &result),
              0);
    return static_cast<LRESULT>(result);
}

bool BringIn(HWND hPopup) {
    CRect place;
    return PumpUntil([&] {
        SendMessageA(hPopup, WM_TIMER, 1, 0);
        CRect now = PlaceOf(hPopup);
        const CRect before = std::exchange(place, now);
        return EqualRect(&before, &now) != FALSE;
    });
}

}  // namespace mvp::test
