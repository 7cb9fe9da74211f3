// What a screen reader gets of everything that the library shows, as a second process tells it.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace looks {

// Each is an array with an object for each dialog and state, or for each step of a flow: the
// dialog's name, the state's or step's name, the kind, the place of the client area on the screen,
// the pixels of a hundred dialog units (null: the window has none), whether it is mirrored, and
// what the second process has answered.
//
// Of the dialog `strOnly` alone, unless that is empty. Throws std::runtime_error when a state
// cannot be reached.
nlohmann::ordered_json ListenToDialogs(const std::string& strOnly);
// Those of flows.h. Where many keys are typed, there are `nKeys`.
nlohmann::ordered_json ListenToFlows(const std::string& strOnly, int nKeys);

}  // namespace looks
