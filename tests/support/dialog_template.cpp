#include "support/dialog_template.h"

namespace mvp::test {
namespace {

// The count of controls stands behind the two styles.
constexpr size_t kControlCount = 4;

}  // namespace

DialogTemplate::DialogTemplate(std::string_view title, const DialogPlace& place, DWORD dwStyle,
                               DWORD dwExStyle) {
    AddDword(dwStyle);
    AddDword(dwExStyle);
    AddWord(0);  // no controls yet
    AddPlace(place);
    AddWord(0);  // no menu
    AddWord(0);  // the dialog's own class
    AddText(title);
    AddWord(8);
    AddText("MS Shell Dlg");
}

DialogTemplate& DialogTemplate::Add(std::string_view className, int nId, std::string_view text,
                                    const DialogPlace& place, DWORD dwStyle, bool bVisible) {
    if (m_words.size() % 2 != 0)
        AddWord(0);  // each control begins at a double word
    AddDword(dwStyle | WS_CHILD | (bVisible ? WS_VISIBLE : 0));
    AddDword(0);
    AddPlace(place);
    AddWord(static_cast<WORD>(nId));
    AddText(className);
    AddText(text);
    AddWord(0);  // no creation data
    ++m_words[kControlCount];
    return *this;
}

const DLGTEMPLATE* DialogTemplate::Get() const {
    return reinterpret_cast<const DLGTEMPLATE*>(m_words.data());
}

void DialogTemplate::AddWord(WORD wValue) {
    m_words.push_back(wValue);
}

void DialogTemplate::AddDword(DWORD dwValue) {
    AddWord(LOWORD(dwValue));
    AddWord(HIWORD(dwValue));
}

void DialogTemplate::AddText(std::string_view text) {
    for (const char ch : text)
        AddWord(static_cast<unsigned char>(ch));
    AddWord(0);
}

void DialogTemplate::AddPlace(const DialogPlace& place) {
    for (const short n : {place.x, place.y, place.width, place.height})
        AddWord(static_cast<WORD>(n));
}

}  // namespace mvp::test
