#include "services/notify_event.h"

#include <atomic>
#include <memory>
#include <string>

#include "platform/barrier.h"
#include "platform/handle.h"
#include "platform/module_thread.h"
#include "services/log.h"

namespace {

constexpr char kTrayAgentClass[] = "VkTrayHandlerClass";
constexpr char kUserConsoleClass[] = "VKUserConsoleCL";

// How long a notice waits for a receiver that is busy.
constexpr UINT kDeliveryTimeoutMs = 5'000;
// How long the caller waits for the notice to get into the receiver's queue, which depends on no
// receiver.
constexpr DWORD kStartTimeoutMs = 5'000;

// One notice for one receiver.
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

// One notice on its way; the caller and the thread that delivers it share it.
struct Delivery {
    explicit Delivery(Notice what) : notice(std::move(what)) {}

    Notice notice;
    mvp::KernelHandle begins{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<HWND> hProbe = nullptr;  // the thread's window, there when `begins` is signalled
};

void Run(Delivery& delivery) {
    const HWND probe =
        CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    delivery.hProbe = probe;
    SetEvent(delivery.begins.get());
    Deliver(delivery.notice);
    DestroyWindow(probe);
}

// Returns when the notice is in its receiver's queue.
void StartDelivery(Notice notice) {
    const auto delivery = std::make_shared<Delivery>(std::move(notice));
    const auto deliver = [delivery] { Run(*delivery); };
    if (!mvp::StartModuleThread(deliver, mvp::LogException("NotifyEvent"))) {
        vklogLog(g_szLogTag, kLogError, "NotifyEvent: CreateThread failed with error code 0x%x",
                 static_cast<unsigned>(GetLastError()));
        return;
    }
    WaitForSingleObject(delivery->begins.get(), kStartTimeoutMs);
    // A thread takes what is sent to its windows only while it waits, and this one waits only for
    // the answer to its notice: whoever gets through to it knows that the notice has been sent.
    DWORD_PTR ignored = 0;
    SendMessageTimeoutA(delivery->hProbe, WM_NULL, 0, 0, SMTO_BLOCK, kStartTimeoutMs, &ignored);
}

void Notify(std::uint32_t dwEventCode, const char* pszReader, HWND hSenderWnd) {
    const std::string reader(pszReader != nullptr ? pszReader : "");
    const int code = static_cast<int>(dwEventCode);
    if (const HWND tray = FindWindowA(kTrayAgentClass, nullptr)) {
        vklogLog(g_szLogTag, kLogDetail,
                 "NotifyEvent: Posting registered window message: %d, on reader %s to the Smart "
                 "Card Agent",
                 code, reader.c_str());
        StartDelivery({tray, hSenderWnd, dwEventCode, reader});
    }
    const HWND console = FindWindowA(kUserConsoleClass, nullptr);
    if (console != nullptr && IsWindow(console)) {
        vklogLog(g_szLogTag, kLogDetail,
                 "NotifyEvent: Posting registered window message: %d, on reader %s to the User "
                 "Console",
                 code, reader.c_str());
        StartDelivery({console, hSenderWnd, dwEventCode, reader});
    }
}

}  // namespace

void NotifyEvent(std::uint32_t dwEventCode, const char* pszReader, HWND hSenderWnd) {
    const mvp::LogScope scope("NotifyEvent");
    mvp::Guarded([=] { Notify(dwEventCode, pszReader, hSenderWnd); },
                 mvp::LogException("NotifyEvent"));
}
