#include "support/ui_thread.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

#include <gtest/gtest.h>

#include "platform/barrier.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

constexpr UINT kRunMessage = WM_APP;
constexpr UINT kMarkMessage = WM_APP + 1;

struct Work {
    const std::function<void()>& function;
    std::exception_ptr error;
    std::atomic<bool> bDone = false;
};

LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == kRunMessage) {
        Work& work = *reinterpret_cast<Work*>(lParam);
        Guarded([&] { work.function(); }, [&] { work.error = std::current_exception(); });
        work.bDone = true;
    } else if (nMessage == kMarkMessage) {
        *reinterpret_cast<std::atomic<WPARAM>*>(lParam) = wParam;
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

}  // namespace

void EndTestProcess(const std::string& strReason) {
    ADD_FAILURE() << strReason << "; the process is ended";
    std::fflush(nullptr);
    // Not exit(): it would wait for the very threads that hang.
    TerminateProcess(GetCurrentProcess(), 3);
    std::abort();
}

UiThread::UiThread()
    : m_window(CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                               nullptr)) {
    SetWindowLongPtrA(m_window.get(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WindowProc));
}

void UiThread::Run(const std::function<void()>& work, std::chrono::milliseconds timeout) {
    if (GetCurrentThreadId() == m_dwThreadId) {
        work();
        return;
    }
    Work item{work, nullptr};
    // Posted: within a message that another thread sent, edits with a PIN do not tell the text.
    PostMessageA(m_window.get(), kRunMessage, 0, reinterpret_cast<LPARAM>(&item));
    // The thread may have begun with the work, which refers to this frame: there is no way back.
    if (!WaitFor(timeout, [&] { return item.bDone.load(); })) {
        EndTestProcess("the dialog's thread did no work for " + std::to_string(timeout.count()) +
                       " ms");
    }
    if (item.error) {
        std::rethrow_exception(item.error);
    }
}

std::function<bool()> UiThread::PostMark() {
    const WPARAM mark = ++m_nPosted;
    PostMessageA(m_window.get(), kMarkMessage, mark, reinterpret_cast<LPARAM>(&m_nReached));
    return [this, mark] { return m_nReached >= mark; };
}

}  // namespace mvp::test
