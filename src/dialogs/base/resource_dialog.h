// Dialogs whose template lies in the resource module.
#pragma once

#include <dlgfw/dialog.h>

#include "platform/barrier.h"
#include "services/log.h"
#include "services/resource_module.h"

namespace mvp {

// Calls `run` with the module that holds template `nTemplate` and returns its result; -1 when the
// module or the template is missing, which would make the system search the host for it, and after
// an exception, which is logged as one of `pszFunction`, a literal.
template <class Run>
INT_PTR RunFromResourceModule(UINT nTemplate, const char* pszFunction, Run&& run) noexcept {
    const HINSTANCE moduleHandle = ModuleOfDialog(nTemplate);
    if (moduleHandle == nullptr) {
        return -1;
    }
    return Guarded(
        INT_PTR{-1}, [&] { return run(moduleHandle); }, LogException(pszFunction));
}

// A modal dialog with the framework's own looks; CBaseDialog is for those in the window colour.
class ResourceDialog : public CDialog {
public:
    ResourceDialog(UINT nTemplate, CWnd* pParent)
        : CDialog(nTemplate, pParent), m_nTemplate(nTemplate) {}

    // What the dialog ended with, or -1 when it could not be created.
    INT_PTR DoModal() override {
        return RunFromResourceModule(m_nTemplate, "ResourceDialog::DoModal",
                                     [this](HINSTANCE hModule) { return RunModalFrom(hModule); });
    }

private:
    UINT m_nTemplate;
};

}  // namespace mvp
