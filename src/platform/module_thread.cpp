#include "platform/module_thread.h"

#include <memory>
#include <utility>

#include "platform/barrier.h"
#include "platform/own_module.h"

namespace mvp {
namespace {

struct ThreadStart {
    std::function<void()> body;
    std::function<void()> onError;
    ModuleHandle module;
};

DWORD WINAPI RunThread(void* pStart) {
    std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(pStart));
    const HMODULE moduleHandle = start->module.release();
    Guarded(start->body, start->onError);
    start.reset();
    FreeLibraryAndExitThread(moduleHandle, 0);
}

}  // namespace

KernelHandle StartModuleThread(std::function<void()> body, std::function<void()> onError) {
    auto start = std::make_unique<ThreadStart>(
        ThreadStart{std::move(body), std::move(onError), HoldOwnModule()});
    if (!start->module) {
        return {};
    }
    KernelHandle thread(CreateThread(nullptr, 0, RunThread, start.get(), 0, nullptr));
    if (thread) {
        static_cast<void>(start.release());  // the thread's now
        return thread;
    }
    const DWORD error = GetLastError();
    start.reset();  // gives the module back, which may set an error of its own
    SetLastError(error);
    return {};
}

}  // namespace mvp
