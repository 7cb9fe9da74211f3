#include "pinhost/text.h"

#include <windows.h>

#include <array>

#include "pinhost/command.h"

namespace pinhost {
namespace {

std::wstring Wide(std::string_view text) {
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(),
                                                        static_cast<int>(text.size()), wide.data(),
                                                        static_cast<int>(wide.size()))));
    return wide;
}

}  // namespace

std::string Utf8FromAnsi(std::string_view text) {
    const std::wstring wide = Wide(text);
    const int nWide = static_cast<int>(wide.size());
    std::string utf8(wide.size() * 3, '\0');
    utf8.resize(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), nWide, utf8.data(),
                                                static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

std::filesystem::path PathFromAnsi(std::string_view path) {
    return Wide(path);
}

std::string AbsolutePath(const std::string& strPath) {
    if (strPath.empty())
        return {};
    std::array<char, 1024> path = {};
    const DWORD dwLength =
        GetFullPathNameA(strPath.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    if (dwLength == 0 || dwLength >= path.size())
        throw UsageError("not a usable path: " + Utf8FromAnsi(strPath));
    return path.data();
}

std::string OwnFolder() {
    std::array<char, MAX_PATH> path = {};
    const DWORD dwLength =
        GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::string strProgram(path.data(), dwLength);
    const auto nSeparator = strProgram.find_last_of('\\');
    if (dwLength >= path.size() || nSeparator == std::string::npos)
        throw EnvironmentError("the program's own folder has too long a name");
    return strProgram.substr(0, nSeparator);
}

}  // namespace pinhost
