#include "pinhost/pin_library.h"

#include <algorithm>
#include <array>

#include "pinhost/text.h"
#include "platform/machine_registry.h"
#include "settings/settings.h"

namespace pinhost {
namespace {

// Errors, information, entry and exit lines; the detail lines can hold PINs.
constexpr unsigned kLogLevels = 1 | 2 | 8 | 16;
constexpr unsigned kLogDetail = 4;

constexpr char kResourceModule[] = R"(Resources\Localized\mvpinguirc.dll)";

bool IsLanguageName(const std::string& str) {
    return !str.empty() && std::all_of(str.begin(), str.end(), [](char ch) {
        return (ch >= 'a' && ch <= 'z') || ch == '-';
    });
}

std::string InstallPath() {
    constexpr mvp::TextSetting kSetting = mvp::settings::kInstallPath;
    std::array<char, kSetting.nCapacity> path{};
    auto pathSize = static_cast<DWORD>(path.size());
    mvp::RegistryKey key;
    const bool isRead =
        mvp::OpenMachineKey(kSetting.pszKey, KEY_QUERY_VALUE, key) == ERROR_SUCCESS &&
        RegGetValueA(key.get(), nullptr, kSetting.pszName, RRF_RT_REG_SZ, nullptr, path.data(),
                     &pathSize) == ERROR_SUCCESS;
    return isRead ? path.data() : "";
}

bool CanBeReadFrom(const std::string& strModule) {
    return static_cast<bool>(mvp::ModuleHandle(LoadLibraryExA(
        strModule.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)));
}

// Without its resource module the library goes on, with empty texts and no dialogs: so it is looked
// for first, where the library looks. A language that was asked for is taken from its own folder.
void EnterLanguageFolder(const std::string& strLanguage) {
    std::string folder = OwnFolder();
    if (!strLanguage.empty()) {
        if (!IsLanguageName(strLanguage)) {
            throw UsageError("not a language: " + Utf8FromAnsi(strLanguage));
        }
        folder.append("\\").append(strLanguage);
    }
    const std::string modulePath = folder + "\\" + kResourceModule;
    const std::string elsewhere = strLanguage.empty() ? InstallPath() + kResourceModule : "";
    if (!CanBeReadFrom(modulePath) && (elsewhere.empty() || !CanBeReadFrom(elsewhere))) {
        throw EnvironmentError("the library's texts cannot be read; tried " +
                               Utf8FromAnsi(modulePath) + (elsewhere.empty() ? "" : " and ") +
                               Utf8FromAnsi(elsewhere));
    }
    if (!SetCurrentDirectoryA(folder.c_str())) {
        throw EnvironmentError("cannot enter " + Utf8FromAnsi(folder));
    }
}

}  // namespace

mvp::ModuleHandle LoadOwnModule(const char* pszName) {
    const std::string path = OwnFolder() + "\\" + pszName;
    mvp::ModuleHandle module(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!module) {
        throw EnvironmentError(Utf8FromAnsi(path) + " cannot be loaded, error " +
                               std::to_string(GetLastError()));
    }
    return module;
}

mvp::ModuleHandle TurnLogOn(const HostOptions& options) {
    if (options.strLogFile.empty()) {
        return {};
    }
    const std::string logPath = AbsolutePath(options.strLogFile);
    // The log itself would drop its lines and try again later.
    const mvp::FileHandle file(CreateFileA(logPath.c_str(), FILE_APPEND_DATA,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        throw EnvironmentError("the log file " + Utf8FromAnsi(logPath) +
                               " cannot be written, error " + std::to_string(GetLastError()));
    }
    mvp::ModuleHandle log = LoadOwnModule("vklog.dll");
    void (*setOutput)(const char*, unsigned) = nullptr;
    Find(log, "vklogSetOutput", setOutput);
    setOutput(logPath.c_str(), kLogLevels | (options.bLogDetail ? kLogDetail : 0));
    return log;
}

PinLibrary::PinLibrary(const HostOptions& options) {
    EnterLanguageFolder(options.strLanguage);
    m_library = LoadOwnModule("mvpingui.dll");
    Find(m_library, "GetErrorString", GetErrorString);
    Find(m_library, "DisplayLastPINTry", DisplayLastPINTry);
    Find(m_library, "SetPinPromptString", SetPinPromptString);
    Find(m_library, "GetPINFromUser", GetPINFromUser);
    Find(m_library, "GetChangePINInfoFromUser", GetChangePINInfoFromUser);
    Find(m_library, "FreeGetPinBuffer", FreeGetPinBuffer);
    Find(m_library, "ShowAbout", ShowAbout);
    decltype(&::InitGUIDll) initialize = nullptr;
    Find(m_library, "InitGUIDll", initialize);
    initialize();
}

}  // namespace pinhost
