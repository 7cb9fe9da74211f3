// What a screen reader gets of a window that says more than its text: the role and the name that it
// is given, and takes no focus. Everything else, its children among them, is as the system's own
// object for the window tells it.
//
// A COM object of the window's thread. It lives as long as somebody holds it; when the window goes,
// Disconnect cuts it off and it answers everything with CO_E_OBJNOTCONNECTED.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "services/standard_accessible.h"

namespace mvp {

class NamedAccessible final : public StandardAccessible {
public:
    using Name = std::function<std::string()>;

    // `nRole` is one of the system's ROLE_SYSTEM_ numbers. `name` is asked on the window's thread.
    // The caller holds the first reference. Null when the system or memory fails.
    static NamedAccessible* Create(HWND hWnd, long nRole, Name name) noexcept;

    void Disconnect() noexcept;

    // The windows in the window, by their numbers from 1.
    STDMETHOD(get_accChild)(VARIANT child, IDispatch** ppChild) override;
    STDMETHOD(get_accName)(VARIANT child, BSTR* pstrName) override;
    STDMETHOD(get_accRole)(VARIANT child, VARIANT* pRole) override;
    STDMETHOD(get_accState)(VARIANT child, VARIANT* pState) override;

    // Gives up the first reference, for an owner that is a std::unique_ptr. Disconnects first.
    struct GiveUp {
        void operator()(NamedAccessible* pObject) const noexcept;
    };

private:
    NamedAccessible(HWND hWnd, long nRole, Name name, IAccessible* pStandard) noexcept
        : StandardAccessible(pStandard), m_hWnd(hWnd), m_nRole(nRole), m_name(std::move(name)) {}
    ~NamedAccessible() override = default;

    HWND m_hWnd;
    long m_nRole;
    Name m_name;  // none when the window has gone
};

}  // namespace mvp
