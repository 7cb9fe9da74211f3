#include "resource_module.h"

#include <array>
#include <stdexcept>

#include <gtest/gtest.h>

#include "resources/resource_numbers.h"

namespace {

BOOL CALLBACK CollectName(HMODULE, LPCSTR, LPSTR name, LONG_PTR context) {
    if (IS_INTRESOURCE(name)) {
        reinterpret_cast<std::set<int>*>(context)->insert(
            static_cast<int>(reinterpret_cast<ULONG_PTR>(name)));
    } else {
        ADD_FAILURE() << "resource without a number: " << name;
    }
    return TRUE;
}

}  // namespace

const std::vector<std::string>& Languages() {
    static const std::vector<std::string> languages = {
#include "languages.inc"
    };
    return languages;
}

std::vector<NamedNumber> NamedNumbers(std::string_view prefix) {
    std::vector<NamedNumber> numbers = {
#include "named_numbers.inc"
    };
    std::erase_if(numbers, [&](const NamedNumber& n) { return !n.strName.starts_with(prefix); });
    return numbers;
}

ResourceModule::ResourceModule(const std::string& language) {
    const std::string path = "..\\bin\\" + language + R"(\Resources\Localized\mvpinguirc.dll)";
    m_module.reset(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    if (!m_module) {
        throw std::runtime_error("cannot open " + path);
    }
}

std::set<int> ResourceModule::Numbers(LPCSTR type) const {
    std::set<int> names;
    EnumResourceNamesA(get(), type, CollectName, reinterpret_cast<LONG_PTR>(&names));
    if (type != RT_STRING) {
        return names;
    }
    // Strings are stored in blocks of sixteen; block n begins with string 16 (n - 1).
    std::set<int> numbers;
    for (const int block : names) {
        for (int number = 16 * (block - 1); number < 16 * block; ++number) {
            if (!Text(number).empty()) {
                numbers.insert(number);
            }
        }
    }
    return numbers;
}

std::string ResourceModule::Text(int number) const {
    std::array<char, 4096> text{};
    LoadStringA(get(), static_cast<UINT>(number), text.data(), static_cast<int>(text.size()));
    return text.data();
}
