#include "suite/vkevtsub/reader_watch.h"

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

// A smart-card service in a made world. Each wait takes the next step of a script; behind the last
// one the watch ends. A step is a word of one or more of these: +A plugs reader A in, -A unplugs
// it, >A inserts a card, <A pulls it, /0 stops the service and /1 starts it. A dot does nothing.
class ScriptedService final : public ICardService {
public:
    explicit ScriptedService(const std::string& script) : m_script(script) {}

    bool Connect() override {
        if (m_bUp) {
            ++m_nConnections;
        }
        return m_bUp;
    }
    void Disconnect() override { --m_nConnections; }

    bool ListReaders(std::vector<std::string>& names) override {
        EXPECT_EQ(m_nConnections, 1);
        names.clear();
        for (const auto& [name, reader] : m_readers) {
            names.push_back(name);
        }
        return m_bUp;
    }

    Wait WaitForChange(std::vector<ReaderState>& readers, unsigned /*nTimeoutMs*/) override {
        EXPECT_EQ(m_nConnections, 1);
        Wait result = Look(readers);
        if (result == Wait::Nothing) {
            TakeStep();
            result = Look(readers);
        }
        return result;
    }

    bool IsEnding() override { return m_bEnding; }
    bool Pause(unsigned /*nMs*/) override {
        if (!m_bUp) {
            TakeStep();
        }
        return !m_bEnding;
    }

    int Connections() const { return m_nConnections; }

private:
    struct Reader {
        bool bCardIn = false;
        std::uint32_t nMoves = 0;
    };

    void TakeStep() {
        std::string step;
        m_bEnding = !(m_script >> step);
        for (std::size_t n = 0; n + 1 < step.size(); n += 2) {
            const std::string reader(1, step[n + 1]);
            if (step[n] == '+') {
                m_readers[reader] = {};
            } else if (step[n] == '-') {
                m_readers.erase(reader);
            } else if (step[n] == '/') {
                SetUp(step[n + 1] == '1');
            } else {
                m_readers[reader] = {step[n] == '>', m_readers[reader].nMoves + 1};
            }
        }
    }
    void SetUp(bool bUp) {
        m_bUp = bUp;
        for (auto& [name, reader] : m_readers) {
            reader.nMoves = bUp ? reader.nMoves : 0;
        }
    }

    Wait Look(std::vector<ReaderState>& readers) {
        if (!m_bUp) {
            return Wait::Lost;
        }
        bool change = readers.size() != m_readers.size();
        for (ReaderState& state : readers) {
            const auto reader = m_readers.find(state.strName);
            if (reader == m_readers.end()) {
                return Wait::UnknownReader;
            }
            state.nNow = (reader->second.nMoves << reader_state::kCounterShift) |
                         (reader->second.bCardIn ? reader_state::kPresent : 0x10);
            if (state.nNow != state.nKnown) {
                state.nNow |= reader_state::kChanged;
                change = true;
            }
        }
        return change ? Wait::Reported : Wait::Nothing;
    }

    std::istringstream m_script;
    std::map<std::string, Reader> m_readers;
    bool m_bUp = true;
    bool m_bEnding = false;
    int m_nConnections = 0;
};

// The readers whose cards were reported to have left, in order.
std::string RemovedIn(const std::string& script) {
    ScriptedService service(script);
    std::string removed;
    ReaderWatch(service, [&](const std::string& strReader) { removed += strReader; }).Run();
    EXPECT_EQ(service.Connections(), 0);
    return removed;
}

TEST(ReaderWatch, ReportsCardsThatLeave) {
    const struct {
        const char* pszName;
        const char* pszScript;
        const char* pszRemoved;
    } cases[] = {
        {"no readers", ".", ""},
        {"pulled", "+A>A <A", "A"},
        {"there before the watch, and stays", "+A>A . .", ""},
        {"one of two", "+A+B>A>B <B <A", "BA"},
        {"inserted later", "+A >A <A", "A"},
        {"exchanged between two looks", "+A>A <A>A <A", "AA"},
        {"inserted and pulled between two looks: nobody knew of it", "+A >A<A", ""},
        {"reader unplugged with its card, and back", "+A+B>A>B -A +A>A <A", "AA"},
        {"empty reader unplugged", "+A -A", ""},
        {"service restarted in between, card stays", "+A>A<A>A /0 /1 .", ""},
        {"service restarted, card pulled meanwhile", "+A>A /0 <A/1", "A"},
        {"service restarted, reader gone meanwhile", "+A>A /0 -A/1 .", "A"},
        {"service stays away", "+A>A /0 . . . . .", "A"},
        {"service away often, never for long", "+A>A /0 /1 /0 /1 /0 /1", ""},
        {"service back after long", "+A>A /0 . . . . /1 <A", "AA"},
        {"service starts late", "/0 . . /1+A>A <A", "A"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(RemovedIn(c.pszScript), c.pszRemoved) << c.pszName;
    }
}

// A service that gives the same answers at once, always, for a minute.
struct NoisyService final : ICardService {
    bool Connect() override { return ++nCalls, bAnswers; }
    void Disconnect() override {}
    bool ListReaders(std::vector<std::string>& names) override { return names = {"A"}, true; }
    Wait WaitForChange(std::vector<ReaderState>& readers, unsigned) override {
        ++nCalls;
        readers[0].nNow = readers[0].nKnown;
        return result;
    }
    bool IsEnding() override { return nTimeMs > 60000; }
    bool Pause(unsigned nMs) override { return nTimeMs += nMs, !IsEnding(); }

    bool bAnswers = true;
    Wait result = Wait::Lost;
    int nCalls = 0;
    unsigned nTimeMs = 0;
};

TEST(ReaderWatch, NeverSpins) {
    for (const auto result : {ICardService::Wait::Reported, ICardService::Wait::Nothing,
                              ICardService::Wait::UnknownReader, ICardService::Wait::Lost}) {
        for (const bool answers : {true, false}) {
            NoisyService service;
            service.bAnswers = answers;
            service.result = result;
            ReaderWatch(service, [](const std::string&) { ADD_FAILURE(); }).Run();
            EXPECT_LE(service.nCalls, 60000 / static_cast<int>(ReaderWatch::kBreathMs) + 2);
        }
    }
}

}  // namespace
}  // namespace mvp
