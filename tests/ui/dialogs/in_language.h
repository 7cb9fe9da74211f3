// Makes the library, attached while this object lives, speak a language of the build.
#pragma once

#include <filesystem>
#include <string>

namespace mvp::test {

class InLanguage {
public:
    // "en", "fr". The library looks below the current directory, which is the tests' own at first.
    explicit InLanguage(const std::string& strLanguage) : m_old(std::filesystem::current_path()) {
        std::filesystem::current_path(m_old / ".." / "bin" / strLanguage);
    }
    InLanguage(const InLanguage&) = delete;
    InLanguage& operator=(const InLanguage&) = delete;
    ~InLanguage() {
        std::error_code ignored;
        std::filesystem::current_path(m_old, ignored);
    }

private:
    std::filesystem::path m_old;
};

}  // namespace mvp::test
