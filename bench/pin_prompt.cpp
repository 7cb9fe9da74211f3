// What asking for a PIN costs: from the call until the dialog takes key strokes, a key stroke, and
// a thousand requests in a row.
//
// Baselines: "bare dialog" (dialog_ready.h), and "credentials", the system's own dialog for a user
// name and password. A key stroke's baseline is a password edit of the system that nobody listens
// to.
#include <windows.h>

#include <cstdlib>

#include <wincred.h>

#include "dialog_ready.h"
#include "mvpingui/mvpingui.h"
#include "private_bytes.h"
#include "resources/resource_numbers.h"

namespace {

constexpr int kKeyStrokes = 50;
constexpr int kPrompts = 1000;

mvp::bench::Comparison g_keyStroke;

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

void Ask() {
    char* pin = nullptr;
    uint32_t pinSize = 0;
    GetPINFromUser(nullptr, "Reader A", 0, 4, 8, &pin, &pinSize);
    FreeGetPinBuffer(pin, pinSize);
}

void AskBare() {
    mvp::bench::DialogReady::RunBare(IDD_ENTER_PIN);
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

void PrintCounts(const char* pszWhen) {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    std::printf("%-44s %6lu kernel handles, %8zu KB private\n", pszWhen, handles,
                mvp::bench::PrivateBytes() / 1024);
}

}  // namespace

int main() {
    InitGUIDll();
    const mvp::bench::DialogReady ready;
    if (!ready.IsWatching()) {
        return EXIT_FAILURE;
    }
    mvp::bench::Print("call to ready", "bare dialog",
                      mvp::bench::DialogReady::Compare(Ask, AskBare));
    mvp::bench::Print("call to ready", "credentials",
                      mvp::bench::DialogReady::Compare(Ask, AskCredentials));
    mvp::bench::DialogReady::whenReady = MeasureKeyStroke;
    Ask();
    mvp::bench::DialogReady::whenReady = nullptr;
    mvp::bench::Print("two key strokes until OK is right", "the same in a bare edit", g_keyStroke);
    PrintCounts("before the requests");
    for (int i = 0; i < kPrompts; ++i) {
        Ask();
    }
    PrintCounts("after 1,000 requests");
}
