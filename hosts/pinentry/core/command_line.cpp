#include "pinentry/core/command_line.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pinentry {
namespace {

// Key managers pass them on to whatever program asks; those of terminals mean nothing here.
constexpr std::array kIgnoredFlags{"debug", "no-global-grab", "no-local-grab", "enhanced"};
constexpr std::array kIgnoredValues{"colors"};
constexpr std::array kConnectionOptions{"display",  "ttyname",     "ttytype",   "ttyalert",
                                        "lc-ctype", "lc-messages", "parent-wid"};

template <class Names>
bool Has(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool TakeFlag(std::string_view name, CommandLine& line) {
    if (name == "version") {
        line.bVersion = true;
        return true;
    }
    return Has(kIgnoredFlags, name);
}

bool TakesValue(std::string_view name) {
    return name == "timeout" || name == "log" || name == "askpass" || Has(kIgnoredValues, name) ||
           Has(kConnectionOptions, name);
}

bool TakeValue(const std::string& strName, const std::string& strValue, CommandLine& line) {
    if (strName == "timeout") {
        const auto seconds = Number(strValue, kMaxTimeout);
        line.nTimeout = static_cast<std::uint32_t>(seconds.value_or(0));
        return seconds.has_value();
    }
    if (strName == "log") {
        line.strLogFile = strValue;
    } else if (strName == "askpass") {
        line.strPrompt = strValue;
    } else if (Has(kConnectionOptions, strName)) {
        return !line.options.Set(strName + "=" + strValue);
    }
    return true;
}

}  // namespace

std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& arguments,
                                            std::string& strFault) {
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument.rfind("--", 0) != 0) {
            line.strPrompt = argument;
            continue;
        }
        const std::size_t nameEnd = std::min(argument.find('='), argument.size());
        const std::string name = argument.substr(2, nameEnd - 2);
        const bool hasValue = nameEnd < argument.size();
        if (!hasValue && TakeFlag(name, line)) {
            continue;
        }
        if (!TakesValue(name)) {
            strFault = "unknown option " + argument;
            return std::nullopt;
        }
        if (!hasValue && i + 1 == arguments.size()) {
            strFault = argument + " needs a value";
            return std::nullopt;
        }
        const std::string value = hasValue ? argument.substr(nameEnd + 1) : arguments[++i];
        if (!TakeValue(name, value, line)) {
            strFault = "not a value of --";
            strFault.append(name).append(": ").append(value);
            return std::nullopt;
        }
    }
    return line;
}

}  // namespace pinentry
