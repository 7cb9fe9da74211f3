#include "frame/help_topic.h"

#include <array>

#include "frame/log.h"
#include "platform/handle.h"

namespace {

constexpr char kConfigKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr DWORD kPathCapacity = MAX_PATH;
// HH_HELP_CONTEXT of the HTML Help interface: the data is a topic number of the file's map.
constexpr UINT kHelpContext = 15;

mvp::HelpViewer g_pViewer = nullptr;

// The viewer lives in a system control that is loaded at the first topic and then stays: its
// windows run its code until the process ends.
mvp::HelpViewer SystemViewer() {
    static const HMODULE control =
        LoadLibraryExA("hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (control == nullptr)
        return nullptr;
    // By way of void*: a FARPROC says nothing of the function's type.
    return reinterpret_cast<mvp::HelpViewer>(
        reinterpret_cast<void*>(GetProcAddress(control, "HtmlHelpA")));
}

void ShowTopic(const char* pszFile, int nTopic) {
    const mvp::HelpViewer viewer = g_pViewer != nullptr ? g_pViewer : SystemViewer();
    if (viewer == nullptr) {
        vklogLog(g_szLogTag, kLogError, "DoDisplayTopic: no help viewer (error %d)",
                 static_cast<int>(GetLastError()));
        return;
    }
    viewer(GetActiveWindow(), pszFile, kHelpContext, static_cast<DWORD_PTR>(nTopic));
}

}  // namespace

namespace mvp {
void SetHelpViewer(HelpViewer pViewer) noexcept {
    g_pViewer = pViewer;
}
}  // namespace mvp

void DoDisplayTopic(int nTopic) {
    const mvp::LogScope scope("DoDisplayTopic");
    vklogLog(g_szLogTag, kLogInfo, "Displaying topic %d", nTopic);
    mvp::RegistryKey key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kConfigKey, 0, KEY_READ, key.put()) != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogError, "RegOpenKeyEx \"%s\" failed", kConfigKey);
        return;
    }
    // One byte more than is offered: a value that fills the buffer may come without a terminator.
    std::array<char, kPathCapacity + 1> path{};
    DWORD size = kPathCapacity;
    if (RegQueryValueExA(key.get(), "VeskaraHelpPath", nullptr, nullptr,
                         reinterpret_cast<BYTE*>(path.data()), &size) != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogError, "RegQueryValueEx \"VeskaraHelpPath\" failed");
        return;
    }
    ShowTopic(path.data(), nTopic);
}
