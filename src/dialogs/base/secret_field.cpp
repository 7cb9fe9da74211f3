#include "dialogs/base/secret_field.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

#include <imm.h>

#include "dialogs/base/clipboard_text.h"
#include "dialogs/base/edit_menu.h"
#include "mvpingui/caps_lock_sensitive_edit.h"
#include "platform/system_library.h"
#include "services/log.h"
#include "services/text_view.h"
#include "services/wipe.h"

namespace mvp {

namespace {

// The characters of the keys by which a text is copied, pasted, cut and undone.
constexpr char kControlC = 0x03;
constexpr char kControlV = 0x16;
constexpr char kControlX = 0x18;
constexpr char kControlZ = 0x1A;
constexpr wchar_t kDelete = 0x7F;

bool IsControlCharacter(wchar_t ch) {
    return ch < L' ' || ch == kDelete;
}

bool IsOfThisThread(HWND hWnd) {
    return GetWindowThreadProcessId(hWnd, nullptr) == GetCurrentThreadId();
}

// Whether the message that is being handled was sent by another thread. One that calls the window's
// procedure itself does not get here: an object answers on its own thread alone.
bool IsFromOutside() {
    return InSendMessageEx(nullptr) != ISMEX_NOSEND;
}

// What input services the process has, they have loaded themselves; without them there is nobody to
// tell.
template <class Function>
Function FindService(const char* pszLibrary, const char* pszName) {
    const HMODULE library = GetModuleHandleA(pszLibrary);
    return library == nullptr ? nullptr : FindFunction<Function>(library, pszName);
}

// Input methods keep what is typed to compose characters of it.
void TakeInputMethodAway(HWND hWnd) {
    using Associate = HIMC(WINAPI*)(HWND, HIMC);
    if (const auto associate = FindService<Associate>("imm32.dll", "ImmAssociateContext")) {
        associate(hWnd, nullptr);
    }
}

// Tells handwriting and screen keyboards that this is a password.
void SetInputScopeOfPasswords(HWND hWnd) {
    using SetScope = HRESULT(WINAPI*)(HWND, int);
    constexpr int kInputScopePassword = 31;  // IS_PASSWORD
    if (const auto set = FindService<SetScope>("msctf.dll", "SetInputScope")) {
        set(hWnd, kInputScopePassword);
    }
}

std::string_view TextAt(LPARAM lParam) {
    const auto* text = reinterpret_cast<const char*>(lParam);
    return text == nullptr ? std::string_view() : std::string_view(text);
}

}  // namespace

SecretField::~SecretField() {
    for (Step* step = m_pStep; step != nullptr; step = step->pOuter) {
        step->bGone = true;
    }
}

void SecretField::TakeOver(HWND hWnd) {
    m_keys.Bind();
    m_store.Clear();
    m_chLead = '\0';
    if (const int length = GetWindowTextLengthA(hWnd); length > 0) {
        CString text;
        GetWindowTextA(hWnd, text.GetBuffer(length), length + 1);
        text.ReleaseBuffer();
        m_store.Assign(View(text));
        Wipe(text);
        // Of the same length: the control writes it over what was there.
        SetWindowTextA(hWnd, CString('*', static_cast<int>(m_store.View().size())));
    }
    if ((GetWindowLongPtrA(hWnd, GWL_STYLE) & ES_PASSWORD) == 0) {
        SendMessageA(hWnd, EM_SETPASSWORDCHAR, '*', 0);
    }
    // Files are not dropped into it.
    SetWindowLongPtrA(hWnd, GWL_EXSTYLE,
                      GetWindowLongPtrA(hWnd, GWL_EXSTYLE) & ~LONG_PTR{WS_EX_ACCEPTFILES});
    TakeInputMethodAway(hWnd);
}

void SecretField::NoteQueued(const MSG& message) noexcept {
    m_queued = message;
}

bool SecretField::Arrives(UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    m_bQueued =
        m_queued.message == message && m_queued.wParam == wParam && m_queued.lParam == lParam;
    if (m_bQueued) {
        m_queued = {};
    }
    const bool sent = !m_bQueued && InSendMessageEx(nullptr) != ISMEX_NOSEND;
    return !m_keys.Refuses(m_edit.m_hWnd, message, wParam, sent);
}

LRESULT SecretField::System(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_edit.SystemProc(message, wParam, lParam);
}

bool SecretField::HasStyle(DWORD dwStyle) const {
    return (m_edit.GetStyle() & dwStyle) != 0;
}

EditState SecretField::State() {
    DWORD begin = 0;
    DWORD end = 0;
    System(EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
    return {static_cast<int>(System(WM_GETTEXTLENGTH)), static_cast<int>(begin),
            static_cast<int>(end)};
}

// Has the control do it, which was offered masks for the characters `offered`. The parent hears of
// it meanwhile and may ask for the text, or even destroy the edit: nothing of this object is to be
// touched after this.
LRESULT SecretField::Run(UINT message, WPARAM wParam, LPARAM lParam, std::wstring_view offered) {
    Follow();
    Step step{State(), offered, m_pStep};
    return RunStep(step, message, wParam, lParam);
}

LRESULT SecretField::RunStep(Step& step, UINT message, WPARAM wParam, LPARAM lParam) {
    m_pStep = &step;
    const LRESULT result = System(message, wParam, lParam);
    if (step.bGone) {
        return result;
    }
    Follow();
    // Nothing is left to undo, not even masks.
    System(EM_EMPTYUNDOBUFFER);
    if (State().nLength != static_cast<int>(m_store.View().size())) {
        // What is shown is not what would be handed over: the control has failed, or has done
        // something of its own. An empty field is at least honest.
        vklogLog(g_szLogTag, kLogError, "SecretField: the text is lost");
        m_store.Clear();
        step.bAhead = true;
        System(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(""));
        if (step.bGone) {
            return result;
        }
    }
    m_pStep = step.pOuter;
    if (m_pStep != nullptr) {
        m_pStep->before = State();
    }
    return result;
}

void SecretField::Follow() {
    if (m_pStep == nullptr || m_pStep->bAhead) {
        return;
    }
    const EditState now = State();
    const TextChange change =
        ChangeBetween(m_pStep->before, now, static_cast<int>(m_pStep->offered.size()));
    // There is room, unless what came in the course of the message has taken it.
    const auto inserted =
        m_store.Reserve(m_store.View().size() + static_cast<std::size_t>(change.nInserted))
            ? static_cast<std::size_t>(change.nInserted)
            : 0;
    wchar_t* gap = m_store.Replace(static_cast<std::size_t>(change.nFrom),
                                   static_cast<std::size_t>(change.nRemoved), inserted);
    std::copy_n(m_pStep->offered.data(), inserted, gap);
    ApplyCase(gap, inserted);
    m_pStep->offered.remove_prefix(inserted);
    m_pStep->before = now;
}

void SecretField::ApplyCase(wchar_t* pText, std::size_t nCount) const {
    if (HasStyle(ES_UPPERCASE)) {
        CharUpperBuffW(pText, static_cast<DWORD>(nCount));
    } else if (HasStyle(ES_LOWERCASE)) {
        CharLowerBuffW(pText, static_cast<DWORD>(nCount));
    }
}

char SecretField::Mask() const {
    return HasStyle(ES_NUMBER) ? '0' : '*';
}

std::wstring_view SecretField::Text() {
    Follow();
    return m_store.View();
}

bool SecretField::Read(CString& strSecret) {
    strSecret.Empty();
    if (m_edit.m_hWnd == nullptr || !IsOfThisThread(m_edit.m_hWnd)) {
        return m_edit.m_hWnd == nullptr;
    }
    const std::wstring_view text = Text();
    const std::size_t length = NarrowLength(text);
    char* buffer = strSecret.GetBuffer(static_cast<int>(length));
    strSecret.ReleaseBuffer(static_cast<int>(CopyNarrow(text, buffer, length)));
    return true;
}

LRESULT SecretField::Write(std::string_view text) {
    const HWND edit = m_edit.m_hWnd;
    if (!IsOfThisThread(edit)) {
        return FALSE;
    }
    Follow();
    std::string masks(WideLength(text), Mask());
    const bool stored = m_store.Assign(text);
    if (!stored) {
        masks.clear();
    }
    ApplyCase(m_store.Replace(0, 0, 0), masks.size());
    Step step{{}, {}, m_pStep, true};
    const LRESULT result = RunStep(step, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(masks.c_str()));
    if (!stored) {
        TellOfNoMemory(edit);
    }
    return stored ? result : FALSE;
}

// The parent is told as the system's control tells it.
void SecretField::TellOfNoMemory(HWND hEdit) {
    vklogLog(g_szLogTag, kLogError, "SecretField: no memory for what is typed");
    SendMessageA(GetParent(hEdit), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hEdit), EN_ERRSPACE),
                 reinterpret_cast<LPARAM>(hEdit));
}

