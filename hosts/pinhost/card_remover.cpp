#include "pinhost/card_remover.h"

#include <utility>

#include "common/wait_for.h"
#include "pinhost/ending.h"
#include "pinhost/pin_library.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

constexpr int kCardRemovedEvent = 2;

// A person may take his time with a warning that comes first.
constexpr auto kForever = std::chrono::hours(24);

}  // namespace

CardRemover::CardRemover(std::string strReader, std::chrono::milliseconds delay,
                         std::function<bool()> isOpen)
    : m_events(LoadOwnModule("vkevtsub.dll")),
      m_strReader(std::move(strReader)),
      m_delay(delay),
      m_isOpen(std::move(isOpen)) {
    Find(m_events, "VKRaiseEvent", m_pRaiseEvent);
    m_thread = std::jthread([this](const std::stop_token& stop) { Main(stop); });
}

bool CardRemover::Finish() {
    m_thread = {};  // asks it to stop, and waits
    return m_bRemoved;
}

void CardRemover::Main(const std::stop_token& stop) noexcept {
    // Nothing else would close a dialog that waits for the removal.
    mvp::Guarded([&] { PullCard(stop); }, [] { EndNow("the card could not be pulled"); });
}

void CardRemover::PullCard(const std::stop_token& stop) {
    mvp::WaitFor(kForever, [&] { return stop.stop_requested() || m_isOpen(); });
    mvp::WaitFor(m_delay, [&] { return stop.stop_requested(); });
    if (stop.stop_requested()) {
        return;
    }
    if (m_pRaiseEvent(kCardRemovedEvent, m_strReader.c_str()) != 0) {
        throw EnvironmentError("the event was refused");
    }
    m_bRemoved = true;
}

}  // namespace pinhost
