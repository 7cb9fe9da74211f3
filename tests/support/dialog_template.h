// A dialog template made in memory, for tests that need a dialog but no resource module:
//
//     DialogTemplate form("Enter PIN", {0, 0, 160, 60});
//     form.Add("EDIT", IDC_PIN, "", {7, 7, 100, 14}, ES_PASSWORD | WS_TABSTOP | WS_BORDER);
//     form.Add("BUTTON", IDOK, "OK", {7, 40, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP);
//     DialogBoxIndirectParamA(hInstance, form.Get(), hParent, DialogProc, 0);
//
// Places are x, y, width and height in dialog units. Text is ASCII.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace mvp::test {

struct DialogPlace {
    short x, y, width, height;
};

class DialogTemplate {
public:
    static constexpr DWORD kPopup =
        WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER | DS_SETFONT;
    // For a panel inside another dialog.
    static constexpr DWORD kChild = WS_CHILD | WS_VISIBLE | DS_CONTROL | DS_SETFONT;

    DialogTemplate(std::string_view title, const DialogPlace& place, DWORD dwStyle = kPopup,
                   DWORD dwExStyle = 0) {
        // No controls yet; no menu; the dialog's own class.
        AddPart(dwStyle, dwExStyle, {0, place.x, place.y, place.width, place.height, 0, 0});
        AddText(title);
        m_words.push_back(8);
        AddText("MS Shell Dlg");
    }

    // Controls are visible unless `bVisible` is false.
    DialogTemplate& Add(std::string_view className, int nId, std::string_view text,
                        const DialogPlace& place, DWORD dwStyle, bool bVisible = true) {
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

    // Valid until the next Add or the end of this object.
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_words.data()); }

private:
    void AddPart(DWORD dwStyle, DWORD dwExStyle, std::initializer_list<int> words) {
        for (const DWORD dw : {dwStyle, dwExStyle}) {
            m_words.insert(m_words.end(), {LOWORD(dw), HIWORD(dw)});
        }
        for (const int n : words) {
            m_words.push_back(static_cast<WORD>(n));
        }
    }
    void AddText(std::string_view text) {
        m_words.insert(m_words.end(), text.begin(), text.end());
        m_words.push_back(0);
    }

    std::vector<WORD> m_words;
};

}  // namespace mvp::test
