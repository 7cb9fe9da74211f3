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
    const char szRoot[] = {path[0], ':', '\\', '\0'};
    return GetDriveTypeA(szRoot) != DRIVE_REMOTE;
}

CResourceName::CResourceName(std::string_view text) {
    text = Trim(text);
    if (!text.empty() && text[0] == '#') {
        text.remove_prefix(1);
    }
    std::int32_t nNumber = 0;
    if (std::all_of(text.begin(), text.end(), IsDigit) && ReadDecimal(text, nNumber)) {
        if (nNumber > 0 && nNumber <= 0xFFFF) {
            m_nNumber = static_cast<WORD>(nNumber);
        }
    } else {
        m_strName = text;
    }
}

CResourceFinder::Module CResourceFinder::Find(std::string_view module, const CResourceName& name,
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
    const std::string strModule(module);
    Module found;
    // The handle counts, so that the module stays while it is read.
    if (!GetModuleHandleExA(0, strModule.c_str(), found.owned.put()) && IsFullPath(module)) {
        found.owned.reset(LoadLibraryExA(
            strModule.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    }
    found.hModule = found.owned.get();
    return found;
}

bool CResourceFinder::LoadText(std::string_view idres, std::string_view module,
                               std::string& strText) const {
    const CResourceName name(idres);
    if (name.Number() == 0) {
        return false;
    }
    // Strings are kept in blocks of sixteen, which is what a search finds.
    const CResourceName block(std::to_string(name.Number() / 16 + 1));
    const Module found = Find(module, block, RT_STRING);
    if (found.hModule == nullptr) {
        return false;
    }
    char szText[4096];
    const int nLength = LoadStringA(found.hModule, name.Number(), szText, sizeof szText);
    if (nLength <= 0) {
        return false;
    }
    strText.assign(szText, static_cast<std::size_t>(nLength));
    return true;
}

}  // namespace mvp::richtext
