#include "policy/rule_text.h"

#include <utility>

#include "resources/resource_numbers.h"
#include "services/resource_module.h"

namespace mvp {

void RuleText::Tell(bool bSatisfied) {
    if (std::exchange(m_bSatisfied, bSatisfied) != bSatisfied && ::IsWindowVisible(m_hWnd)) {
        NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, m_hWnd, OBJID_CLIENT, CHILDID_SELF);
    }
}

std::string RuleText::SpokenText() const {
    CString text;
    GetWindowText(text);
    const CString state =
        ResourceString(m_bSatisfied ? IDS_POLICIES_SATISFIED : IDS_POLICIES_VIOLATED);
    return std::string(text) + ", " + static_cast<LPCSTR>(state);
}

LRESULT RuleText::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) {
        m_pAccessible.reset();
    }
    if (message != WM_GETOBJECT || static_cast<LONG>(lParam) != OBJID_CLIENT) {
        return CStatic::WindowProc(message, wParam, lParam);
    }
    if (m_pAccessible == nullptr) {
        m_pAccessible.reset(NamedAccessible::Create(m_hWnd, ROLE_SYSTEM_STATICTEXT,
                                                    [this] { return SpokenText(); }));
    }
    return m_pAccessible != nullptr ? AnswerGetObject(wParam, m_pAccessible.get()) : Default();
}

}  // namespace mvp
