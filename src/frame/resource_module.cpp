#include "frame/resource_module.h"

#include <array>
#include <cstring>

#include "frame/log.h"
#include "frame/registry_readers.h"

namespace {

constexpr char kBelowCurrentDirectory[] = R"(.\Resources\Localized\mvpinguirc.dll)";
constexpr char kUnderInstallPath[] = "Resources\\Localized\\mvpinguirc.dll";
constexpr DWORD kPathCapacity = 512;

// The current directory's own module and no other: the loader would look for a relative path beside
// the host's program first, and a host that chooses its language by where it stands would get
// another one.
HINSTANCE LoadFromCurrentDirectory() noexcept {
    std::array<char, kPathCapacity> path{};
    const DWORD length =
        GetFullPathNameA(kBelowCurrentDirectory, kPathCapacity, path.data(), nullptr);
    return length > 0 && length < kPathCapacity ? LoadLibraryA(path.data()) : nullptr;
}

// The handle belongs to the library's attach and detach, which the loader serialises.
HINSTANCE g_hResourceModule = nullptr;

}  // namespace

namespace mvp {

HINSTANCE ResourceModule() noexcept {
    return g_hResourceModule;
}

void LoadResourceModule() noexcept {
    g_hResourceModule = LoadFromCurrentDirectory();
    if (g_hResourceModule != nullptr)
        return;
    std::array<char, kPathCapacity> path{};
    DWORD capacity = kPathCapacity;
    ReadInstallPath(path.data(), &capacity);
    // A value of the buffer's full size may come without a terminator.
    path.back() = '\0';
    // The stored path ends in a separator, so nothing stands between the two.
    std::strncat(path.data(), kUnderInstallPath, kPathCapacity - 1 - std::strlen(path.data()));
    g_hResourceModule = LoadLibraryA(path.data());
    if (g_hResourceModule == nullptr)
        vklogLog(g_szLogTag, kLogInfo, "LoadLibrary(%s) failed with error code 0x%x", path.data(),
                 static_cast<unsigned>(GetLastError()));
}

void FreeResourceModule() noexcept {
    FreeLibrary(g_hResourceModule);
    g_hResourceModule = nullptr;
}

bool LoadResourceString(UINT nId, CString& text) {
    return g_hResourceModule != nullptr && text.LoadString(g_hResourceModule, nId);
}

CString ResourceString(UINT nId) {
    CString text;
    LoadResourceString(nId, text);
    return text;
}

HICON LoadResourceIcon(UINT nId, int nSize) noexcept {
    if (g_hResourceModule == nullptr)
        return nullptr;
    return static_cast<HICON>(
        LoadImageA(g_hResourceModule, MAKEINTRESOURCEA(nId), IMAGE_ICON, nSize, nSize, LR_SHARED));
}

}  // namespace mvp
