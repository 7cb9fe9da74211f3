#include "platform/own_module.h"

namespace mvp {
namespace {

// Any address within the binary leads to it.
HMODULE FindOwnModule(DWORD flags) noexcept {
    HMODULE moduleHandle = nullptr;
    GetModuleHandleExA(flags | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCSTR>(&FindOwnModule), &moduleHandle);
    return moduleHandle;
}

}  // namespace

HINSTANCE OwnModule() noexcept {
    return FindOwnModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
}

ModuleHandle HoldOwnModule() noexcept {
    return ModuleHandle(FindOwnModule(0));
}

}  // namespace mvp
