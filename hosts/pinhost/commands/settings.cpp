// settings: every setting of the library with the value that is in force, where it comes from, and
// why one that is there is not followed.
#include <windows.h>

#include <optional>
#include <vector>

#include "pinhost/commands/commands.h"
#include "pinhost/effective_setting.h"
#include "pinhost/text.h"
#include "platform/machine_registry.h"
#include "settings/settings_table.h"

namespace pinhost {
namespace {

using mvp::settings::SettingRow;

// Nothing where there is no value. Throws EnvironmentError when there is one that cannot be read.
std::optional<FoundValue> Find(const SettingRow& row) {
    mvp::RegistryKey key;
    LSTATUS error = mvp::OpenMachineKey(row.pszKey, KEY_QUERY_VALUE, key);
    FoundValue found;
    DWORD type = 0;
    DWORD size = 0;
    if (error == ERROR_SUCCESS) {
        error = RegQueryValueExA(key.get(), row.pszName, nullptr, &type, nullptr, &size);
    }
    while (error == ERROR_SUCCESS) {
        found.bytes.resize(size);
        error = RegQueryValueExA(key.get(), row.pszName, nullptr, &type,
                                 reinterpret_cast<BYTE*>(found.bytes.data()), &size);
        if (error == ERROR_SUCCESS) {
            found.bytes.resize(size);
            found.nType = type;
            return found;
        }
        // It has grown meanwhile.
        error = error == ERROR_MORE_DATA ? ERROR_SUCCESS : error;
    }
    if (error != ERROR_FILE_NOT_FOUND) {
        throw EnvironmentError("it cannot be read, error " + std::to_string(error));
    }
    return std::nullopt;
}

// One that cannot be read is told as such, as the others are told.
EffectiveSetting Look(const SettingRow& row, Outcome& outcome) {
    try {
        const std::optional<FoundValue> found = Find(row);
        return Judge(row, found ? &*found : nullptr);
    } catch (const EnvironmentError& error) {
        outcome.code = ExitCode::Environment;
        EffectiveSetting effective = Judge(row, nullptr);
        effective.strIgnored = error.what();
        return effective;
    }
}

// For people: the value, or what holds without one.
std::string Shown(const SettingRow& row, const EffectiveSetting& effective) {
    if (row.bNumber) {
        return std::to_string(effective.nValue);
    }
    if (!effective.bFromRegistry && row.pszDefault == nullptr) {
        return std::string("(") + row.pszAbsent + ")";
    }
    return "\"" + Utf8FromAnsi(effective.strText) + "\"";
}

nlohmann::ordered_json Value(const SettingRow& row, const EffectiveSetting& effective) {
    if (row.bNumber) {
        return effective.nValue;
    }
    if (!effective.bFromRegistry && row.pszDefault == nullptr) {
        return nullptr;
    }
    return Utf8FromAnsi(effective.strText);
}

class SettingsCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        return app.add_subcommand(
            "settings", "Show every setting, where it comes from, and why one is ignored");
    }

    Outcome Run(const HostOptions& /*options*/) override {
        Outcome outcome;
        outcome.json["result"] = "shown";
        auto& settings = outcome.json["settings"] = nlohmann::ordered_json::array();
        const char* key = "";
        for (const SettingRow& row : mvp::settings::kSettings) {
            const EffectiveSetting effective = Look(row, outcome);
            const char* source = effective.bFromRegistry ? "registry" : "default";
            settings.push_back({{"key", row.pszKey},
                                {"name", row.pszName},
                                {"value", Value(row, effective)},
                                {"source", source},
                                {"ignored", effective.strIgnored},
                                {"windows", row.pszWindows}});
            if (_stricmp(key, row.pszKey) != 0) {
                key = row.pszKey;
                outcome.strText += (outcome.strText.empty() ? "" : "\n") + std::string(key) + "\n";
            }
            outcome.strText +=
                "  " + std::string(row.pszName) + " = " + Shown(row, effective) + ", " + source +
                (effective.strIgnored.empty() ? "" : "; " + effective.strIgnored) + "\n";
        }
        outcome.strText.pop_back();
        return outcome;
    }
};

}  // namespace

std::unique_ptr<Command> MakeSettingsCommand() {
    return std::make_unique<SettingsCommand>();
}

}  // namespace pinhost
