// A dialog that breaks the rules which are measured on the live window, to see that they are.
#include <array>

#include "looks/dialogs.h"

namespace looks {

namespace {

constexpr int kLabel = 101;
constexpr int kEdit = 102;
constexpr int kClipped = 103;
constexpr int kOverlapping = 104;
constexpr int kPale = 105;
constexpr int kOtherFont = 106;
constexpr int kUnseen = 107;

constexpr COLORREF kPaleText = RGB(180, 180, 180);
constexpr COLORREF kPaleGround = RGB(220, 220, 220);

struct Piece {
    int nId;
    const char* pszClass;
    const char* pszText;
    DWORD dwStyle;
    RECT units;  // left, top, width and height in dialog units
};

constexpr std::array<Piece, 9> kPieces = {{
    {kLabel, "STATIC", "&Name:", 0, {7, 10, 40, 8}},
    {kEdit, "EDIT", "", WS_TABSTOP | WS_BORDER, {51, 7, 142, 14}},
    {kClipped, "STATIC", "A text that is wider than its place", 0, {7, 28, 40, 8}},
    {kOverlapping, "STATIC", "Over", 0, {40, 28, 40, 8}},
    {kPale, "STATIC", "Pale", 0, {7, 40, 186, 8}},
    {kOtherFont, "STATIC", "Another font", 0, {7, 52, 186, 8}},
    {kUnseen, "STATIC", "Nobody sees the focus here", WS_TABSTOP, {7, 64, 186, 8}},
    {IDOK, "BUTTON", "OK", WS_TABSTOP, {89, 99, 50, 14}},
    {IDCANCEL, "BUTTON", "Cancel", WS_TABSTOP | BS_DEFPUSHBUTTON, {143, 99, 50, 14}},
}};

void CreatePieces(HWND hDialog) {
    const LPARAM font = SendMessageA(hDialog, WM_GETFONT, 0, 0);
    for (const Piece& piece : kPieces) {
        RECT rect = piece.units;
        MapDialogRect(hDialog, &rect);
        const HWND control = CreateWindowExA(
            0, piece.pszClass, piece.pszText, WS_CHILD | WS_VISIBLE | piece.dwStyle, rect.left,
            rect.top, rect.right, rect.bottom, hDialog,
            reinterpret_cast<HMENU>(static_cast<INT_PTR>(piece.nId)), nullptr, nullptr);
        if (piece.nId != kOtherFont) {
            SendMessageA(control, WM_SETFONT, static_cast<WPARAM>(font), FALSE);
        }
    }
    SendMessageA(hDialog, DM_SETDEFID, IDCANCEL, 0);
    SetWindowPos(hDialog, nullptr, 5, 5, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    SetFocus(GetDlgItem(hDialog, IDOK));
}

INT_PTR CALLBACK OnMessage(HWND hDialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        CreatePieces(hDialog);
    } else if (message == WM_CTLCOLORSTATIC &&
               GetDlgCtrlID(reinterpret_cast<HWND>(lParam)) == kPale) {
        auto* const device = reinterpret_cast<HDC>(wParam);
        SetTextColor(device, kPaleText);
        SetBkColor(device, kPaleGround);
        SetDCBrushColor(device, kPaleGround);
        return reinterpret_cast<INT_PTR>(GetStockObject(DC_BRUSH));
    } else if (message == WM_COMMAND && wParam == IDOK) {
        // What Esc and the close button ask for comes to nothing.
        EndDialog(hDialog, IDOK);
    }
    return FALSE;
}

void Open() {
    struct {
        DLGTEMPLATE dialog{
            DS_SETFONT | DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE,
            0,
            0,
            0,
            0,
            200,
            120};
        WORD wMenu = 0;
        WORD wClass = 0;
        std::array<WCHAR, 7> title{L"Broken"};
        WORD wSize = 8;
        std::array<WCHAR, 15> font{L"MS Shell Dlg 2"};
    } dialog;
    DialogBoxIndirectParamA(nullptr, &dialog.dialog, nullptr, &OnMessage, 0);
}

}  // namespace

Entry BrokenDialog() {
    return {"broken", Open, {{"shown", {}}}};
}

}  // namespace looks
