#include "pinhost/commands/card_dialog.h"

#include <algorithm>
#include <iterator>

#include "pinhost/option_values.h"
#include "pinhost/text.h"

namespace pinhost {

void CardDialog::AddTo(CLI::App& command) {
    options.AddTo(command);
    AddPlanOptions(command, plan);
}

void CardDialog::AddCardFailsTo(CLI::App& command) {
    command.add_option("--card-fails", nCardFails, "the card refuses with this result code")
        ->check(AnyWholeNumber<std::int32_t>())
        ->type_name("CODE");
}

void CardDialog::AddTickTo(CLI::App& command) {
    command.add_flag("--tick", plan.bTick, "tick the box below the unlock code");
}

Asked CardDialog::Run(const HostOptions& host, CardSide& side, const DialogFlow& flow) {
    plan.strScreenshot = AbsolutePath(plan.strScreenshot);
    plan.strNextScreenshot = AbsolutePath(plan.strNextScreenshot);
    const PinLibrary library(host);
    const FlowLibrary flows;
    Asked asked =
        AskUser(options, plan, side.Card(), [&] { return flow(flows, side.Functions()); });
    side.Finish();
    return asked;
}

CardSide CardDialog::SideOf(ICard& card) const {
    return {card, options.strReader, nCardFails};
}

Secret WithoutDashes(std::span<const char> code) {
    Secret bare;
    std::copy_if(code.begin(), code.end(), std::back_inserter(bare),
                 [](char ch) { return ch != '-' && ch != ' '; });
    return bare;
}

}  // namespace pinhost
