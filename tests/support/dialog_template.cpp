#include "support/dialog_template.h"

namespace mvp::test {

DialogTemplate::DialogTemplate(std::string_view title, const DialogPlace& place, DWORD dwStyle,
                               DWORD dwExStyle) {
    // No controls yet; no menu; the dialog's own class.
    AddPart(dwStyle, dwExStyle, {0, place.x, place.y, place.width, place.height, 0, 0});
    AddText(title);
    m_words.push_back(8);
    AddText("MS Shell Dlg");
}

DialogTemplate& DialogTemplate::Add(std::string_view className, int nId, std::string_view text,
                                    const DialogPlace& place, DWORD dwStyle, bool bVisible) {
    m_words.resize((m_words.size() + 1) / 2 * 2);  // each control begins at a double word
    AddPart(dwStyle | WS_CHILD | (bVisible ? WS_VISIBLE : 0), 0,
            {place.x, place.y, place.width, place.height, nId});
    AddText(className);
    AddText(text);
    m_words.push_back(0);  // no creation data
    // The count of controls stands behind the dialog's two styles.
    ++m_words[4];
    return *this;
}

const DLGTEMPLATE* DialogTemplate::Get() const {
    return reinterpret_cast<const DLGTEMPLATE*>(m_words.data());
}

void DialogTemplate::AddPart(DWORD dwStyle, DWORD dwExStyle, std::initializer_list<int> words) {
    for (const DWORD dw : {dwStyle, dwExStyle}) {
        m_words.insert(m_words.end(), {LOWORD(dw), HIWORD(dw)});
    }
    for (const int n : words) {
        m_words.push_back(static_cast<WORD>(n));
    }
}

void DialogTemplate::AddText(std::string_view text) {
    m_words.insert(m_words.end(), text.begin(), text.end());
    m_words.push_back(0);
}

}  // namespace mvp::test
