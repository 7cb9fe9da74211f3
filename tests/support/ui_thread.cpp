#include "support/ui_thread.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

#include <gtest/gtest.h>

#include "platform/barrier.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

constexpr UINT kRunMessage = WM_APP;
constexpr UINT kMarkMessage = WM_APP + 1;

// Held by both threads: the sender of a message may go on before it has been handled.
struct Work {
    std::function<void()> function;
    std::exception_ptr error = nullptr;
    std::atomic<bool> bDone = false;
};
using SharedWork = std::shared_ptr<Work>;

LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == kRunMessage) {
        const std::unique_ptr<SharedWork> parcel(reinterpret_cast<SharedWork*>(lParam));
        Work& work = **parcel;
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

void UiThread::Run(const std::function<void()>& work, std::chrono::milliseconds timeout,
                   bool bSent) {
    if (GetCurrentThreadId() == m_dwThreadId) {
        work();
        return;
    }
    const SharedWork shared(new Work{work});
    const auto parcel = reinterpret_cast<LPARAM>(new SharedWork(shared));
    bool reached = false;
    if (bSent) {
        reached = SendMessageTimeoutA(m_window.get(), kRunMessage, 0, parcel, SMTO_ABORTIFHUNG,
                                      static_cast<UINT>(timeout.count()), nullptr) != 0;
    } else {
        PostMessageA(m_window.get(), kRunMessage, 0, parcel);
        reached = WaitFor(timeout, [&] { return shared->bDone.load(); });
    }
    // The thread may have begun with the work, which refers to the caller's frame: there is no way
    // back.
    if (!reached) {
        EndTestProcess("the dialog's thread did no work for " + std::to_string(timeout.count()) +
                       " ms");
    }
    if (shared->error) {
        std::rethrow_exception(shared->error);
    }
}

std::function<bool()> UiThread::PostMark() {
    const WPARAM mark = ++m_nPosted;
    PostMessageA(m_window.get(), kMarkMessage, mark, reinterpret_cast<LPARAM>(&m_nReached));
    return [this, mark] { return m_nReached >= mark; };
}

}  // namespace mvp::test
