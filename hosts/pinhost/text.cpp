#include "pinhost/text.h"

#include <windows.h>

#include <array>

#include "pinhost/command.h"

namespace pinhost {
namespace {

std::wstring Wide(UINT nCodePage, std::string_view text) {
    std::wstring wide(text.size(), L'\0');
    const int nLength =
        MultiByteToWideChar(nCodePage, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                            static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(nLength));
    return wide;
}

std::string Narrow(UINT nCodePage, std::wstring_view wide) {
    std::string text(wide.size() * 4, '\0');
    const int nLength =
        WideCharToMultiByte(nCodePage, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<size_t>(nLength));
    return text;
}

}  // namespace

std::string Utf8FromAnsi(std::string_view text) {
    return Narrow(CP_UTF8, Wide(CP_ACP, text));
}

std::string AnsiFromUtf8(std::string_view text) {
    return Narrow(CP_ACP, Wide(CP_UTF8, text));
}

std::filesystem::path PathFromAnsi(std::string_view path) {
    return Wide(CP_ACP, path);
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
