// Watches every reader of the smart-card service for its card leaving, until told to end.
//
// The readers are listed anew at every turn, so readers come and go as they like. While the service
// does not answer it is tried again once a second. When it is back, a reader that is empty or gone
// then has lost its card; when it stays away, so have all of them: newer systems stop the service
// with their last reader, and a card that cannot be reached is no use to anyone.
#pragma once

#include <functional>
#include <string>

#include "suite/vkevtsub/card_service.h"
#include "suite/vkevtsub/reader_table.h"

namespace mvp {

class ReaderWatch {
public:
    // How long a wait for a change may last: the bound on what a lost notification costs.
    static constexpr unsigned kTurnMs = 1000;
    // Between two turns, so that a service that reports without end keeps no processor busy.
    static constexpr unsigned kBreathMs = 100;
    static constexpr unsigned kRetryMs = 1000;
    // After so many retries in vain every card is taken to have left.
    static constexpr int kGiveUpAfter = 3;

    // `onRemoved` gets the reader's name, on the thread that runs the watch.
    ReaderWatch(ICardService& service, std::function<void(const std::string&)> onRemoved);

    // Returns when the service says that the watch is to end.
    void Run();

private:
    void WatchUntilLost();
    void Report(const ReaderTable::Names& readers);

    ICardService& m_service;
    std::function<void(const std::string&)> m_onRemoved;
    ReaderTable m_table;
    int m_nRetries = 0;
};

}  // namespace mvp