LRESULT SecretField::OnKeyDown(WPARAM wParam, LPARAM lParam) {
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (wParam == VK_INSERT && shift) {
        Paste();
        return TRUE;
    }
    if ((wParam == VK_INSERT && control) || (wParam == VK_DELETE && shift)) {
        return 0;  // copies or cuts
    }
    return wParam == VK_DELETE ? Run(WM_KEYDOWN, wParam, lParam)
                               : System(WM_KEYDOWN, wParam, lParam);
}

LRESULT SecretField::OnChar(char ch, LPARAM lParam) {
    switch (ch) {
        case kControlC:
        case kControlX:
        case kControlZ:
            return TRUE;
        case kControlV:
            Paste();
            return TRUE;
        default:
            break;
    }
    std::array<char, 2> bytes{m_chLead, ch};
    if (m_chLead == '\0' && IsDBCSLeadByte(static_cast<BYTE>(ch))) {
        m_chLead = ch;
        return FALSE;
    }
    const int count = std::exchange(m_chLead, '\0') == '\0' ? 1 : 2;
    wchar_t character = L'\0';
    MultiByteToWideChar(CP_ACP, 0, bytes.data() + 2 - count, count, &character, 1);
    return Insert(character, lParam);
}

// The control refuses a letter where it takes digits only, and does something else with the keys
// that are no characters: what it inserts of it is what it was given.
LRESULT SecretField::Insert(wchar_t ch, LPARAM lParam) {
    char mask = Mask();
    if (IsControlCharacter(ch)) {
        mask = static_cast<char>(ch);
    } else if (HasStyle(ES_NUMBER) && (ch < L'0' || ch > L'9')) {
        mask = 'x';
    }
    if (!m_store.Reserve(Text().size() + 1)) {
        TellOfNoMemory(m_edit.m_hWnd);
        return 0;
    }
    return Run(WM_CHAR, static_cast<WPARAM>(mask), lParam, {&ch, 1});
}

