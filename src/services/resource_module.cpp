#include "services/resource_module.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "platform/barrier.h"
#include "platform/bitmap_file.h"
#include "platform/critical_section.h"
#include "platform/handle.h"
#include "platform/resolution.h"
#include "platform/scaled_bitmap.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/registry_readers.h"
#include "settings/settings.h"

namespace {

constexpr char kBelowCurrentDirectory[] = R"(.\Resources\Localized\mvpinguirc.dll)";
constexpr char kUnderInstallPath[] = "Resources\\Localized\\mvpinguirc.dll";
constexpr DWORD kPathCapacity = mvp::settings::kInstallPath.nCapacity;

mvp::ModuleHandle LoadAsData(const char* pszPath) noexcept {
    return mvp::ModuleHandle(LoadLibraryExA(
        pszPath, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
}

// The current directory's own module and no other: the loader would look for a relative path beside
// the host's program first, and a host that chooses its language by where it stands would get
// another one.
mvp::ModuleHandle LoadFromCurrentDirectory() noexcept {
    std::array<char, kPathCapacity> path{};
    const DWORD length =
        GetFullPathNameA(kBelowCurrentDirectory, kPathCapacity, path.data(), nullptr);
    return length > 0 && length < kPathCapacity ? LoadAsData(path.data()) : mvp::ModuleHandle();
}

// The handle belongs to the library's attach and detach, which the loader serialises.
mvp::ModuleHandle g_resourceModule;

// The icons that have been asked for. The system's own sharing goes by the names of modules that it
// has loaded to run, and a module of data has none.
struct SharedIcon {
    UINT nId;
    int nSize;
    mvp::Icon icon;
};
mvp::CriticalSection g_iconsLock;
std::vector<SharedIcon> g_icons;

HICON ShareIcon(UINT nId, int nSize) {
    const mvp::ScopedLock lock(g_iconsLock);
    const auto shared = std::ranges::find_if(
        g_icons, [=](const SharedIcon& each) { return each.nId == nId && each.nSize == nSize; });
    if (shared != g_icons.end()) {
        return shared->icon.get();
    }
    mvp::Icon icon(static_cast<HICON>(LoadImageA(g_resourceModule.get(), MAKEINTRESOURCEA(nId),
                                                 IMAGE_ICON, nSize, nSize, LR_DEFAULTCOLOR)));
    if (!icon) {
        vklogLog(g_szLogTag, kLogError, "Icon %u is missing from the resource module", nId);
        return nullptr;
    }
    g_icons.push_back({nId, nSize, std::move(icon)});
    return g_icons.back().icon.get();
}

// Empty when it is missing or not what its headers say.
mvp::Bitmap ReadBitmap(HINSTANCE hModule, UINT nId) noexcept {
    HRSRC resource = FindResourceA(hModule, MAKEINTRESOURCEA(nId), RT_BITMAP);
    HGLOBAL loaded = resource != nullptr ? LoadResource(hModule, resource) : nullptr;
    const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) {
        return {};
    }
    const auto image = mvp::ReadBitmapResource(
        {static_cast<const std::uint8_t*>(bytes), SizeofResource(hModule, resource)});
    return image ? mvp::MakeBitmap(*image) : mvp::Bitmap();
}

void LogMissingString(UINT nId) noexcept {
    vklogLog(g_szLogTag, kLogError, "String %u is missing from the resource module", nId);
}

}  // namespace

namespace mvp {

HINSTANCE ResourceModule() noexcept {
    return g_resourceModule.get();
}

void LoadResourceModule() noexcept {
    g_resourceModule = LoadFromCurrentDirectory();
    if (g_resourceModule) {
        return;
    }
    std::array<char, kPathCapacity> path{};
    DWORD capacity = kPathCapacity;
    ReadInstallPath(path.data(), &capacity);
    // A value of the buffer's full size may come without a terminator.
    path.back() = '\0';
    // The stored path ends in a separator, so nothing stands between the two.
    std::strncat(path.data(), kUnderInstallPath, kPathCapacity - 1 - std::strlen(path.data()));
    g_resourceModule = LoadAsData(path.data());
    if (!g_resourceModule) {
        vklogLog(g_szLogTag, kLogInfo, "LoadLibrary(%s) failed with error code 0x%x", path.data(),
                 static_cast<unsigned>(GetLastError()));
    }
}

void FreeResourceModule() noexcept {
    const ScopedLock lock(g_iconsLock);
    g_icons.clear();
    g_resourceModule.reset();
}

bool LoadResourceString(UINT nId, CString& text) {
    if (!g_resourceModule) {
        return false;
    }
    if (text.LoadString(g_resourceModule.get(), nId)) {
        return true;
    }
    LogMissingString(nId);
    return false;
}

CString ResourceString(UINT nId) {
    CString text;
    LoadResourceString(nId, text);
    return text;
}

void LoadResourceText(UINT nId, char* pszText, int nCapacity) noexcept {
    *pszText = '\0';
    if (!g_resourceModule) {
        return;
    }
    if (LoadStringA(g_resourceModule.get(), nId, pszText, nCapacity) == 0) {
        LogMissingString(nId);
    }
}

HINSTANCE ModuleOfDialog(UINT nId) noexcept {
    const HINSTANCE module = g_resourceModule.get();
    if (module == nullptr || FindResourceA(module, MAKEINTRESOURCEA(nId), RT_DIALOG) != nullptr) {
        return module;
    }
    vklogLog(g_szLogTag, kLogError, "Dialog template %u is missing from the resource module", nId);
    return nullptr;
}

HICON LoadResourceIcon(UINT nId, int nSize) noexcept {
    if (!g_resourceModule) {
        return nullptr;
    }
    return Guarded<HICON>(
        nullptr, [=] { return ShareIcon(nId, nSize); }, LogException("LoadResourceIcon"));
}

Bitmap LoadResourceBitmap(UINT nId) noexcept {
    const HINSTANCE module = g_resourceModule.get();
    if (module == nullptr) {
        return {};
    }
    Bitmap bitmap = ReadBitmap(module, nId);
    if (!bitmap) {
        vklogLog(g_szLogTag, kLogError, "Bitmap %u is missing from the resource module", nId);
    }
    return bitmap;
}

Bitmap LoadResourcePicture(UINT nId, int nDpi, Scaling scaling,
                           std::optional<PixelSize> size) noexcept {
    Bitmap bitmap = LoadResourceBitmap(nId);
    if (!bitmap) {
        return {};
    }
    const PixelSize natural = SizeOf(bitmap);
    const PixelSize wanted =
        size.value_or(PixelSize{PixelsAt(nDpi, natural.nWidth), PixelsAt(nDpi, natural.nHeight)});
    if (TakesLargePicture(nDpi)) {
        // A module that another one made may have none.
        if (Bitmap large = ReadBitmap(g_resourceModule.get(), nId + BITMAP_AT_200_PERCENT)) {
            bitmap = std::move(large);
        }
    }
    return Scaled(std::move(bitmap), wanted, scaling);
}

}  // namespace mvp
