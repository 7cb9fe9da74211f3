#include "suite/vkevtsub/card_watch.h"

#include <utility>

#include "platform/barrier.h"
#include "platform/module_thread.h"
#include "suite/log_exception.h"
#include "suite/vkevtsub/reader_watch.h"

namespace mvp {

CardWatch::CardWatch(OnRemoved onRemoved, const std::string& strModule)
    : m_service(strModule), m_onRemoved(std::move(onRemoved)) {}

std::shared_ptr<CardWatch> CardWatch::Start(OnRemoved onRemoved, const std::string& strModule) {
    std::shared_ptr<CardWatch> watch(new CardWatch(std::move(onRemoved), strModule));
    if (!watch->m_service.IsUsable() ||
        !StartModuleThread([watch] { watch->Run(); }, LogSuiteException("VKEVTSUB", "CardWatch"))) {
        return nullptr;
    }
    return watch;
}

void CardWatch::Run() noexcept {
    // Memory that runs out costs what is known of the readers, not the watch.
    bool ended = false;
    while (!ended) {
        ReaderWatch readers(
            m_service, [this](const std::string& strReader) { m_onRemoved(*this, strReader); });
        ended = Guarded([&] { readers.Run(); }, LogSuiteException("VKEVTSUB", "CardWatch::Run"));
        if (!ended) {
            m_service.Pause(ReaderWatch::kRetryMs);
        }
    }
}

}  // namespace mvp
