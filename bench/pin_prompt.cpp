// What asking for a PIN costs: from the call until the dialog takes key strokes, a key stroke, and
// a thousand requests in a row.
//
// Baselines: "bare dialog", the system's modal call on the very same template, and "credentials",
// the system's own dialog for a user name and password. A dialog is ready when it has been shown
// and its message loop takes a message that was posted after that; it is cancelled at once. A key
// stroke's baseline is a password edit of the system that nobody listens to.
#include <windows.h>

#include <cstdlib>

#include <wincred.h>

#include "bench.h"
#include "mvpingui/mvpingui.h"
#include "platform/handle.h"
#include "resources/resource_numbers.h"

namespace {

constexpr UINT kReady = WM_APP + 77;
constexpr int kKeyStrokes = 50;
constexpr int kPrompts = 1000;

using Clock = std::chrono::steady_clock;
Clock::time_point g_ready;
bool g_bTypeFirst;
mvp::bench::Comparison g_keyStroke;

bool IsDialog(HWND hWnd) {
    char className[8] = "";
    return GetClassNameA(hWnd, className, sizeof className) != 0 && className[0] == '#' &&
           (GetWindowLongPtrA(hWnd, GWL_STYLE) & WS_CHILD) == 0;
}

// Types a digit behind the edit's text and deletes it.
void TypeAndDelete(HWND hEdit) {
    for (const WPARAM key : {WPARAM{'8'}, WPARAM{VK_BACK}}) {
        SendMessageA(hEdit, WM_CHAR, key, 1);
        UpdateWindow(hEdit);
    }
}

void MeasureKeyStroke(HWND hDialog) {
    HWND edit = GetDlgItem(hDialog, IDC_ENTER_PIN_EDIT);
    HWND bare = CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "",
                                WS_POPUP | WS_VISIBLE | ES_PASSWORD | ES_AUTOHSCROLL, 0, 600, 230,
                                23, nullptr, nullptr, nullptr, nullptr);
    for (HWND h : {edit, bare}) {
        SetWindowTextA(h, "583");
        SendMessageA(h, EM_SETSEL, 3, 3);
    }
    // From three to four characters and back: OK changes its state each time.
    g_keyStroke = mvp::bench::Compare(
        kKeyStrokes, [edit] { TypeAndDelete(edit); }, [bare] { TypeAndDelete(bare); });
    DestroyWindow(bare);
}

LRESULT CALLBACK OnSent(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto& message = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (nCode == HC_ACTION && message.message == WM_SHOWWINDOW && message.wParam != 0 &&
        IsDialog(message.hwnd)) {
        PostMessageA(message.hwnd, kReady, 0, 0);
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

LRESULT CALLBACK OnTaken(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto& message = *reinterpret_cast<const MSG*>(lParam);
    if (nCode == HC_ACTION && wParam == PM_REMOVE && message.message == kReady) {
        g_ready = Clock::now();
        if (g_bTypeFirst) {
            MeasureKeyStroke(message.hwnd);
        }
        PostMessageA(message.hwnd, WM_COMMAND, IDCANCEL, 0);
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

void Ask() {
    char* pin = nullptr;
    uint32_t pinSize = 0;
    GetPINFromUser(nullptr, "Reader A", 0, 4, 8, &pin, &pinSize);
    FreeGetPinBuffer(pin, pinSize);
}

INT_PTR CALLBACK BareProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        ShowWindow(hWnd, SW_SHOW);
    }
    if (message == WM_COMMAND && wParam == IDCANCEL) {
        EndDialog(hWnd, IDCANCEL);
    }
    return message == WM_INITDIALOG ? TRUE : FALSE;
}

void AskBare() {
    static const mvp::ModuleHandle texts(
        LoadLibraryExA(R"(.\Resources\Localized\mvpinguirc.dll)", nullptr,
                       LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    DialogBoxParamA(texts.get(), MAKEINTRESOURCEA(IDD_ENTER_PIN), nullptr, BareProc, 0);
}

void AskCredentials() {
    wchar_t user[CREDUI_MAX_USERNAME_LENGTH + 1] = L"";
    wchar_t password[CREDUI_MAX_PASSWORD_LENGTH + 1] = L"";
    CREDUI_INFOW info{};
    info.cbSize = sizeof info;
    info.pszMessageText = L"Reader A";
    info.pszCaptionText = L"PIN";
    CredUIPromptForCredentialsW(&info, L"bench", nullptr, 0, user, CREDUI_MAX_USERNAME_LENGTH,
                                password, CREDUI_MAX_PASSWORD_LENGTH, nullptr,
                                CREDUI_FLAGS_GENERIC_CREDENTIALS | CREDUI_FLAGS_ALWAYS_SHOW_UI |
                                    CREDUI_FLAGS_DO_NOT_PERSIST);
}

// Nanoseconds from the call to the ready dialog.
double TimeToReady(void (*pAsk)()) {
    const Clock::time_point start = Clock::now();
    pAsk();
    return std::chrono::duration<double, std::nano>(g_ready - start).count();
}

mvp::bench::Comparison CompareReady(void (*pBaseline)()) {
    mvp::bench::Comparison result;
    for (int round = 0; round < mvp::bench::kRounds * 2; ++round) {
        result.baseline = std::min(result.baseline, TimeToReady(pBaseline));
        result.value = std::min(result.value, TimeToReady(&Ask));
    }
    return result;
}

std::size_t PrivateBytes() {
    std::size_t bytes = 0;
    MEMORY_BASIC_INFORMATION info{};
    for (const char* p = nullptr; VirtualQuery(p, &info, sizeof info) != 0;
         p = static_cast<const char*>(info.BaseAddress) + info.RegionSize) {
        bytes += info.State == MEM_COMMIT && info.Type == MEM_PRIVATE ? info.RegionSize : 0;
    }
    return bytes;
}

void PrintCounts(const char* pszWhen) {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    std::printf("%-44s %6lu kernel handles, %8zu KB private\n", pszWhen, handles,
                PrivateBytes() / 1024);
}

}  // namespace

int main() {
    InitGUIDll();
    const DWORD thread = GetCurrentThreadId();
    HHOOK sent = SetWindowsHookExA(WH_CALLWNDPROCRET, OnSent, nullptr, thread);
    HHOOK taken = SetWindowsHookExA(WH_GETMESSAGE, OnTaken, nullptr, thread);
    if (sent == nullptr || taken == nullptr) {
        return EXIT_FAILURE;
    }
    mvp::bench::Print("call to ready", "bare dialog", CompareReady(&AskBare));
    mvp::bench::Print("call to ready", "credentials", CompareReady(&AskCredentials));
    g_bTypeFirst = true;
    Ask();
    g_bTypeFirst = false;
    mvp::bench::Print("two key strokes until OK is right", "the same in a bare edit", g_keyStroke);
    PrintCounts("before the requests");
    for (int i = 0; i < kPrompts; ++i) {
        Ask();
    }
    PrintCounts("after 1,000 requests");
    UnhookWindowsHookEx(taken);
    UnhookWindowsHookEx(sent);
}
