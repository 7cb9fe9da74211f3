// What a screen reader gets of a popup: an alert whose name is all that the popup says. Everything
// else, its children among them, is as the system's own object for the window tells it.
//
// A COM object of the window's thread. It lives as long as somebody holds it; when the window goes,
// Disconnect cuts it off and it answers everything with CO_E_OBJNOTCONNECTED.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "services/standard_accessible.h"

namespace mvp {

class PopupAccessible final : public StandardAccessible {
public:
    using SpokenText = std::function<std::string()>;

    // The caller holds the first reference. Null when the system or memory fails.
    static PopupAccessible* Create(HWND hWnd, SpokenText spoken) noexcept;

    void Disconnect() noexcept;

    STDMETHOD(get_accName)(VARIANT child, BSTR* pstrName) override;
    STDMETHOD(get_accRole)(VARIANT child, VARIANT* pRole) override;

private:
    PopupAccessible(SpokenText spoken, IAccessible* pStandard) noexcept
        : StandardAccessible(pStandard), m_spoken(std::move(spoken)) {}
    ~PopupAccessible() override = default;

    SpokenText m_spoken;
};

}  // namespace mvp