LRESULT SecretField::OnCodePoint(WPARAM wParam, LPARAM lParam) {
    constexpr WPARAM kFirstOfPairs = 0x10000;
    if (wParam == UNICODE_NOCHAR) {
        return TRUE;
    }
    if (wParam < kFirstOfPairs) {
        Insert(static_cast<wchar_t>(wParam), lParam);
        return FALSE;
    }
    const WPARAM beyond = wParam - kFirstOfPairs;
    const std::array<wchar_t, 2> pair{static_cast<wchar_t>(HIGH_SURROGATE_START + (beyond >> 10)),
                                      static_cast<wchar_t>(LOW_SURROGATE_START + (beyond & 0x3FF))};
    return HasStyle(ES_READONLY) ? 0 : ReplaceSelection(TRUE, {pair.data(), pair.size()});
}

LRESULT SecretField::ReplaceSelection(WPARAM wParam, std::wstring_view text) {
    const EditState now = State();
    const LRESULT limit = System(EM_GETLIMITTEXT);
    // One more than there is room for: the control tells its parent that it had to cut.
    const LRESULT room = std::max<LRESULT>(0, limit - (now.nLength - (now.nEnd - now.nBegin))) + 1;
    text = text.substr(0, std::min(text.size(), static_cast<std::size_t>(room)));
    if (!m_store.Reserve(Text().size() + text.size())) {
        TellOfNoMemory(m_edit.m_hWnd);
        return 0;
    }
    const std::string masks(text.size(), Mask());
    return Run(EM_REPLACESEL, wParam, reinterpret_cast<LPARAM>(masks.c_str()), text);
}

LRESULT SecretField::Paste() {
    if (HasStyle(ES_READONLY)) {
        return 0;
    }
    const ClipboardText clipboard(m_edit.m_hWnd);
    if (clipboard.IsOpen()) {
        ReplaceSelection(TRUE, clipboard.FirstLine());
    }
    return 0;
}

LRESULT SecretField::ShowMenu(LPARAM lParam) {
    const EditState state = State();
    const EditMenuState items{!HasStyle(ES_READONLY), state.nBegin != state.nEnd,
                              state.nEnd - state.nBegin < state.nLength};
    const HWND edit = m_edit.m_hWnd;
    // The edit may go while the menu is there.
    Step step{state, {}, m_pStep};
    m_pStep = &step;
    SetFocus(edit);
    const EditAction action = ChooseFromEditMenu(edit, lParam, items);
    if (step.bGone) {
        return 0;
    }
    m_pStep = step.pOuter;
    switch (action) {
        case EditAction::Paste:
            return Paste();
        case EditAction::Delete:
            return Run(WM_CLEAR, 0, 0);
        case EditAction::SelectAll:
            return System(EM_SETSEL, 0, -1);
        case EditAction::None:
            break;
    }
    return 0;
}

