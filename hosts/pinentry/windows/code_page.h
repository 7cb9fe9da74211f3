// The system's ANSI code page, which the library speaks.
#pragma once

#include <string>

#include "pinentry/core/user_interface.h"

namespace pinentry {

class AnsiCodePage : public CodePage {
public:
    bool FromUtf8(const std::string& strUtf8, std::string& strText) const override;
    bool ToUtf8(const Secret& text, Secret& utf8) const override;
};

// For texts that are no secrets.
std::wstring WideFromUtf8(const std::string& strUtf8);
std::string Utf8FromWide(const std::wstring& strWide);

}  // namespace pinentry
