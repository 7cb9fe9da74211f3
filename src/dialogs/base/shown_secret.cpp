#include "dialogs/base/shown_secret.h"

#include <algorithm>
#include <array>

#include "platform/handle.h"

namespace mvp {

namespace {

// The edit's own context, with its font, drawing where the edit draws its text.
class EditContext {
public:
    explicit EditContext(HWND hEdit) : m_dc(hEdit), m_nSaved(SaveDC(m_dc.get())) {
        auto* font = reinterpret_cast<HFONT>(SendMessageA(hEdit, WM_GETFONT, 0, 0));
        if (font != nullptr) {
            SelectObject(m_dc.get(), font);
        }
        RECT text{};
        SendMessageA(hEdit, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
        IntersectClipRect(m_dc.get(), text.left, text.top, text.right, text.bottom);
    }
    EditContext(const EditContext&) = delete;
    EditContext& operator=(const EditContext&) = delete;
    ~EditContext() { RestoreDC(m_dc.get(), m_nSaved); }

    HDC Get() const { return m_dc.get(); }
    int WidthOf(char ch) const {
        const UINT character = static_cast<unsigned char>(ch);
        INT width = 0;
        GetCharWidth32A(m_dc.get(), character, character, &width);
        return width;
    }

private:
    WindowDc m_dc;
    int m_nSaved;
};

class HiddenCaret {
public:
    explicit HiddenCaret(HWND hEdit)
        : m_hEdit(GetFocus() == hEdit && HideCaret(hEdit) ? hEdit : nullptr) {}
    HiddenCaret(const HiddenCaret&) = delete;
    HiddenCaret& operator=(const HiddenCaret&) = delete;
    ~HiddenCaret() {
        if (m_hEdit != nullptr) {
            ShowCaret(m_hEdit);
        }
    }

private:
    HWND m_hEdit;
};

CellState StateOf(HWND hEdit) {
    DWORD begin = 0;
    DWORD end = 0;
    SendMessageA(hEdit, EM_GETSEL, reinterpret_cast<WPARAM>(&begin),
                 reinterpret_cast<LPARAM>(&end));
    return {IsWindowEnabled(hEdit) != FALSE, GetFocus() == hEdit, static_cast<int>(begin),
            static_cast<int>(end)};
}

// The colours that the edit's parent gives its text, as the system asks for them.
void AskForColours(HWND hEdit, HDC hDC) {
    const bool fixed =
        (GetWindowLongPtrA(hEdit, GWL_STYLE) & ES_READONLY) != 0 || !IsWindowEnabled(hEdit);
    SendMessageA(GetParent(hEdit), fixed ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT,
                 reinterpret_cast<WPARAM>(hDC), reinterpret_cast<LPARAM>(hEdit));
}

struct TextColours {
    COLORREF text;
    COLORREF ground;
};

TextColours ColoursFor(CellColours colours, const TextColours& plain) {
    switch (colours) {
        case CellColours::Selected:
            return {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)};
        case CellColours::Grey:
            return {GetSysColor(COLOR_GRAYTEXT), plain.ground};
        case CellColours::Plain:
            break;
    }
    return plain;
}

POINT PlaceOfCharacter(HWND hEdit, WPARAM nIndex) {
    const LRESULT corner = SendMessageA(hEdit, EM_POSFROMCHAR, nIndex, 0);
    return {static_cast<short>(LOWORD(corner)), static_cast<short>(HIWORD(corner))};
}

}  // namespace

char MaskForDigits(HWND hEdit) {
    const EditContext context(hEdit);
    std::array<INT, 128> widths{};
    GetCharWidth32A(context.Get(), 0, static_cast<UINT>(widths.size()) - 1, widths.data());
    constexpr std::string_view kDigits = "0123456789ABCDEFabcdef";
    return *std::ranges::max_element(
        kDigits, {}, [&](char digit) { return widths.at(static_cast<std::size_t>(digit)); });
}

void DrawShownSecret(HWND hEdit, char chMask, std::wstring_view secret) {
    if (secret.empty()) {
        return;
    }
    const HiddenCaret hidden(hEdit);
    const EditContext context(hEdit);
    HDC device = context.Get();
    AskForColours(hEdit, device);
    const CellState state = StateOf(hEdit);
    const TextColours plain{GetTextColor(device), GetBkColor(device)};
    const int width = context.WidthOf(chMask);
    // The masks lie at equal distances; to ask for the place of each takes longer than all else.
    const auto [first, top] = PlaceOfCharacter(hEdit, 0);
    const LONG step = secret.size() > 1 ? PlaceOfCharacter(hEdit, 1).x - first : width;
    TEXTMETRICA metrics{};
    GetTextMetricsA(device, &metrics);
    SetTextAlign(device, TA_CENTER | TA_TOP);
    SetBkMode(device, TRANSPARENT);
    // All the grounds first: what is wider than a digit reaches into the cells beside its own.
    for (const bool ground : {true, false}) {
        for (std::size_t i = 0; i < secret.size(); ++i) {
            const LONG left = first + static_cast<LONG>(i) * step;
            const RECT cell{left, top, left + width, top + metrics.tmHeight};
            const TextColours colours = ColoursFor(ColoursOf(state, static_cast<int>(i)), plain);
            SetTextColor(device, colours.text);
            SetBkColor(device, colours.ground);
            ExtTextOutW(device, left + (width + 1) / 2, top, ground ? ETO_OPAQUE : 0, &cell,
                        &secret[i], ground ? 0 : 1, nullptr);
        }
    }
}

}  // namespace mvp
