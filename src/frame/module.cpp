#include "frame/module.h"

#include <dlgfw/module_state.h>

#include "frame/log.h"
#include "frame/resource_module.h"
#include "mvpingui/mvpingui.h"
#include "notify/progress_bar.h"
#include "platform/barrier.h"

char g_szLogTag[] = "MVPINGUI";

namespace {

HINSTANCE g_hInstance = nullptr;
AFX_EXTENSION_MODULE g_extensionModule{};

}  // namespace

namespace mvp {

ModuleState& Module() noexcept {
    static ModuleState state;
    return state;
}

HINSTANCE ModuleInstance() noexcept {
    return g_hInstance;
}

bool AttachLibrary(HINSTANCE hInstance) noexcept {
    g_hInstance = hInstance;
    RegisterProgressBarClass(GetModuleHandleA(nullptr));
    LoadResourceModule();
    if (!AfxInitExtensionModule(g_extensionModule, hInstance))
        return false;
    // What the framework's resource search finds for a host lies in the localized module.
    if (ResourceModule() != nullptr)
        g_extensionModule.hResource = ResourceModule();
    return true;
}

void DetachLibrary() noexcept {
    FreeResourceModule();
    UnregisterProgressBarClass(GetModuleHandleA(nullptr));
    AfxTermExtensionModule(g_extensionModule, FALSE);
}

}  // namespace mvp

extern "C" void InitGUIDll(void) {
    mvp::Guarded(
        0,
        [] {
            // Owned by the framework, which frees it when the library is detached.
            new CDynLinkLibrary(g_extensionModule);
            return 0;
        },
        [] { vklogLog(g_szLogTag, kLogError, "InitGUIDll failed"); });
}

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD reason, void* /*reserved*/) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return mvp::AttachLibrary(hInstance) ? TRUE : FALSE;
        case DLL_PROCESS_DETACH:
            mvp::DetachLibrary();
            return TRUE;
        default:
            return TRUE;
    }
}
