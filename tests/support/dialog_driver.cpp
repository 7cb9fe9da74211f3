#include "support/dialog_driver.h"

#include <cstring>
#include <optional>

#include <gtest/gtest.h>

#include "common/keyboard.h"
#include "common/thread_windows.h"
#include "platform/barrier.h"
#include "support/memory_scan.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

// Handles the calling thread's messages as long as `condition` holds. A WM_QUIT is put back: it is
// meant for whoever reads the thread's messages next.
template <class Condition>
void PumpWhile(Condition condition) {
    std::optional<int> quitCode;
    do {
        constexpr DWORD kLookMs = 2;  // how often the condition is asked
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kLookMs, QS_ALLINPUT);
        for (MSG message = {}; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            if (message.message == WM_QUIT) {
                quitCode = static_cast<int>(message.wParam);
            }
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    } while (condition());
    if (quitCode) {
        PostQuitMessage(*quitCode);
    }
}

}  // namespace

// --- The driver ---

DialogDriver::DialogDriver(std::chrono::milliseconds deadline, std::vector<Script> scripts)
    : m_deadline(deadline), m_thread([this, scripts = std::move(scripts)] { Main(scripts); }) {}

void DialogDriver::Join() {
    if (!m_thread.joinable()) {
        return;
    }
    PumpWhile([this] { return m_phase == Phase::Scripts; });
    m_phase = Phase::Stop;
    PumpWhile([this] { return m_phase != Phase::Ended; });
    m_thread.join();
}

void DialogDriver::Main(const std::vector<Script>& scripts) noexcept {
    Guarded(
        [&] {
            try {
                RunScripts(scripts);
            } catch (const std::exception& error) {
                Fail(error.what());
            }
            m_phase = Phase::Watch;
            // From here on nobody waits for a dialog: one that opens would keep the test's thread
            // for ever.
            for (; m_phase == Phase::Watch; Sleep(5)) {
                CancelWhatIsOpen();
            }
        },
        [] { EndTestProcess("the dialog driver failed"); });
    m_phase = Phase::Ended;
}

void DialogDriver::RunScripts(const std::vector<Script>& scripts) {
    for (const Script& script : scripts) {
        Dialog dialog = WaitForDialog();
        script(dialog);
        m_bFailed = testing::Test::HasFatalFailure();
        if (m_bFailed) {
            return;  // has been reported; the dialog is cancelled now, not waited for
        }
        dialog.WaitGone();
    }
}

void DialogDriver::CancelWhatIsOpen() {
    for (HWND dialog : OpenDialogs()) {
        if (!m_bFailed) {
            Fail("no script waits for what is open: " + DescribeWindows());
        }
        const std::string title = TitleOf(dialog);
        // A dialog below another one takes the command only when that has gone, so it is repeated;
        // a dialog that knows no Cancel may know another answer.
        constexpr int kAnswers[] = {IDCANCEL, IDOK, IDNO, IDABORT};
        int tries = 0;
        do {
            if (tries == 12) {
                EndTestProcess("the dialog \"" + title + "\" cannot be cancelled");
            }
            PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(kAnswers[tries++ % 4]), 0);
        } while (!WaitFor(std::chrono::milliseconds(250), [=] { return IsGone(dialog); }));
    }
}

void DialogDriver::Fail(const std::string& strReason) {
    m_bFailed = true;
    ADD_FAILURE() << "dialog driver: " << strReason;
}

void DialogDriver::WaitUntil(const std::string& strWhat,
                             const std::function<bool()>& condition) const {
    if (!WaitFor(m_deadline, condition)) {
        throw DriverFailure("waited " + std::to_string(m_deadline.count()) + " ms until " +
                            strWhat + "; open are: " + DescribeWindows());
    }
}

Dialog DialogDriver::WaitForDialog() {
    std::vector<HWND> ready;
    WaitUntil("a dialog opens", [&] {
        ready = OpenDialogs();
        std::erase_if(ready, [this](HWND hWnd) { return !IsReady(hWnd); });
        return !ready.empty();
    });
    m_inHand.insert(ready.front());
    return {*this, ready.front()};
}

