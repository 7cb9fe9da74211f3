// The text of a rule's line. An icon beside it shows whether the rule is met; whoever does not see
// the icon hears it: to a screen reader it is part of the text's name, and an event tells of every
// change while it shows.
#pragma once

#include <memory>

#include <dlgfw/controls.h>

#include "services/named_accessible.h"

namespace mvp {

class RuleText final : public CStatic {
public:
    // Whether the rule is met.
    void Tell(bool bSatisfied);

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    std::string SpokenText() const;

    bool m_bSatisfied = false;
    std::unique_ptr<NamedAccessible, NamedAccessible::GiveUp> m_pAccessible;
};

}  // namespace mvp
