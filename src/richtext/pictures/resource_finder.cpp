#include "richtext/pictures/resource_finder.h"

#include <algorithm>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

bool IsFullPath(std::string_view path) {
    return path.size() > 3 && IsAsciiLetter(path[0]) && path[1] == ':' && IsSeparator(path[2]);
}

}  // namespace

bool IsLocalPath(std::string_view path) {
    if (path.empty() || path.size() >= MAX_PATH || path.find('\0') != std::string_view::npos ||
        (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1]))) {
        return false;
    }
    if (path.size() < 2 || path[1] != ':') {
        return true;
    }
    const char root[] = {path[0], ':', '\\', '\0'};
    return GetDriveTypeA(root) != DRIVE_REMOTE;
}

ResourceName::ResourceName(std::string_view text) {
    text = Trim(text);
    if (!text.empty() && text[0] == '#') {
        text.remove_prefix(1);
    }
    std::int32_t number = 0;
    if (std::all_of(text.begin(), text.end(), IsDigit) && ReadDecimal(text, number)) {
        if (number > 0 && number <= 0xFFFF) {
            m_nNumber = static_cast<WORD>(number);
        }
    } else {
        m_strName = text;
    }
}

ResourceFinder::Module ResourceFinder::Find(std::string_view module, const ResourceName& name,
                                            LPCSTR pszType) const {
    if (name.IsEmpty()) {
        return {};
    }
    if (module.empty()) {
        return {{},
                m_pfnFind != nullptr ? m_pfnFind(name.Get(), pszType) : GetModuleHandleA(nullptr)};
    }
    if (!IsLocalPath(module)) {
        return {};
    }
    const std::string moduleName(module);
    Module found;
    // The handle counts, so that the module stays while it is read.
    if (!GetModuleHandleExA(0, moduleName.c_str(), found.owned.put()) && IsFullPath(module)) {
        found.owned.reset(
            LoadLibraryExA(moduleName.c_str(), nullptr,
                           LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    }
    found.hModule = found.owned.get();
    return found;
}

bool ResourceFinder::LoadText(std::string_view idres, std::string_view module,
                              std::string& strText) const {
    const ResourceName name(idres);
    if (name.Number() == 0) {
        return false;
    }
    // Strings are kept in blocks of sixteen, which is what a search finds.
    const ResourceName block(std::to_string(name.Number() / 16 + 1));
    const Module found = Find(module, block, RT_STRING);
    if (found.hModule == nullptr) {
        return false;
    }
    char text[4096];
    const int length = LoadStringA(found.hModule, name.Number(), text, sizeof text);
    if (length <= 0) {
        return false;
    }
    strText.assign(text, static_cast<std::size_t>(length));
    return true;
}

}  // namespace mvp::richtext