bool DialogDriver::IsReady(HWND hWnd) const {
    const auto isWanted = [&] {
        return IsWindowVisible(hWnd) && IsWindowEnabled(hWnd) && !m_inHand.contains(hWnd);
    };
    // Answered once the dialog's initialisation is over, which may have closed it again.
    DWORD_PTR result = 0;
    return isWanted() &&
           SendMessageTimeoutA(hWnd, WM_NULL, 0, 0, SMTO_ABORTIFHUNG,
                               static_cast<UINT>(m_deadline.count()), &result) != 0 &&
           isWanted();
}

std::vector<HWND> DialogDriver::OpenDialogs() const {
    std::vector<HWND> dialogs = VisibleWindows(m_ui.Id());
    std::erase_if(dialogs, [](HWND hWnd) { return !IsDialog(hWnd); });
    return dialogs;
}

// Every visible top-level window of the thread, for failure texts.
std::string DialogDriver::DescribeWindows() const {
    std::string text;
    for (HWND window : VisibleWindows(m_ui.Id())) {
        text += (text.empty() ? "" : ", ") + ClassOf(window) + " \"" + TitleOf(window) + "\"" +
                (IsWindowEnabled(window) ? "" : " (disabled)");
    }
    return text.empty() ? "none" : text;
}

// --- A dialog: what it shows ---

std::string Dialog::Title() const {
    return TitleOf(m_hWnd);
}

HWND Dialog::Control(int nId) const {
    HWND control = FindControl(m_hWnd, nId);
    if (control == nullptr) {
        throw DriverFailure("the dialog \"" + Title() + "\" has no control " + std::to_string(nId));
    }
    return control;
}

HWND Dialog::Usable(int nId) const {
    HWND control = Control(nId);
    if (!IsWindowVisible(control) || !IsWindowEnabled(control)) {
        throw DriverFailure("control " + std::to_string(nId) + " of the dialog \"" + Title() +
                            "\" is disabled or hidden");
    }
    return control;
}

std::string Dialog::Text(int nId) const {
    std::string text;
    Run([&, control = Control(nId)] {
        text.resize(static_cast<size_t>(GetWindowTextLengthA(control)) + 1);
        const int length = static_cast<int>(text.size());
        text.resize(static_cast<size_t>(GetWindowTextA(control, text.data(), length)));
    });
    return text;
}

void Dialog::SetText(int nId, const char* pszText) const {
    Run([=, control = Control(nId)] { SetWindowTextA(control, pszText); });
}

LRESULT Dialog::Send(int nId, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR result = 0;
    if (SendMessageTimeoutA(Control(nId), nMessage, wParam, lParam, SMTO_ABORTIFHUNG,
                            static_cast<UINT>(m_driver.m_deadline.count()), &result) == 0) {
        throw DriverFailure("no answer to message " + std::to_string(nMessage));
    }
    return static_cast<LRESULT>(result);
}

HWND Dialog::FocusedControl() const {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(m_driver.m_ui.Id(), &info) ? info.hwndFocus : nullptr;
}

int Dialog::FocusedId() const {
    HWND focus = FocusedControl();
    return focus != nullptr && focus != m_hWnd ? GetDlgCtrlID(focus) : 0;
}

// --- Acting by messages ---

void Dialog::Post(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    if (!PostMessageA(hWnd, nMessage, wParam, lParam)) {
        throw DriverFailure("message " + std::to_string(nMessage) + " could not be posted, error " +
                            std::to_string(GetLastError()));
    }
}

void Dialog::Focus(int nId) {
    HWND control = Usable(nId);
    if (FocusedControl() == control) {
        return;
    }
    Run([control] { SetFocus(control); });
    WaitUntil("control " + std::to_string(nId) + " has the focus",
              [&] { return FocusedControl() == control; });
}

