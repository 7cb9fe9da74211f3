// A language's resource module, opened as data, and what it holds by number.
//
//     const ResourceModule english("en");
//     english.Text(IDS_POLICIES_BOX);
#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/handle.h"

const std::vector<std::string>& Languages();

struct NamedNumber {
    std::string strName;
    int nNumber;
};
// What resource_numbers.h defines, in its order, with names that begin like this.
std::vector<NamedNumber> NamedNumbers(std::string_view prefix);

class ResourceModule {
public:
    explicit ResourceModule(const std::string& language);

    HMODULE get() const { return m_module.get(); }

    // The numbers of one type: RT_DIALOG, RT_BITMAP, RT_GROUP_ICON, RT_STRING.
    std::set<int> Numbers(LPCSTR type) const;
    // Empty when there is no such string.
    std::string Text(int number) const;

private:
    mvp::ModuleHandle m_module;
};
