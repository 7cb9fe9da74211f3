// Texts and paths between the system's ANSI code page, in which arguments come and the library
// speaks, and UTF-8, in which the host writes.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace pinhost {

std::string Utf8FromAnsi(std::string_view text);
std::string AnsiFromUtf8(std::string_view text);
std::filesystem::path PathFromAnsi(std::string_view path);

// The path as it is meant now, before the current directory changes; empty stays empty. ANSI.
std::string AbsolutePath(const std::string& strPath);

// The folder of the program, without a separator at its end. ANSI.
std::string OwnFolder();

}  // namespace pinhost
