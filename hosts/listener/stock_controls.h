// What screen readers get of the system's own controls where the system says it.
//
// Not every system does: some call each control a "client", whatever it is. What such an object
// leaves out is then taken from where a system that does would take it: the control's class, its
// style, its check mark, and the label before it. An object that says what it is keeps its role,
// its name and its action.
#pragma once

#include <windows.h>

#include <string>

namespace listener {

struct StockFacts {
    long nRole = 0;
    long nState = 0;
    std::string strAction;   // empty: none
    bool bLabelled = false;  // its name is its label's, not its text
};

// Of a control whose object says no more than "client" and the state `nToldState`. A class that is
// not the system's keeps that role and that state.
StockFacts StockFactsOf(HWND hControl, long nToldState);

// The text that the control has for a label: of the visible static text right before it. Empty when
// there is none.
std::wstring LabelOf(HWND hControl);

}  // namespace listener