template <class Characters>
void Dialog::TypeEach(int nId, const Characters& text) {
    Focus(nId);
    const LRESULT length = Send(nId, WM_GETTEXTLENGTH);
    Send(nId, EM_SETSEL, static_cast<WPARAM>(length), length);
    HWND control = Control(nId);
    for (size_t i = 0; i < text.size(); ++i) {
        Post(control, WM_CHAR, static_cast<unsigned char>(text[i]), 1);
    }
    Settle();
}

void Dialog::Type(int nId, std::string_view text) {
    TypeEach(nId, text);
}

void Dialog::Type(int nId, const Secret& secret) {
    TypeEach(nId, secret);
}

void Dialog::Paste(int nId, std::string_view text) {
    HWND control = Usable(nId);
    WaitUntil("the clipboard is free", [] { return OpenClipboard(nullptr) != FALSE; });
    EmptyClipboard();
    const HGLOBAL textHandle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, text.size() + 1);
    std::memcpy(GlobalLock(textHandle), text.data(), text.size());
    GlobalUnlock(textHandle);
    SetClipboardData(CF_TEXT, textHandle);  // which owns it now
    CloseClipboard();
    Run([=] { SendMessageA(control, WM_PASTE, 0, 0); });
}

void Dialog::Click(int nId) {
    Post(Usable(nId), BM_CLICK, 0, 0);
    Settle();
}

void Dialog::Press(WORD vk) {
    HWND top = GetAncestor(m_hWnd, GA_ROOT);
    HWND target = nullptr;
    // The focus may still be on its way here from a dialog that has just gone.
    WaitUntil("the dialog has the focus", [&] {
        target = FocusedControl();
        return target == top || IsChild(top, target);
    });
    const UINT data = 1U | MapVirtualKeyA(vk, MAPVK_VK_TO_VSC) << 16;
    Post(target, WM_KEYDOWN, vk, static_cast<LPARAM>(data));
    PostMessageA(target, WM_KEYUP, vk,
                 static_cast<LPARAM>(data | 0xC0000000));  // unless it has gone at the press
    // The press posts the key's character, which the second one waits for.
    Settle();
    Settle();
}

void Dialog::Cancel() {
    Post(m_hWnd, WM_COMMAND, IDCANCEL, 0);
    Settle();
}

// --- Acting by real key strokes ---

void Dialog::BringToForeground() const {
    HWND top = GetAncestor(m_hWnd, GA_ROOT);
    if (GetForegroundWindow() != top) {
        Run([top] { SetForegroundWindow(top); });
    }
    WaitUntil("the dialog is in the foreground", [top] { return GetForegroundWindow() == top; });
}

void Dialog::AwaitKeys(bool bSent) const {
    if (!bSent) {
        throw DriverFailure("the system refused a key stroke");
    }
    // A stroke may end the dialog, and with it the thread's taking of messages.
    WaitUntil("the keys are taken", [this] {
        return !IsOpen() || WaitForKeys(m_driver.m_ui.Id(), std::chrono::milliseconds(200));
    });
    Settle();
}

void Dialog::RealType(int nId, std::string_view text) {
    BringToForeground();
    Focus(nId);
    AwaitKeys(SendText(text));
}

void Dialog::RealKey(WORD vk, std::initializer_list<WORD> modifiers) {
    BringToForeground();
    AwaitKeys(SendKey(vk, modifiers));
}

// --- Waiting ---

void Dialog::WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const {
    m_driver.WaitUntil(strWhat, condition);
}

void Dialog::WaitGone() const {
    WaitUntil("the dialog \"" + Title() + "\" has gone", [this] { return !IsOpen(); });
    m_driver.m_inHand.erase(m_hWnd);
}

Dialog Dialog::Next() {
    return m_driver.WaitForDialog();
}

void Dialog::Settle() const {
    WaitUntil("the dialog's thread has handled what was posted",
              [this, isReached = m_driver.m_ui.PostMark()] { return isReached() || !IsOpen(); });
}

void Dialog::Run(const std::function<void()>& work) const {
    m_driver.m_ui.Run(work, m_driver.m_deadline);
}

}  // namespace mvp::test
