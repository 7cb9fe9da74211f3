#include "support/ui_thread.h"

#include <exception>

#include "platform/barrier.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

constexpr UINT kRunMessage = WM_APP;
constexpr UINT kMarkMessage = WM_APP + 1;

struct Work {
    const std::function<void()>& function;
    std::exception_ptr error;
};

LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == kRunMessage) {
        Work& work = *reinterpret_cast<Work*>(lParam);
        Guarded([&] { work.function(); }, [&] { work.error = std::current_exception(); });
    } else if (nMessage == kMarkMessage) {
        *reinterpret_cast<std::atomic<WPARAM>*>(lParam) = wParam;
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

}  // namespace

UiThread::UiThread()
    : m_hWnd(CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                             nullptr)) {
    SetWindowLongPtrA(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WindowProc));
}

void UiThread::Run(const std::function<void()>& work, std::chrono::milliseconds timeout) {
    Work item{work, nullptr};
    DWORD_PTR dwResult = 0;
    // The thread may have begun with the work, which refers to this frame: there is no way back.
    if (SendMessageTimeoutA(m_hWnd, kRunMessage, 0, reinterpret_cast<LPARAM>(&item),
                            SMTO_ABORTIFHUNG, static_cast<UINT>(timeout.count()), &dwResult) == 0)
        EndTestProcess("the dialog's thread did no work within " + InMilliseconds(timeout));
    if (item.error)
        std::rethrow_exception(item.error);
}

std::function<bool()> UiThread::PostMark() {
    const WPARAM nMark = ++m_nPosted;
    PostMessageA(m_hWnd, kMarkMessage, nMark, reinterpret_cast<LPARAM>(&m_nReached));
    return [this, nMark] { return m_nReached >= nMark; };
}

}  // namespace mvp::test
