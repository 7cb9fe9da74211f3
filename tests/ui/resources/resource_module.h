// A language's resource module, opened as data, and what it holds by number.
//
//     const ResourceModule english("en");
//     english.Text(IDS_POLICIES_BOX);
#pragma once

#include <windows.h>

#include <array>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "platform/handle.h"
#include "resources/resource_numbers.h"

inline const std::vector<std::string>& Languages() {
    static const std::vector<std::string> languages = {
#include "languages.inc"
    };
    return languages;
}

// A language in the name of a test: none may have a hyphen.
inline std::string WithoutHyphen(std::string language) {
    std::erase(language, '-');
    return language;
}

struct NamedNumber {
    std::string strName;
    int nNumber;
};
// What resource_numbers.h defines, in its order, with names that begin like this.
inline std::vector<NamedNumber> NamedNumbers(std::string_view prefix) {
    std::vector<NamedNumber> numbers = {
#include "named_numbers.inc"
    };
    std::erase_if(numbers, [&](const NamedNumber& n) { return !n.strName.starts_with(prefix); });
    return numbers;
}

// A bitmap's pixels from the top, each 0xAARRGGBB where it has 32 bits of its own.
struct Pixels {
    explicit Pixels(const mvp::Bitmap& bitmap) {
        GetObjectA(bitmap.get(), sizeof size, &size);
        words.resize(static_cast<std::size_t>(size.bmWidth * size.bmHeight));
        GetBitmapBits(bitmap.get(), static_cast<LONG>(4 * words.size()), words.data());
    }
    DWORD At(int x, int y) const {
        return words.at(static_cast<std::size_t>(y * size.bmWidth + x));
    }

    BITMAP size{};
    std::vector<DWORD> words;
};

class ResourceModule {
public:
    explicit ResourceModule(const std::string& language) {
        const std::string path = "..\\bin\\" + language + R"(\Resources\Localized\mvpinguirc.dll)";
        m_module.reset(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        if (!m_module) {
            throw std::runtime_error("cannot open " + path);
        }
    }

    HMODULE get() const { return m_module.get(); }

    // The numbers of one type: RT_DIALOG, RT_BITMAP, RT_GROUP_ICON, RT_STRING.
    std::set<int> Numbers(LPCSTR type) const {
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
    // Empty when there is no such string.
    std::string Text(int number) const {
        std::array<char, 4096> text{};
        LoadStringA(get(), static_cast<UINT>(number), text.data(), static_cast<int>(text.size()));
        return text.data();
    }

    Pixels BitmapPixels(int number) const {
        return Pixels(mvp::Bitmap(LoadBitmapA(get(), MAKEINTRESOURCEA(number))));
    }
    // The colours of an icon at one of its sizes.
    Pixels IconPixels(int number, int size) const {
        const mvp::Icon icon(static_cast<HICON>(
            LoadImageA(get(), MAKEINTRESOURCEA(number), IMAGE_ICON, size, size, 0)));
        ICONINFO info{};
        EXPECT_TRUE(GetIconInfo(icon.get(), &info)) << "icon " << number;
        const mvp::Bitmap mask(info.hbmMask);
        return Pixels(mvp::Bitmap(info.hbmColor));
    }

private:
    static BOOL CALLBACK CollectName(HMODULE, LPCSTR, LPSTR name, LONG_PTR context) {
        EXPECT_TRUE(IS_INTRESOURCE(name)) << "a resource without a number";
        reinterpret_cast<std::set<int>*>(context)->insert(
            static_cast<int>(reinterpret_cast<ULONG_PTR>(name)));
        return TRUE;
    }

    mvp::ModuleHandle m_module;
};

class EachLanguage : public ::testing::TestWithParam<std::string> {
protected:
    const ResourceModule m_module{GetParam()};
};
