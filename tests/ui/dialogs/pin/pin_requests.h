// One call of each function that asks for PINs, and what came of it:
//
//     EXPECT_EQ(PinRequest{.dwMax = 4}.Ask(TypePin("1234")), "1234");
//
// Call and Ask take the scripts of a DialogDriver; without one no dialog may open.
#pragma once

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "mvpingui/mvpingui.h"
#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"

namespace mvp::test {

constexpr int kCurrent = IDC_CHANGE_PIN_PANEL_CURRENT_EDIT;
constexpr int kNew = IDC_CHANGE_PIN_PANEL_NEW_EDIT;
constexpr int kConfirm = IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT;
constexpr std::uint32_t kNone = MVP_NO_PIN_LENGTH_RULE;
// Unused, digits, weak, same, minimum, maximum, no cancelling.
constexpr PwdRuleArgs kAllRules = {0xDEAD, 1, 0x80000000, 2, 4, 8, 0};

// What Ask returns for a refusal that has touched nothing.
constexpr char kRefused[] = "(refused)";

struct PinRequest {
    static inline char* const kUntouchedBuffer = reinterpret_cast<char*>(UINT_PTR{0x1234});
    static constexpr std::uint32_t kUntouchedLength = 0xCAFE;

    HWND hParent = nullptr;
    const char* pszReader = "Reader A";
    int bShowLastTry = 0;
    std::uint32_t dwMin = 4;
    std::uint32_t dwMax = 8;
    char* pPin = kUntouchedBuffer;
    std::uint32_t cbPin = kUntouchedLength;
    char** ppPin = &pPin;
    std::uint32_t* pcbPin = &cbPin;

    std::uint32_t CallAlone() {
        return GetPINFromUser(hParent, pszReader, bShowLastTry, dwMin, dwMax, ppPin, pcbPin);
    }
    template <class... Steps>
    std::uint32_t Call(Steps&&... steps) {
        const DialogDriver driver(std::forward<Steps>(steps)...);
        return CallAlone();
    }
    bool IsUntouched() const { return pPin == kUntouchedBuffer && cbPin == kUntouchedLength; }
    // The PIN, or kRefused; gives back what was handed out.
    std::string Outcome(std::uint32_t dwResult) {
        const bool untouched = IsUntouched();
        std::string outcome = kRefused;
        if ((dwResult == MVPINGUI_REFUSED) != untouched || (cbPin == 0 && pPin != nullptr)) {
            outcome = "neither a PIN nor refused";
        } else if (!untouched) {
            outcome.assign(pPin, cbPin);
        }
        FreeGetPinBuffer(untouched ? nullptr : std::exchange(pPin, kUntouchedBuffer),
                         untouched ? 0 : std::exchange(cbPin, kUntouchedLength));
        return outcome;
    }
    template <class... Steps>
    std::string Ask(Steps&&... steps) {
        return Outcome(Call(std::forward<Steps>(steps)...));
    }
};

inline Script TypePin(const std::string& strPin = "1234") {
    return [strPin](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, strPin);
        d.Click(IDOK);
    };
}
inline void Leave(Dialog& d) {
    d.Escape();
}

struct ChangePinRequest {
    struct Output {
        std::array<char, 256> text = Marked();
        std::uint32_t cb = PinRequest::kUntouchedLength;
        char* pszText = text.data();
        std::uint32_t* pcbText = &cb;

        Output() = default;
        Output(const Output&) = delete;
        Output& operator=(const Output&) = delete;
        bool IsUntouched() const { return text == Marked() && cb == PinRequest::kUntouchedLength; }
        // The PIN when it ends with a zero and nothing was written behind; else why not.
        std::string Pin() const {
            if (IsUntouched()) {
                return "(none)";
            }
            if (cb >= text.size() || text.at(cb) != '\0') {
                return "no terminator at " + std::to_string(cb);
            }
            if (!std::equal(text.begin() + cb + 1, text.end(), Marked().begin() + cb + 1)) {
                return "written behind " + std::to_string(cb);
            }
            return {text.data(), cb};
        }

        static constexpr std::array<char, 256> Marked() {
            std::array<char, 256> buffer{};
            buffer.fill('\x7F');
            return buffer;
        }
    };

    const PwdRuleArgs* pRules = &kAllRules;
    int bShowLastTry = 0;
    HWND hHost = nullptr;
    bool bAskCurrentPin = true;
    Output newPin = {};
    Output oldPin = {};

    std::uint32_t CallAlone() {
        return GetChangePINInfoFromUser(pRules, bShowLastTry, newPin.pszText, newPin.pcbText,
                                        oldPin.pszText, oldPin.pcbText, "Reader A", hHost,
                                        bAskCurrentPin);
    }
    // The current PIN, a stroke, the new one; or kRefused.
    std::string Outcome(std::uint32_t dwResult) const {
        if (dwResult == MVPINGUI_REFUSED && oldPin.IsUntouched() && newPin.IsUntouched()) {
            return kRefused;
        }
        return (dwResult == MVPINGUI_OK ? "" : "refused, but ") + oldPin.Pin() + "/" + newPin.Pin();
    }
    template <class... Steps>
    std::string Ask(Steps&&... steps) {
        const DialogDriver driver(std::forward<Steps>(steps)...);
        return Outcome(CallAlone());
    }
};

inline void TypePins(Dialog& d, const std::string& strCurrent, const std::string& strNew,
                     const std::string& strConfirm) {
    d.Type(kCurrent, strCurrent);
    d.Type(kNew, strNew);
    d.Type(kConfirm, strConfirm);
}

inline void SetPins(HWND hPanel, const char* pszCurrent, const char* pszNew,
                    const char* pszConfirm) {
    SetDlgItemTextA(hPanel, kCurrent, pszCurrent);
    SetDlgItemTextA(hPanel, kNew, pszNew);
    SetDlgItemTextA(hPanel, kConfirm, pszConfirm);
}

// The command itself, button or none. On the dialog's thread it leaves the modal loop no chance to
// end in between.
inline void SendCommand(const Dialog& d, int nId) {
    SendMessageA(d.Handle(), WM_COMMAND, static_cast<WPARAM>(nId), 0);
}

}  // namespace mvp::test
