// What the commands of the card dialogs share: options, and a flow run with the card behind
// it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "pinhost/card_side.h"
#include "pinhost/commands/card_flow.h"
#include "pinhost/flow_library.h"

namespace pinhost {

// One flow of the library; returns whether the user has confirmed.
using DialogFlow = std::function<bool(const FlowLibrary& flows, const PinHostCard& card)>;

struct CardDialog {
    CardOptions options;
    UserPlan plan;
    std::int32_t nCardFails = 0;  // the card refuses everything with this code; 0: it does not

    // The options of every card dialog.
    void AddTo(CLI::App& command);
    void AddCardFailsTo(CLI::App& command);
    void AddTickTo(CLI::App& command);

    // Runs `flow` on the card for whoever holds the plan.
    Asked Run(const HostOptions& host, CardSide& side, const DialogFlow& flow);

    // The card's side of a flow.
    CardSide SideOf(ICard& card) const;
};

// A code as it is typed or read out, without its dashes and spaces.
Secret WithoutDashes(std::span<const char> code);

}  // namespace pinhost
