// The few words that windows show of their own, in the languages of the library's texts. UTF-8; "_"
// stands before the access key, as in what clients send.
#pragma once

#include <string_view>

namespace pinentry {

struct Words {
    const char* pszLanguage;  // two letters
    const char* pszTitle;     // of a question
    const char* pszOk;
    const char* pszCancel;
    const char* pszYes;
    const char* pszNo;
    const char* pszAnswer;     // the label of what a prompt asks for
    const char* pszTooSimple;  // of a PIN that a client calls worse than nothing
};

// English for a language that has none.
const Words& WordsOf(std::string_view language);

}  // namespace pinentry
