// A text of the suite's configuration that the host sets for one flow.
//
// It is the machine's own: other programs see it meanwhile, and a host that is killed leaves it
// there. Afterwards the value is as it was.
#pragma once

#include <windows.h>

#include <string>

#include "platform/handle.h"
#include "settings/setting.h"

namespace pinhost {

class MachineSetting {
public:
    // A missing key is made, until the machine is started anew. Texts are ANSI. Throws
    // EnvironmentError when the system refuses.
    MachineSetting(const mvp::TextSetting& setting, const std::string& strText);
    MachineSetting(const MachineSetting&) = delete;
    MachineSetting& operator=(const MachineSetting&) = delete;
    ~MachineSetting();

private:
    mvp::RegistryKey m_key;
    const char* m_pszName;
    std::string m_strBefore;
    DWORD m_dwTypeBefore = REG_NONE;
    bool m_bWasThere = false;
};

}  // namespace pinhost
