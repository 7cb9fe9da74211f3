// What watching the readers needs of the smart-card service. Tests script one of their own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mvp {

// A reader's state as the service counts it: bits below, a counter of card movements above.
namespace reader_state {
constexpr std::uint32_t kUnaware = 0;  // nothing known yet
constexpr std::uint32_t kChanged = 0x2;
constexpr std::uint32_t kPresent = 0x20;
constexpr unsigned kCounterShift = 16;
}  // namespace reader_state

struct ReaderState {
    std::string strName;
    std::uint32_t nKnown;  // what the watcher knows
    std::uint32_t nNow;    // what the service reports
};

class ICardService {
public:
    enum class Wait {
        Reported,       // nNow of every reader is filled
        Nothing,        // no change in time, or the watch is to end
        UnknownReader,  // one of the readers does not exist any more
        Lost,           // the service does not answer
    };

    ICardService() = default;
    ICardService(const ICardService&) = delete;
    ICardService& operator=(const ICardService&) = delete;
    virtual ~ICardService() = default;

    // False when there is no service now. Each successful Connect is followed by a Disconnect.
    virtual bool Connect() = 0;
    virtual void Disconnect() = 0;

    // False when the service is lost.
    virtual bool ListReaders(std::vector<std::string>& names) = 0;

    // Waits until a reader's state differs from nKnown, readers come or go, the time is over, or
    // the watch is to end.
    virtual Wait WaitForChange(std::vector<ReaderState>& readers, unsigned nTimeoutMs) = 0;

    // Whether the watch is to end. Pause returns early, with false, when it is.
    virtual bool IsEnding() = 0;
    virtual bool Pause(unsigned nMs) = 0;
};

}  // namespace mvp
