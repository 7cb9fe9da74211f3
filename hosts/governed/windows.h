// Opens the windows that settings govern, and writes down what is seen of them.
#pragma once

#include <functional>

#include "governed/library.h"
#include <nlohmann/json.hpp>

namespace governed {

// Opens a window and closes it. `asked` and what comes back are a case of main.cpp's and its
// answer; `change` is called while the window is open. Throws std::runtime_error when there is no
// such window.
nlohmann::ordered_json See(const Library& library, const nlohmann::ordered_json& asked,
                           const std::function<void()>& change);

}  // namespace governed
