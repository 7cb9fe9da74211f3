// Latin letters up to U+00FF and the euro sign, in one byte each.
#pragma once

#include "pinentry/core/user_interface.h"

namespace pinentry {

class WesternCodePage : public CodePage {
public:
    bool FromUtf8(const std::string& strUtf8, std::string& strText) const override {
        strText.clear();
        for (std::size_t i = 0; i < strUtf8.size(); ++i) {
            const auto lead = static_cast<unsigned char>(strUtf8[i]);
            if (lead < 0x80) {
                strText.push_back(strUtf8[i]);
            } else if (lead < 0xC4 && i + 1 < strUtf8.size()) {
                strText.push_back(static_cast<char>((lead << 6) | (strUtf8[++i] & 0x3F)));
            } else if (strUtf8.compare(i, 3, "€") == 0) {
                strText.push_back('\x80');
                i += 2;
            } else {
                return false;
            }
        }
        return true;
    }
    bool ToUtf8(const Secret& text, Secret& utf8) const override {
        utf8.clear();
        for (const char ch : text) {
            const auto byte = static_cast<unsigned char>(ch);
            if (byte < 0x80) {
                utf8.push_back(ch);
            } else if (byte == 0x80) {
                utf8.insert(utf8.end(), {'\xE2', '\x82', '\xAC'});
            } else {
                utf8.push_back(static_cast<char>(0xC0 | (byte >> 6)));
                utf8.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
            }
        }
        return true;
    }
};

}  // namespace pinentry
