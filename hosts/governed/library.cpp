#include "governed/library.h"

namespace governed {
namespace {

mvp::ModuleHandle Load(const std::string& strFolder, const char* pszName) {
    const std::string path = strFolder + "\\" + pszName;
    mvp::ModuleHandle module(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!module) {
        throw std::runtime_error(path + " cannot be loaded, error " +
                                 std::to_string(GetLastError()));
    }
    return module;
}

template <class Function>
void Find(const mvp::ModuleHandle& module, const char* pszName, Function& pFound) {
    pFound = mvp::FindFunction<Function>(module.get(), pszName);
    if (pFound == nullptr) {
        throw std::runtime_error(std::string(pszName) + " is missing");
    }
}

}  // namespace

Library::Library(const std::string& strFolder)
    : m_library(Load(strFolder, "mvpingui.dll")), m_flows(Load(strFolder, "pinhost_flows.dll")) {
    Find(m_library, "GetPINFromUser", GetPINFromUser);
    Find(m_library, "FreeGetPinBuffer", FreeGetPinBuffer);
    Find(m_library, "DisplayLastPINTry", DisplayLastPINTry);
    Find(m_library, "ShowAbout", ShowAbout);
    Find(m_flows, "PinHostChangePinEmbedded", ChangePinEmbedded);
    Find(m_flows, "PinHostUnlockCard", UnlockCard);
    Find(m_flows, "PinHostInitializePin", InitializePin);
    Find(m_flows, "PinHostShowUnlockCode", ShowUnlockCode);
    Find(m_flows, "PinHostCardManagerLocked", CardManagerLocked);
    Find(m_flows, "PinHostShowPopup", ShowPopup);
    Find(m_flows, "PinHostTellExpiry", TellExpiry);
    decltype(&::InitGUIDll) initialize = nullptr;
    Find(m_library, "InitGUIDll", initialize);
    initialize();
}

}  // namespace governed
