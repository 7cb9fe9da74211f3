#include "services/help_topic.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "platform/system_library.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "settings/settings.h"

namespace {

constexpr mvp::TextSetting kPath = mvp::settings::kHelpPath;
// HH_HELP_CONTEXT of the HTML Help interface: the data is a topic number of the file's map.
constexpr UINT kHelpContext = 15;

mvp::HelpViewer g_pViewer = nullptr;

struct SystemViewer {
    mvp::HelpViewer pViewer = nullptr;
    DWORD dwError = ERROR_SUCCESS;  // why there is none
};

// The viewer lives in a system control that is loaded at the first topic and then stays: its
// windows run its code until the process ends.
SystemViewer LoadSystemViewer() {
    SystemViewer viewer;
    if (const HMODULE control = mvp::LoadSystemLibrary("hhctrl.ocx").release()) {
        viewer.pViewer = mvp::FindFunction<mvp::HelpViewer>(control, "HtmlHelpA");
    }
    viewer.dwError = GetLastError();
    return viewer;
}

// The viewer shows nothing and says nothing when there is no such file. What follows the file's
// name, for the viewer alone, begins with one of two characters that no name holds.
void LogUnlessThere(const char* pszFile) {
    std::array<char, kPath.nCapacity + 1> name{};
    std::memcpy(name.data(), pszFile, std::strcspn(pszFile, "><"));
    if (char* topic = std::strstr(name.data(), "::")) {
        *topic = '\0';
    }
    if (GetFileAttributesA(name.data()) != INVALID_FILE_ATTRIBUTES) {
        return;
    }
    std::array<char, kPath.nCapacity + 32> reason{};
    std::snprintf(reason.data(), reason.size(), "no such file: %s", name.data());
    mvp::LogIgnoredSetting(kPath, reason.data());
}

void ShowTopic(const char* pszFile, int nTopic) {
    static const SystemViewer system = LoadSystemViewer();
    const mvp::HelpViewer viewer = g_pViewer != nullptr ? g_pViewer : system.pViewer;
    if (viewer == nullptr) {
        vklogLog(g_szLogTag, kLogError, "DoDisplayTopic: no help viewer (error %d)",
                 static_cast<int>(system.dwError));
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
    // One byte more than is offered: a value that fills the buffer may come without a terminator.
    std::array<char, kPath.nCapacity + 1> path{};
    const mvp::RegistryRead read =
        mvp::ReadRegistry(mvp::ValueOf(kPath), path.data(), kPath.nCapacity);
    if (!read) {
        if (read.failed == mvp::RegistryStep::OpenKey) {
            vklogLog(g_szLogTag, kLogError, "RegOpenKeyEx \"%s\" failed", kPath.pszKey);
        } else {
            vklogLog(g_szLogTag, kLogError, "RegQueryValueEx \"VeskaraHelpPath\" failed");
        }
        if (read.error == ERROR_MORE_DATA) {
            mvp::LogIgnoredSetting(kPath, "longer than 260 bytes");
        }
        return;
    }
    LogUnlessThere(path.data());
    ShowTopic(path.data(), nTopic);
}
