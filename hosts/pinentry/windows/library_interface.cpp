#include "pinentry/windows/library_interface.h"

#include <cstdio>
#include <exception>
#include <utility>

#include "pinentry/windows/confirm_dialog.h"
#include "pinentry/windows/dialog_watch.h"
#include "pinentry/windows/repeat_words.h"
#include "pinentry/windows/window_layout.h"
#include "resources/resource_numbers.h"

namespace pinentry {
namespace {

// The dialogs close when the card of their reader is pulled; this one holds none.
constexpr char kNoReader[] = "pinentry";

constexpr std::uint32_t kMaxPin = 2048;
// Of the change-PIN dialog, which takes whatever an edit takes.
constexpr std::size_t kNewPinCapacity = 32767 + 1;

HWND ParentOf(const Window& window) {
    auto* const parent = reinterpret_cast<HWND>(static_cast<UINT_PTR>(window.nParent));
    return window.nParent != 0 && IsWindow(parent) ? parent : nullptr;
}

void SetTextIfAny(HWND hWnd, const std::string& strText) {
    if (hWnd != nullptr && !strText.empty()) {
        SetWindowTextA(hWnd, strText.c_str());
    }
}

// A label stands for one line, beside what others need.
void SetLabel(HWND hLabel, const std::string& strText) {
    if (hLabel != nullptr && !strText.empty()) {
        SetWindowLongA(hLabel, GWL_STYLE, GetWindowLongA(hLabel, GWL_STYLE) | SS_ENDELLIPSIS);
        SetWindowTextA(hLabel, strText.c_str());
    }
}

void DressWindow(HWND hDialog, const Window& window) {
    SetTextIfAny(hDialog, window.strTitle);
    SetTextIfAny(GetDlgItem(hDialog, IDOK), window.strOk);
    SetTextIfAny(GetDlgItem(hDialog, IDCANCEL), window.strCancel);
    ArrangeButtons(hDialog, {IDOK, IDCANCEL});
}

void SetMask(HWND hEdit, const std::string& strMask) {
    if (strMask.size() == 1) {
        SendMessageA(hEdit, EM_SETPASSWORDCHAR, static_cast<unsigned char>(strMask.front()), 0);
    }
}

void DressEnterPin(HWND hDialog, const PinQuestion& question) {
    DressWindow(hDialog, question);
    const HWND edit = GetDlgItem(hDialog, IDC_ENTER_PIN_EDIT);
    SetLabel(GetWindow(edit, GW_HWNDPREV), question.strLabel);
    SetMask(edit, question.strMask);
    FitToText(hDialog, GetDlgItem(hDialog, IDC_ENTER_PIN_PROMPT));
    PlaceOver(hDialog, ParentOf(question));
}

void DressChangePin(HWND hDialog, const PinQuestion& question, RepeatWords& repeatWords) {
    const HWND parent = ParentOf(question);
    if (parent != nullptr) {
        SetWindowLongPtrA(hDialog, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(parent));
    }
    DressWindow(hDialog, question);
    // The panel is the child that holds the edits.
    const HWND panel = FindWindowExA(hDialog, nullptr, "#32770", nullptr);
    if (panel != nullptr) {
        const HWND instruction = GetDlgItem(panel, IDC_CHANGE_PIN_PANEL_INSTRUCTION);
        SetTextIfAny(instruction, question.strText);
        SetLabel(GetDlgItem(panel, IDC_CHANGE_PIN_PANEL_NEW_LABEL), question.strLabel);
        SetLabel(GetDlgItem(panel, IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL), question.strRepeatLabel);
        SetMask(GetDlgItem(panel, IDC_CHANGE_PIN_PANEL_NEW_EDIT), question.strMask);
        SetMask(GetDlgItem(panel, IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT), question.strMask);
        repeatWords.Watch(hDialog, FindWindowExA(panel, nullptr, "#32770", nullptr));
        FitToText(hDialog, instruction);
    }
    PlaceOver(hDialog, parent);
    // As the enter-PIN dialog does: a program in the background is not given the foreground.
    SetWindowPos(hDialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// The library's buffer, given back however the request ends.
class PinBuffer {
public:
    explicit PinBuffer(const pinhost::PinLibrary& library) : m_library(library) {}
    PinBuffer(const PinBuffer&) = delete;
    PinBuffer& operator=(const PinBuffer&) = delete;
    ~PinBuffer() { m_library.FreeGetPinBuffer(pPin, cbPin); }

    char* pPin = nullptr;
    std::uint32_t cbPin = 0;

private:
    const pinhost::PinLibrary& m_library;
};

// The window that the library is not told of, disabled as one that it is told of.
class DisabledParent {
public:
    explicit DisabledParent(HWND hWnd)
        : m_hWnd(hWnd != nullptr && IsWindowEnabled(hWnd) ? hWnd : nullptr) {
        EnableWindow(m_hWnd, FALSE);
    }
    DisabledParent(const DisabledParent&) = delete;
    DisabledParent& operator=(const DisabledParent&) = delete;
    ~DisabledParent() { EnableWindow(m_hWnd, TRUE); }

private:
    HWND m_hWnd;
};

}  // namespace

LibraryInterface::LibraryInterface(StdioChannel* pChannel, std::string strLogFile)
    : m_pChannel(pChannel), m_strLogFile(std::move(strLogFile)) {}

const pinhost::PinLibrary* LibraryInterface::Library(const std::string& strLanguage) {
    if (m_library) {
        return &*m_library;
    }
    pinhost::HostOptions options;
    options.strLanguage = strLanguage;
    options.strLogFile = m_strLogFile;
    try {
        if (!m_log) {
            m_log = pinhost::TurnLogOn(options);
        }
        m_library.emplace(options);
        return &*m_library;
    } catch (const std::exception& error) {
        if (!strLanguage.empty()) {
            return Library("");
        }
        std::fprintf(stderr, "pinentry: %s\n", error.what());
        return nullptr;
    }
}

Answer LibraryInterface::AskPin(const PinQuestion& question, Secret& pin) {
    const pinhost::PinLibrary* library = Library(question.strLanguage);
    if (library == nullptr) {
        return Answer::NotShown;
    }
    const DialogWatch watch(m_pChannel, question.nTimeout,
                            [&](HWND hDialog) { DressEnterPin(hDialog, question); });
    PinBuffer buffer(*library);
    library->SetPinPromptString(question.strText.c_str());
    const bool confirmed = library->GetPINFromUser(ParentOf(question), kNoReader, 0, 0, kMaxPin,
                                                   &buffer.pPin, &buffer.cbPin) == MVPINGUI_OK;
    const Answer answer = watch.Result(confirmed);
    if (answer == Answer::Confirmed) {
        pin.assign(buffer.pPin, buffer.pPin + buffer.cbPin);
    }
    return answer;
}

Answer LibraryInterface::AskNewPin(const PinQuestion& question, Secret& pin) {
    const pinhost::PinLibrary* library = Library(question.strLanguage);
    if (library == nullptr) {
        return Answer::NotShown;
    }
    RepeatWords repeatWords(question);
    const DialogWatch watch(m_pChannel, question.nTimeout,
                            [&](HWND hDialog) { DressChangePin(hDialog, question, repeatWords); });
    const DisabledParent parent(ParentOf(question));
    PwdRuleArgs rules{};
    rules.dwMinPINLen = MVP_NO_PIN_LENGTH_RULE;
    rules.dwMaxPINLen = MVP_NO_PIN_LENGTH_RULE;
    Secret typed(kNewPinCapacity);
    std::uint32_t length = 0;
    const bool confirmed =
        library->GetChangePINInfoFromUser(&rules, 0, typed.data(), &length, nullptr, nullptr,
                                          kNoReader, nullptr, false) == MVPINGUI_OK;
    const Answer answer = watch.Result(confirmed);
    if (answer != Answer::Confirmed) {
        return answer;
    }
    if (length > kMaxPin) {
        return Answer::NoPlaceForIt;
    }
    pin.assign(typed.data(), typed.data() + length);
    return answer;
}

Answer LibraryInterface::Confirm(const Confirmation& confirmation) {
    const DialogWatch watch(m_pChannel, confirmation.nTimeout, [](HWND) {});
    const int pressed = RunConfirmDialog(ParentOf(confirmation), confirmation);
    return pressed == IDNO ? Answer::NotConfirmed : watch.Result(pressed == IDOK);
}

}  // namespace pinentry
