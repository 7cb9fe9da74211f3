// The system's Windows Installer library, loaded for as long as one of these lives.
#pragma once

#include "about/installer.h"
#include "platform/handle.h"

namespace mvp {

class InstallerLibrary {
public:
    InstallerLibrary() noexcept;

    // Whether the library is there. Single functions may be missing all the same.
    explicit operator bool() const noexcept { return static_cast<bool>(m_library); }
    const Installer& Functions() const noexcept { return m_functions; }

private:
    ModuleHandle m_library;
    Installer m_functions;
};

}  // namespace mvp
