#include "frame/notify_event.h"

#include <array>
#include <memory>
#include <string>

#include "frame/log.h"
#include "platform/barrier.h"
#include "platform/handle.h"

namespace {

constexpr char kTrayAgentClass[] = "VkTrayHandlerClass";
constexpr char kUserConsoleClass[] = "VKUserConsoleCL";

// How long a notice waits for a receiver that is busy.
constexpr UINT kDeliveryTimeoutMs = 5'000;
// How long the caller waits for a delivery to begin, which depends on no receiver, and then for it
// to end: long enough that the notice is with its receiver when the caller's process ends.
constexpr DWORD kStartTimeoutMs = 5'000;
constexpr DWORD kCallerTimeoutMs = 50;

// One notice for one receiver. It belongs to the thread that delivers it.
struct Notice {
    HWND hReceiver;
    HWND hSender;
    std::uint32_t dwEventCode;
    std::string strReader;
};

// WM_COPYDATA cannot be posted, the system refuses it: only a sender that waits keeps the record
// alive for as long as the receiver reads it. So a thread waits in the caller's place.
void Deliver(const Notice& notice) {
    COPYDATASTRUCT record{};
    record.dwData = notice.dwEventCode;
    record.cbData = static_cast<DWORD>(notice.strReader.size() + 1);
    record.lpData = const_cast<char*>(notice.strReader.c_str());
    DWORD_PTR ignored = 0;
    SendMessageTimeoutA(notice.hReceiver, WM_COPYDATA, reinterpret_cast<WPARAM>(notice.hSender),
                        reinterpret_cast<LPARAM>(&record), SMTO_NORMAL, kDeliveryTimeoutMs,
                        &ignored);
}

// The binary that holds this code, kept loaded for a thread that may outlive the host's use of it.
HMODULE HoldOwnModule() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCSTR>(&HoldOwnModule), &module);
    return module;
}

mvp::KernelHandle Duplicate(HANDLE handle) {
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), &copy, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    return mvp::KernelHandle(copy);
}

struct Delivery {
    Notice notice;
    HMODULE hModule;
    mvp::KernelHandle begins;  // signalled right before the notice is sent
};

DWORD WINAPI DeliveryThread(void* pArgument) {
    HMODULE module = nullptr;
    {
        const std::unique_ptr<Delivery> delivery(static_cast<Delivery*>(pArgument));
        module = delivery->hModule;
        // The first call into the user interface connects the thread to it, which takes its time.
        MSG ignored;
        PeekMessageA(&ignored, nullptr, 0, 0, PM_NOREMOVE);
        SetEvent(delivery->begins.get());
        Deliver(delivery->notice);
    }
    FreeLibraryAndExitThread(module, 0);
}

// Starts the delivery and returns when it has begun; the handle is signalled when it is over.
mvp::KernelHandle StartDelivery(Notice notice) {
    const mvp::KernelHandle begins(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    auto delivery = std::make_unique<Delivery>(
        Delivery{std::move(notice), HoldOwnModule(), Duplicate(begins.get())});
    mvp::KernelHandle thread(CreateThread(nullptr, 0, DeliveryThread, delivery.get(), 0, nullptr));
    if (thread) {
        delivery.release();
        WaitForSingleObject(begins.get(), kStartTimeoutMs);
    } else {
        vklogLog(g_szLogTag, kLogError, "NotifyEvent: CreateThread failed with error code 0x%x",
                 static_cast<unsigned>(GetLastError()));
        FreeLibrary(delivery->hModule);
    }
    return thread;
}

void Notify(std::uint32_t dwEventCode, const char* pszReader, HWND hSenderWnd) {
    const std::string reader(pszReader != nullptr ? pszReader : "");
    const int code = static_cast<int>(dwEventCode);
    std::array<mvp::KernelHandle, 2> threads;
    if (const HWND tray = FindWindowA(kTrayAgentClass, nullptr)) {
        vklogLog(g_szLogTag, kLogDetail,
                 "NotifyEvent: Posting registered window message: %d, on reader %s to the Smart "
                 "Card Agent",
                 code, reader.c_str());
        threads[0] = StartDelivery({tray, hSenderWnd, dwEventCode, reader});
    }
    const HWND console = FindWindowA(kUserConsoleClass, nullptr);
    if (console != nullptr && IsWindow(console)) {
        vklogLog(g_szLogTag, kLogDetail,
                 "NotifyEvent: Posting registered window message: %d, on reader %s to the User "
                 "Console",
                 code, reader.c_str());
        threads[1] = StartDelivery({console, hSenderWnd, dwEventCode, reader});
    }
    std::array<HANDLE, 2> started{};
    DWORD count = 0;
    for (const mvp::KernelHandle& thread : threads) {
        if (thread)
            started.at(count++) = thread.get();
    }
    if (count > 0)
        WaitForMultipleObjects(count, started.data(), TRUE, kCallerTimeoutMs);
}

}  // namespace

void NotifyEvent(std::uint32_t dwEventCode, const char* pszReader, HWND hSenderWnd) {
    const mvp::LogScope scope("NotifyEvent");
    mvp::Guarded(
        0,
        [=] {
            Notify(dwEventCode, pszReader, hSenderWnd);
            return 0;
        },
        [] { vklogLog(g_szLogTag, kLogError, "NotifyEvent: exception"); });
}
