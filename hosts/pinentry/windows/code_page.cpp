#include "pinentry/windows/code_page.h"

#include <windows.h>

#include <vector>

namespace pinentry {

using WideSecret = std::vector<wchar_t, pinhost::WipingAllocator<wchar_t>>;

std::wstring WideFromUtf8(const std::string& strUtf8) {
    std::wstring wide(strUtf8.size(), L'\0');
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, strUtf8.data(), static_cast<int>(strUtf8.size()),
                            wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

std::string Utf8FromWide(const std::wstring& strWide) {
    std::string text(strWide.size() * 3, '\0');
    text.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, strWide.data(), static_cast<int>(strWide.size()),
                            text.data(), static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

bool AnsiCodePage::FromUtf8(const std::string& strUtf8, std::string& strText) const {
    strText.clear();
    if (strUtf8.empty()) {
        return true;
    }
    if (GetACP() == CP_UTF8) {
        // It lacks no character, and the conversion to it takes neither flag nor question.
        strText = strUtf8;
        return true;
    }
    const std::wstring wide = WideFromUtf8(strUtf8);
    strText.resize(wide.size() * 2);
    BOOL isMissing = FALSE;
    // No letter that merely looks alike: what is shown is what the client said.
    const int length = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(),
                                           static_cast<int>(wide.size()), strText.data(),
                                           static_cast<int>(strText.size()), nullptr, &isMissing);
    strText.resize(static_cast<std::size_t>(length));
    return length > 0 && !isMissing;
}

bool AnsiCodePage::ToUtf8(const Secret& text, Secret& utf8) const {
    utf8.clear();
    if (text.empty()) {
        return true;
    }
    WideSecret wide(text.size());
    const int wideLength = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), wide.data(),
                                               static_cast<int>(wide.size()));
    utf8.resize(wide.size() * 3);
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, utf8.data(),
                                           static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(length));
    return length > 0;
}

}  // namespace pinentry
