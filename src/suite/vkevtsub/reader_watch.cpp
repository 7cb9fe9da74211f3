#include "suite/vkevtsub/reader_watch.h"

#include <utility>

namespace mvp {
namespace {

// Ends the connection however its scope is left.
class Connection {
public:
    explicit Connection(ICardService& service) noexcept : m_service(service) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { m_service.Disconnect(); }

private:
    ICardService& m_service;
};

}  // namespace

ReaderWatch::ReaderWatch(ICardService& service, std::function<void(const std::string&)> onRemoved)
    : m_service(service), m_onRemoved(std::move(onRemoved)) {}

void ReaderWatch::Run() {
    while (!m_service.IsEnding()) {
        if (m_service.Connect()) {
            const Connection connection(m_service);
            WatchUntilLost();
            m_table.ForgetCounters();
        }
        if (!m_service.Pause(kRetryMs)) {
            return;
        }
        if (++m_nRetries == kGiveUpAfter) {
            Report(m_table.RemoveAll());
        }
    }
}

void ReaderWatch::WatchUntilLost() {
    std::vector<std::string> names;
    do {
        if (m_service.IsEnding() || !m_service.ListReaders(names)) {
            return;
        }
        Report(m_table.SetReaders(names));

        std::vector<ReaderState> states = m_table.States();
        switch (m_service.WaitForChange(states, kTurnMs)) {
            case ICardService::Wait::Reported:
                Report(m_table.Update(states));
                break;
            case ICardService::Wait::Nothing:
            case ICardService::Wait::UnknownReader:
                break;
            case ICardService::Wait::Lost:
                return;
        }
        m_nRetries = 0;
    } while (m_service.Pause(kBreathMs));
}

void ReaderWatch::Report(const ReaderTable::Names& readers) {
    for (const std::string& reader : readers) {
        m_onRemoved(reader);
    }
}

}  // namespace mvp
