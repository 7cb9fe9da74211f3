// guest: a program from elsewhere, as a host of an installed library is. It knows the library by
// what the setup has written into the registry, and nothing else.
//
//     guest          asks for a PIN, writes the texts of the dialog (UTF-8) and cancels it
//     guest hold     loads the library, writes "held", and does the same when a line comes in
//
// The last line is the result. It exits with 0 when the library was found, with 3 and a reason when
// it was not, with 1 when its dialog did not open, with 4 when it
// crashed.
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <mvpingui/mvpingui.h>

#include "common/crash_exit.h"
#include "common/thread_windows.h"
#include "common/utf8.h"
#include "common/wait_for.h"
#include "platform/handle.h"

namespace {

using namespace std::chrono_literals;

constexpr int kNoLibrary = 3;
constexpr int kNoDialog = 1;
constexpr unsigned kCrashed = 4;

struct Library {
    mvp::ModuleHandle module;
    decltype(&InitGUIDll) pInit = nullptr;
    decltype(&GetPINFromUser) pAsk = nullptr;
    decltype(&FreeGetPinBuffer) pFree = nullptr;
};

template <class Function>
bool Find(HMODULE hModule, const char* pszName, Function& pFunction) {
    const FARPROC address = GetProcAddress(hModule, pszName);
    static_assert(sizeof pFunction == sizeof address);
    std::memcpy(&pFunction, &address, sizeof address);
    return address != nullptr;
}

bool Load(Library& library) {
    std::array<wchar_t, MAX_PATH * 2> path{};
    auto size = static_cast<DWORD>(sizeof path);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, LR"(Software\Quillon\Veskara)", L"VeskaraInstallPath",
                     RRF_RT_REG_SZ, nullptr, path.data(), &size) != ERROR_SUCCESS) {
        std::fputs("guest: no install path\n", stderr);
        return false;
    }
    const std::wstring file = std::wstring(path.data()) + L"mvpingui.dll";
    library.module.reset(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library.module || !Find(library.module.get(), "InitGUIDll", library.pInit) ||
        !Find(library.module.get(), "GetPINFromUser", library.pAsk) ||
        !Find(library.module.get(), "FreeGetPinBuffer", library.pFree)) {
        std::fprintf(stderr, "guest: the library cannot be loaded, error %lu\n", GetLastError());
        return false;
    }
    std::printf("%s\n", mvp::Utf8(file).c_str());
    return true;
}

std::string TextOf(HWND hWindow) {
    std::array<wchar_t, 512> text{};
    const int length = GetWindowTextW(hWindow, text.data(), static_cast<int>(text.size()));
    return mvp::Utf8(std::wstring(text.data(), static_cast<std::size_t>(length)));
}

BOOL CALLBACK WriteText(HWND hWindow, LPARAM) {
    if (mvp::ClassOf(hWindow) != "Edit") {
        std::printf("%s\n", TextOf(hWindow).c_str());
    }
    return TRUE;
}

// The thread's dialog, once it stands; null before.
HWND DialogOf(DWORD dwThreadId) {
    const std::vector<HWND> windows = mvp::VisibleWindows(dwThreadId);
    const auto dialog = std::ranges::find_if(windows, &mvp::IsDialog);
    return dialog != windows.end() ? *dialog : nullptr;
}

// Asks for a PIN, and is the user who reads and cancels.
int Ask(const Library& library) {
    std::atomic<bool> isAnswered = false;
    std::atomic<bool> isShown = false;
    std::thread user([&, threadId = GetCurrentThreadId()] {
        HWND dialog = nullptr;
        mvp::WaitFor(20s, [&] {
            dialog = DialogOf(threadId);
            return dialog != nullptr || isAnswered;
        });
        if (dialog != nullptr) {
            isShown = true;
            SendMessageA(dialog, WM_NULL, 0, 0);  // what it does at its start is over
            std::printf("%s\n", TextOf(dialog).c_str());
            EnumChildWindows(dialog, &WriteText, 0);
            PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        }
    });
    char* pin = nullptr;
    std::uint32_t length = 0;
    const std::uint32_t result = library.pAsk(nullptr, "Guest", 0, 4, 8, &pin, &length);
    isAnswered = true;
    user.join();
    library.pFree(pin, length);
    std::printf("result 0x%x\n", static_cast<unsigned>(result));
    return isShown ? 0 : kNoDialog;
}

void WaitForLine() {
    std::puts("held");
    std::fflush(stdout);
    std::array<char, 16> line{};
    std::fgets(line.data(), static_cast<int>(line.size()), stdin);
}

}  // namespace

int main(int argc, char** argv) {
    mvp::EndWithCodeOnCrash(kCrashed);
    Library library;
    if (!Load(library)) {
        return kNoLibrary;
    }
    library.pInit();
    if (argc > 1 && std::string_view(argv[1]) == "hold") {
        WaitForLine();
    }
    return Ask(library);
}
