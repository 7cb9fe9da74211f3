#include "richtext/control/browser_command.h"

#include <algorithm>

namespace mvp::richtext {

std::string BrowserCommandLine(std::string_view command, std::string_view target) {
    std::string_view kept = command.substr(0, command.find("%1"));
    const bool quoted =
        kept.size() != command.size() && std::count(kept.begin(), kept.end(), '"') % 2 != 0;
    if (quoted) {
        kept = kept.substr(0, kept.rfind('"'));
    }
    std::string line(kept);
    line.append(1, ' ').append(target);
    return line;
}

}  // namespace mvp::richtext
