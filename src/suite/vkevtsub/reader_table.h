// Which readers there are and whether a card is in them; tells from what the service reports which
// cards have left.
//
// A reader's first report says what is in it and is no event. From then on a card has left when the
// reader is empty, does not answer or is gone, and also when a card is in it but the counter of its
// movements went on: the card was pulled and one (the same or another) was put in between two
// looks.
#pragma once

#include <string>
#include <vector>

#include "suite/vkevtsub/card_service.h"

namespace mvp {

class ReaderTable {
public:
    using Names = std::vector<std::string>;

    // Each returns the readers whose card has left.
    Names SetReaders(const Names& names);
    Names Update(const std::vector<ReaderState>& reports);
    Names RemoveAll();

    // After the service was lost: its counters start anew, what was in the readers is still known.
    void ForgetCounters();

    std::vector<ReaderState> States() const;

private:
    struct Reader {
        std::string strName;
        std::uint32_t nState = reader_state::kUnaware;
        bool bCardIn = false;
    };
    std::vector<Reader> m_readers;
};

}  // namespace mvp
