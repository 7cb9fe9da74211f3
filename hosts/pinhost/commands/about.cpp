// about: the about box, with the product that is installed on the machine.
#include <array>
#include <optional>

#include "pinhost/automatic_user.h"
#include "pinhost/commands/commands.h"
#include "pinhost/machine_setting.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"
#include "resources/resource_numbers.h"
#include "settings/settings.h"

namespace pinhost {
namespace {

std::string TextOf(HWND hDialog, int nControl) {
    std::array<char, 1024> text{};
    GetDlgItemTextA(hDialog, nControl, text.data(), static_cast<int>(text.size()));
    return Utf8FromAnsi(text.data());
}

class AboutCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command = app.add_subcommand("about", "Show the about box");
        command->add_option("--caption", m_strCaption, "the host's own text in the box");
        command->add_flag("--window-color", m_bWindowColor, "draw it in the window colour");
        command
            ->add_option("--product-code", m_productCode,
                         "tell of this product: set in the machine's configuration meanwhile")
            ->type_name("{CODE}");
        command
            ->add_option("--credits", m_credits,
                         "the credits document: set in the machine's configuration meanwhile")
            ->type_name("FILE");
        AddPlanOptions(*command, m_plan);
        return command;
    }

    Outcome Run(const HostOptions& options) override {
        m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
        std::optional<MachineSetting> product;
        std::optional<MachineSetting> credits;
        if (m_productCode) {
            product.emplace(mvp::settings::kProductCode, *m_productCode);
        }
        if (m_credits) {
            credits.emplace(mvp::settings::kLicenceFile, AbsolutePath(*m_credits));
        }
        Outcome outcome;
        outcome.json["result"] = "shown";
        m_plan.look = [&outcome](HWND hDialog) {
            outcome.json["name"] = TextOf(hDialog, IDC_ABOUT_NAME);
            outcome.json["version"] = TextOf(hDialog, IDC_ABOUT_VERSION);
        };
        const PinLibrary library(options);
        AutomaticUser user(m_plan, GetCurrentThreadId());
        const std::uint32_t answer =
            library.ShowAbout(m_bWindowColor ? 1 : 0, nullptr, m_strCaption.c_str());
        user.Finish();
        if (answer == MVPINGUI_REFUSED) {
            throw EnvironmentError("the about box could not be shown");
        }
        outcome.strText = "The about box was shown.";
        outcome.json["closedBy"] = answer == IDOK ? "ok" : "cancel";
        return outcome;
    }

private:
    std::string m_strCaption = "PIN user interface";
    bool m_bWindowColor = false;
    std::optional<std::string> m_productCode;
    std::optional<std::string> m_credits;
    UserPlan m_plan;
};

}  // namespace

std::unique_ptr<Command> MakeAboutCommand() {
    return std::make_unique<AboutCommand>();
}

}  // namespace pinhost
