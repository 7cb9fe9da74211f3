#include "suite/vkevtsub/card_watch.h"

#include <utility>

#include "platform/barrier.h"
#include "platform/module_thread.h"
#include "suite/log_exception.h"
#include "suite/vkevtsub/reader_watch.h"

namespace mvp {

CCardWatch::CCardWatch(OnRemoved onRemoved, const std::string& strModule)
    : m_service(strModule), m_onRemoved(std::move(onRemoved)) {}

std::shared_ptr<CCardWatch> CCardWatch::Start(OnRemoved onRemoved, const std::string& strModule) {
    std::shared_ptr<CCardWatch> watch(new CCardWatch(std::move(onRemoved), strModule));
    if (!watch->m_service.IsUsable() ||
        !StartModuleThread([watch] { watch->Run(); }, LogSuiteException("VKEVTSUB", "CCardWatch")))
        return nullptr;
    return watch;
}

void CCardWatch::Run() noexcept {
    // Memory that runs out costs what is known of the readers, not the watch.
    bool bEnded = false;
    while (!bEnded) {
        CReaderWatch readers(
            m_service, [this](const std::string& strReader) { m_onRemoved(*this, strReader); });
        bEnded = Guarded([&] { readers.Run(); }, LogSuiteException("VKEVTSUB", "CCardWatch::Run"));
        if (!bEnded)
            m_service.Pause(CReaderWatch::kRetryMs);
    }
}

}  // namespace mvp
