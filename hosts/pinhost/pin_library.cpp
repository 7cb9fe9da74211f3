#include "pinhost/pin_library.h"

#include <algorithm>

#include "pinhost/text.h"

namespace pinhost {
namespace {

// Errors, information, entry and exit lines; the detail lines can hold PINs.
constexpr unsigned kLogLevels = 1 | 2 | 8 | 16;
constexpr unsigned kLogDetail = 4;

mvp::ModuleHandle TurnLogOn(const HostOptions& options) {
    if (options.strLogFile.empty())
        return {};
    mvp::ModuleHandle log = LoadOwnModule("vklog.dll");
    void (*pSetOutput)(const char*, unsigned) = nullptr;
    Find(log, "vklogSetOutput", pSetOutput);
    pSetOutput(AbsolutePath(options.strLogFile).c_str(),
               kLogLevels | (options.bLogDetail ? kLogDetail : 0));
    return log;
}

bool IsLanguageName(const std::string& str) {
    return !str.empty() && std::all_of(str.begin(), str.end(), [](char ch) {
        return (ch >= 'a' && ch <= 'z') || ch == '-';
    });
}

void EnterLanguageFolder(const std::string& strLanguage) {
    std::string strFolder = OwnFolder();
    if (!strLanguage.empty()) {
        if (!IsLanguageName(strLanguage))
            throw UsageError("not a language: " + Utf8FromAnsi(strLanguage));
        strFolder.append("\\").append(strLanguage);
        // The library itself would go on without any text.
        const std::string strModule = strFolder + R"(\Resources\Localized\mvpinguirc.dll)";
        if (GetFileAttributesA(strModule.c_str()) == INVALID_FILE_ATTRIBUTES)
            throw EnvironmentError("no texts for the language " + strLanguage + ": " +
                                   Utf8FromAnsi(strModule) + " is missing");
    }
    if (!SetCurrentDirectoryA(strFolder.c_str()))
        throw EnvironmentError("cannot enter " + Utf8FromAnsi(strFolder));
}

}  // namespace

mvp::ModuleHandle LoadOwnModule(const char* pszName) {
    const std::string strPath = OwnFolder() + "\\" + pszName;
    mvp::ModuleHandle module(
        LoadLibraryExA(strPath.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!module)
        throw EnvironmentError(Utf8FromAnsi(strPath) + " cannot be loaded, error " +
                               std::to_string(GetLastError()));
    return module;
}

PinLibrary::PinLibrary(const HostOptions& options) : m_log(TurnLogOn(options)) {
    EnterLanguageFolder(options.strLanguage);
    m_library = LoadOwnModule("mvpingui.dll");
    Find(m_library, "GetErrorString", GetErrorString);
    Find(m_library, "DisplayLastPINTry", DisplayLastPINTry);
    Find(m_library, "SetPinPromptString", SetPinPromptString);
    Find(m_library, "GetPINFromUser", GetPINFromUser);
    Find(m_library, "GetChangePINInfoFromUser", GetChangePINInfoFromUser);
    Find(m_library, "FreeGetPinBuffer", FreeGetPinBuffer);
    decltype(&::InitGUIDll) pInit = nullptr;
    Find(m_library, "InitGUIDll", pInit);
    pInit();
}

}  // namespace pinhost
