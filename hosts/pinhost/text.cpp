#include "pinhost/text.h"

#include <windows.h>

#include <array>

#include "pinhost/command.h"

namespace pinhost {
namespace {

std::wstring Wide(UINT nCodePage, std::string_view text) {
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(nCodePage, 0, text.data(), static_cast<int>(text.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(length));
    return wide;
}

std::string Narrow(UINT nCodePage, std::wstring_view wide) {
    std::string text(wide.size() * 4, '\0');
    const int length =
        WideCharToMultiByte(nCodePage, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<size_t>(length));
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
    if (strPath.empty()) {
        return {};
    }
    std::array<char, 1024> path = {};
    const DWORD length =
        GetFullPathNameA(strPath.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    if (length == 0 || length >= path.size()) {
        throw UsageError("not a usable path: " + Utf8FromAnsi(strPath));
    }
    return path.data();
}

std::string OwnFolder() {
    std::array<char, MAX_PATH> path = {};
    const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::string program(path.data(), length);
    const auto separator = program.find_last_of('\\');
    if (length >= path.size() || separator == std::string::npos) {
        throw EnvironmentError("the program's own folder has too long a name");
    }
    return program.substr(0, separator);
}

}  // namespace pinhost
