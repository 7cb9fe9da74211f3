#include "suite/vkevtsub/reader_watch.h"

#include <utility>

namespace mvp {
namespace {

// Ends the connection however its scope is left.
class CConnection {
public:
    explicit CConnection(ICardService& service) noexcept : m_service(service) {}
    CConnection(const CConnection&) = delete;
    CConnection& operator=(const CConnection&) = delete;
    ~CConnection() { m_service.Disconnect(); }

private:
    ICardService& m_service;
};

}  // namespace

CReaderWatch::CReaderWatch(ICardService& service, std::function<void(const std::string&)> onRemoved)
    : m_service(service), m_onRemoved(std::move(onRemoved)) {}

void CReaderWatch::Run() {
    while (!m_service.IsEnding()) {
        if (m_service.Connect()) {
            const CConnection connection(m_service);
            WatchUntilLost();
            m_table.ForgetCounters();
        }
        if (!m_service.Pause(kRetryMs))
            return;
        if (++m_nRetries == kGiveUpAfter)
            Report(m_table.RemoveAll());
    }
}

void CReaderWatch::WatchUntilLost() {
    std::vector<std::string> names;
    do {
        if (m_service.IsEnding() || !m_service.ListReaders(names))
            return;
        Report(m_table.SetReaders(names));

        std::vector<ReaderState> states = m_table.States();
        switch (m_service.WaitForChange(states, kTurnMs)) {
            case ICardService::Wait::kReported:
                Report(m_table.Update(states));
                break;
            case ICardService::Wait::kNothing:
            case ICardService::Wait::kUnknownReader:
                break;
            case ICardService::Wait::kLost:
                return;
        }
        m_nRetries = 0;
    } while (m_service.Pause(kBreathMs));
}

void CReaderWatch::Report(const CReaderTable::Names& readers) {
    for (const std::string& strReader : readers)
        m_onRemoved(strReader);
}

}  // namespace mvp
