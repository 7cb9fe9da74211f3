// The system's texts in the form that files and pipes have.
#pragma once

#include <windows.h>

#include <string>

namespace mvp {

inline std::string Utf8(const std::wstring& text) {
    std::string utf8(text.size() * 3, '\0');
    utf8.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(),
                            static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

}  // namespace mvp
