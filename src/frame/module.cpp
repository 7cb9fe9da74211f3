#include "frame/module.h"

#include <dlgfw/module_state.h>
#include <dlgfw/wnd.h>

#include "mvpingui/mvpingui.h"
#include "notify/progress_bar.h"
#include "platform/barrier.h"
#include "services/log.h"
#include "services/resource_module.h"

namespace {

AFX_EXTENSION_MODULE g_extensionModule{};
AFX_EXCEPTION_REPORTER g_pfnHostReporter = nullptr;

// The framework stops what a message handler throws, and tells the one who asked last to be told,
// who tells the one before.
void LogFrameworkException(UINT message) noexcept {
    if (message != 0) {
        vklogLog(g_szLogTag, kLogError, "Exception in the handler of message 0x%x", message);
    } else {
        vklogLog(g_szLogTag, kLogError, "Exception in a dialog's data exchange or modal loop");
    }
    if (g_pfnHostReporter != nullptr) {
        g_pfnHostReporter(message);
    }
}

}  // namespace

namespace mvp {

ModuleState& Module() noexcept {
    static ModuleState state;
    return state;
}

bool AttachLibrary(HINSTANCE hInstance) noexcept {
    RegisterProgressBarClass(GetModuleHandleA(nullptr));
    LoadResourceModule();
    if (!AfxInitExtensionModule(g_extensionModule, hInstance)) {
        return false;
    }
    // What the framework's resource search finds for a host lies in the localized module.
    if (ResourceModule() != nullptr) {
        g_extensionModule.hResource = ResourceModule();
    }
    g_pfnHostReporter = AfxSetExceptionReporter(&LogFrameworkException);
    return true;
}

void DetachLibrary() noexcept {
    // Put back only where nobody has put another one in its place meanwhile.
    const AFX_EXCEPTION_REPORTER lastFunction = AfxSetExceptionReporter(g_pfnHostReporter);
    if (lastFunction != &LogFrameworkException) {
        AfxSetExceptionReporter(lastFunction);
    }
    FreeResourceModule();
    UnregisterProgressBarClass(GetModuleHandleA(nullptr));
    AfxTermExtensionModule(g_extensionModule, FALSE);
}

}  // namespace mvp

extern "C" void InitGUIDll(void) {
    const mvp::LogScope scope("InitGUIDll");
    mvp::Guarded(
        [] {
            // Owned by the framework, which frees it when the library is detached.
            new CDynLinkLibrary(g_extensionModule);
        },
        mvp::LogException("InitGUIDll"));
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
