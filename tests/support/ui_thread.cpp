#include "support/ui_thread.h"

#include "platform/barrier.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

constexpr char kClassName[] = "MvpTestUiThread";
constexpr UINT kRunMessage = WM_APP;
constexpr UINT kSettleMessage = WM_APP + 1;

}  // namespace

UiThread::UiThread() : m_dwThreadId(GetCurrentThreadId()) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = kClassName;
    // Registered by the first and kept for the life of the process; a repetition is refused.
    RegisterClassA(&windowClass);
    m_hWnd = CreateWindowExA(0, kClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             windowClass.hInstance, nullptr);
    SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

UiThread::~UiThread() {
    DestroyWindow(m_hWnd);
}

LRESULT CALLBACK UiThread::WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    auto* pThis = reinterpret_cast<UiThread*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (pThis != nullptr && nMessage == kRunMessage)
        return pThis->RunWork(wParam);
    if (pThis != nullptr && nMessage == kSettleMessage) {
        pThis->m_nSettled = wParam;
        return 0;
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

LRESULT UiThread::RunWork(WPARAM nTicket) {
    Work* pWork = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        const auto it = m_waiting.find(nTicket);
        if (it == m_waiting.end())
            return FALSE;  // its sender has given up
        pWork = it->second;
        m_waiting.erase(it);
    }
    return Guarded<LRESULT>(
        TRUE,
        [&] {
            pWork->function();
            return TRUE;
        },
        [&] { pWork->error = std::current_exception(); });
}

void UiThread::Run(const std::function<void()>& work, std::chrono::milliseconds timeout) {
    Work item{work, nullptr};
    WPARAM nTicket = 0;
    {
        const std::lock_guard lock(m_mutex);
        nTicket = ++m_nLastTicket;
        m_waiting.emplace(nTicket, &item);
    }
    DWORD_PTR dwResult = 0;
    const LRESULT sent = SendMessageTimeoutA(m_hWnd, kRunMessage, nTicket, 0, SMTO_ABORTIFHUNG,
                                             static_cast<UINT>(timeout.count()), &dwResult);
    if (sent == 0) {
        const std::string strReason =
            "the dialog's thread took no message within " + InMilliseconds(timeout);
        const std::lock_guard lock(m_mutex);
        // Work that has begun refers to this frame: there is no way back from here.
        if (m_waiting.erase(nTicket) == 0)
            EndTestProcess("work on the dialog's thread did not end within " +
                           InMilliseconds(timeout));
        throw DriverFailure(strReason);
    }
    if (item.error)
        std::rethrow_exception(item.error);
}

void UiThread::Settle(std::chrono::milliseconds timeout, const std::function<bool()>& orElse) {
    WPARAM nTicket = 0;
    {
        const std::lock_guard lock(m_mutex);
        nTicket = ++m_nLastTicket;
    }
    PostMessageA(m_hWnd, kSettleMessage, nTicket, 0);
    if (!WaitFor(timeout, [&] { return m_nSettled >= nTicket || orElse(); }))
        throw DriverFailure("the dialog's thread did not handle what was posted to it within " +
                            InMilliseconds(timeout));
}

}  // namespace mvp::test
