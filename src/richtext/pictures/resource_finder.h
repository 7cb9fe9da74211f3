// Where the resources that markup names come from, and what markup may name: a resource of the
// host's chain of modules, of a module that is loaded already, or of a module given by a full path
// on this machine, which is then opened as data and runs no code. Names of other machines and of
// devices are refused: to look at them is to tell them who is asking.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "platform/handle.h"

namespace mvp::richtext {

// The module that holds a resource. Called with a name or MAKEINTRESOURCE, and RT_*.
using FindResourceModule = HINSTANCE (*)(LPCSTR pszName, LPCSTR pszType);

// A resource's name as the system takes it: "123" and "#123" are numbers.
class ResourceName {
public:
    explicit ResourceName(std::string_view text);
    LPCSTR Get() const { return m_nNumber != 0 ? MAKEINTRESOURCEA(m_nNumber) : m_strName.c_str(); }
    WORD Number() const { return m_nNumber; }  // 0: it is a name
    bool IsEmpty() const { return m_nNumber == 0 && m_strName.empty(); }

private:
    WORD m_nNumber = 0;
    std::string m_strName;
};

class ResourceFinder {
public:
    // pfnFind is asked when the markup names no module; null: the program itself.
    explicit ResourceFinder(FindResourceModule pfnFind) : m_pfnFind(pfnFind) {}

    // A module for as long as it is needed. Null when there is none or it may not be opened.
    struct Module {
        ModuleHandle owned;  // empty for the modules of the chain
        HMODULE hModule = nullptr;
    };
    Module Find(std::string_view module, const ResourceName& name, LPCSTR pszType) const;

    // A string resource; false when it is missing or empty.
    bool LoadText(std::string_view idres, std::string_view module, std::string& strText) const;

private:
    FindResourceModule m_pfnFind;
};

// Whether markup may open the file: no path to another machine or to a device.
bool IsLocalPath(std::string_view path);

}  // namespace mvp::richtext
