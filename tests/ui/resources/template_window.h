// A dialog template made into real windows, to be looked at: its controls with their places and
// texts, at a resolution of choice.
//
//     TemplateWindow window(module, IDD_ENTER_PIN, 150);
//     for (const Control& control : window.Controls()) ...
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "resource_module.h"

struct Control {
    HWND hWnd;
    int nNumber;
    std::string strClass;  // in lower case
    DWORD dwStyle;
    RECT rect;  // in the client area of the dialog
    std::string strText;

    bool IsStatic() const { return strClass == "static"; }
    bool IsEdit() const { return strClass == "edit"; }
    bool IsButton() const { return strClass == "button"; }
    bool IsGroupBox() const { return IsButton() && (dwStyle & BS_TYPEMASK) == BS_GROUPBOX; }
    bool IsCheckButton() const {
        const DWORD type = dwStyle & BS_TYPEMASK;
        return IsButton() && (type == BS_AUTORADIOBUTTON || type == BS_AUTOCHECKBOX);
    }
    bool IsVisible() const { return (dwStyle & WS_VISIBLE) != 0; }
    bool IsTabStop() const { return (dwStyle & WS_TABSTOP) != 0; }
    // A static that breaks its text into lines, or any that shows text, and no picture or frame.
    bool WrapsText() const;
    bool IsTextStatic() const;
    // Whether an ampersand in the text marks a mnemonic.
    bool HasPrefixText() const;
};

class TemplateWindow {
public:
    // `percent` is the resolution, 100 for 96 dpi: the template's font, and with it every dialog
    // unit, grows as it does on such a screen. A child template gets a host window. Throws when the
    // window cannot be made.
    TemplateWindow(const ResourceModule& module, int dialog, int percent = 100);
    ~TemplateWindow();
    TemplateWindow(const TemplateWindow&) = delete;
    TemplateWindow& operator=(const TemplateWindow&) = delete;

    HWND get() const { return m_hWnd; }
    RECT ClientRect() const;
    // In the order of the template, which is the tab order.
    std::vector<Control> Controls() const;
    Control ControlOf(int nNumber) const;

private:
    HWND m_hHost = nullptr;
    HWND m_hWnd = nullptr;
};

// Why the text of the control does not show wholly in it; empty when it does.
std::string ClippedBecause(const Control& control);

// The mnemonic of the text in lower case, or 0.
char MnemonicOf(const Control& control);
