// Dialog templates: where they come from and what they say.
#pragma once

#include <windows.h>

namespace dlgfw {

// Null when the module has no such dialog, or one too small to be a template.
LPCDLGTEMPLATE LockDialogResource(HINSTANCE hInst, LPCSTR lpszName) noexcept;

// Neither a position nor a style that asks for one: the framework may choose the place.
bool LeavesPlaceOpen(LPCDLGTEMPLATE pTemplate) noexcept;

// A template in global memory, locked while this lives.
class LockedTemplate {
public:
    explicit LockedTemplate(HGLOBAL hTemplate) noexcept
        : m_hTemplate(hTemplate),
          m_pTemplate(static_cast<LPCDLGTEMPLATE>(hTemplate == nullptr ? nullptr
                                                                       : ::GlobalLock(hTemplate))) {
    }
    LockedTemplate(const LockedTemplate&) = delete;
    LockedTemplate& operator=(const LockedTemplate&) = delete;
    ~LockedTemplate() {
        if (m_pTemplate != nullptr)
            ::GlobalUnlock(m_hTemplate);
    }

    LPCDLGTEMPLATE get() const noexcept { return m_pTemplate; }

private:
    HGLOBAL m_hTemplate;
    LPCDLGTEMPLATE m_pTemplate;
};

}  // namespace dlgfw
