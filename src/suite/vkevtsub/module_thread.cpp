#include "suite/vkevtsub/module_thread.h"

#include <memory>
#include <utility>

#include "platform/barrier.h"
#include "suite/log_exception.h"

namespace mvp {
namespace {

struct ThreadStart {
    std::function<void()> body;
    ModuleHandle module;
};

DWORD WINAPI RunThread(void* pStart) {
    std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(pStart));
    const HMODULE hModule = start->module.release();
    Guarded([&] { start->body(); }, LogSuiteException("VKEVTSUB", "RunThread"));
    start.reset();
    FreeLibraryAndExitThread(hModule, 0);
}

}  // namespace

KernelHandle StartModuleThread(std::function<void()> body) {
    auto start = std::make_unique<ThreadStart>();
    start->body = std::move(body);
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCSTR>(&RunThread), start->module.put()))
        return {};
    KernelHandle thread(CreateThread(nullptr, 0, RunThread, start.get(), 0, nullptr));
    if (thread)
        static_cast<void>(start.release());  // the thread's now
    return thread;
}

}  // namespace mvp