// WM_GETTEXT: with a terminator, whatever the room.
LRESULT SecretField::GiveText(WPARAM wParam, LPARAM lParam) {
    auto* target = reinterpret_cast<char*>(lParam);
    if (target == nullptr || wParam == 0) {
        return 0;
    }
    const std::size_t length = IsFromOutside() ? 0 : CopyNarrow(Text(), target, wParam - 1);
    target[length] = '\0';
    return static_cast<LRESULT>(length);
}

// EM_GETLINE: the target begins with its size, and gets no terminator.
LRESULT SecretField::GiveLine(LPARAM lParam) {
    auto* target = reinterpret_cast<char*>(lParam);
    if (target == nullptr || IsFromOutside()) {
        return 0;
    }
    WORD room = 0;
    std::memcpy(&room, target, sizeof room);
    return static_cast<LRESULT>(CopyNarrow(Text(), target, room));
}

// What puts text into the edit or asks for it.
LRESULT SecretField::OnText(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETTEXT:
            return GiveText(wParam, lParam);
        case EM_GETLINE:
            return GiveLine(lParam);
        case WM_GETTEXTLENGTH:
            // Outside it is the masks that are counted, which anybody sees.
            return IsFromOutside() ? System(message) : static_cast<LRESULT>(NarrowLength(Text()));
        default:
            break;
    }
    // Those that are posted may come from anywhere.
    if (m_bQueued || IsFromOutside()) {
        return FALSE;
    }
    switch (message) {
        case WM_SETTEXT:
            return Write(TextAt(lParam));
        case EM_REPLACESEL: {
            SecretStore text;
            if (!text.Assign(TextAt(lParam))) {
                TellOfNoMemory(m_edit.m_hWnd);
                return 0;
            }
            return ReplaceSelection(wParam, text.View());
        }
        default:  // WM_PASTE
            return Paste();
    }
}

LRESULT SecretField::OnCharacter(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_UNICHAR) {
        return OnCodePoint(wParam, lParam);
    }
    if (message == WM_IME_CHAR && IsDBCSLeadByte(HIBYTE(wParam))) {
        m_chLead = static_cast<char>(HIBYTE(wParam));
    }
    return OnChar(static_cast<char>(LOBYTE(wParam)), lParam);
}

LRESULT SecretField::Process(UINT message, WPARAM wParam, LPARAM lParam) {
    Step* outer = m_pStep;
    // What the outer message has done is seen by what is selected, which this one may change.
    Follow();
    const LRESULT result = Handle(message, wParam, lParam);
    if (outer != nullptr && !outer->bGone) {
        outer->before = State();
    }
    return result;
}

LRESULT SecretField::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case EM_GETLINE:
        case WM_SETTEXT:
        case EM_REPLACESEL:
        case WM_PASTE:
            return OnText(message, wParam, lParam);
        case WM_CHAR:
        case WM_UNICHAR:
        case WM_IME_CHAR:
            return OnCharacter(message, wParam, lParam);
        case WM_KEYDOWN:
            return OnKeyDown(wParam, lParam);
        case WM_SYSKEYDOWN:
            if (wParam == VK_BACK) {
                return 0;  // undoes
            }
            break;
        case WM_CLEAR:
            return Run(message, wParam, lParam);
        case WM_CONTEXTMENU:
            return ShowMenu(lParam);
        case WM_COPY:
        case WM_CUT:
        case WM_UNDO:
        case EM_UNDO:
        case EM_CANUNDO:
        case EM_SETHANDLE:
        case WM_COMMAND:  // as the control's own menu sends it
        case WM_DROPFILES:
        case WM_IME_STARTCOMPOSITION:
        case WM_IME_COMPOSITION:
        case WM_IME_ENDCOMPOSITION:
        case WM_IME_REQUEST:
            return 0;
        case EM_SETPASSWORDCHAR:
            // 0 would show the text; there is ShowText for those that are shown.
            return LOBYTE(wParam) == 0 ? 0 : System(message, wParam, lParam);
        case WM_STYLECHANGING:
            if (wParam == static_cast<WPARAM>(GWL_STYLE) && lParam != 0) {
                reinterpret_cast<STYLESTRUCT*>(lParam)->styleNew |= ES_PASSWORD;
            }
            break;
        case WM_SETFOCUS:
            TakeInputMethodAway(m_edit.m_hWnd);
            SetInputScopeOfPasswords(m_edit.m_hWnd);
            break;
        case WM_KILLFOCUS:
            m_chLead = '\0';
            break;
        default:
            break;
    }
    return System(message, wParam, lParam);
}

}  // namespace mvp
