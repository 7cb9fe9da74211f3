#include "suite/vkevtsub/reader_watch.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

// A smart-card service in a made world. Each wait takes the next step of a script; behind the last
// one the watch ends.
class CScriptedService final : public ICardService {
public:
    using Step = std::function<void(CScriptedService&)>;

    explicit CScriptedService(std::vector<Step> script) : m_script(std::move(script)) {}

    // What happens in the world.
    void Plug(const std::string& strReader) { m_readers[strReader] = {}; }
    void Unplug(const std::string& strReader) { m_readers.erase(strReader); }
    void Insert(const std::string& strReader) {
        m_readers.at(strReader).bCardIn = true;
        ++m_readers.at(strReader).nMoves;
    }
    void Pull(const std::string& strReader) {
        m_readers.at(strReader).bCardIn = false;
        ++m_readers.at(strReader).nMoves;
    }
    void Stop() {
        m_bUp = false;
        for (auto& [name, reader] : m_readers)
            reader.nMoves = 0;
    }
    void Start() { m_bUp = true; }

    bool Connect() override {
        if (m_bUp)
            ++m_nConnections;
        return m_bUp;
    }
    void Disconnect() override { --m_nConnections; }

    bool ListReaders(std::vector<std::string>& names) override {
        EXPECT_EQ(m_nConnections, 1);
        names.clear();
        for (const auto& [name, reader] : m_readers)
            names.push_back(name);
        return m_bUp;
    }

    Wait WaitForChange(std::vector<ReaderState>& readers, unsigned /*nTimeoutMs*/) override {
        EXPECT_EQ(m_nConnections, 1);
        Wait result = Look(readers);
        if (result == Wait::kNothing) {
            TakeStep();
            result = Look(readers);
        }
        return result;
    }

    bool IsEnding() override { return m_bEnding; }
    bool Pause(unsigned /*nMs*/) override {
        if (!m_bUp)
            TakeStep();
        return !m_bEnding;
    }

    int Connections() const { return m_nConnections; }

private:
    struct Reader {
        bool bCardIn = false;
        std::uint32_t nMoves = 0;
    };

    void TakeStep() {
        if (m_nNext < m_script.size())
            m_script[m_nNext++](*this);
        else
            m_bEnding = true;
    }

    Wait Look(std::vector<ReaderState>& readers) {
        if (!m_bUp)
            return Wait::kLost;
        bool bChange = readers.size() != m_readers.size();
        for (ReaderState& state : readers) {
            const auto reader = m_readers.find(state.strName);
            if (reader == m_readers.end())
                return Wait::kUnknownReader;
            state.nNow = (reader->second.nMoves << reader_state::kCounterShift) |
                         (reader->second.bCardIn ? reader_state::kPresent : 0x10);
            if (state.nNow != state.nKnown) {
                state.nNow |= reader_state::kChanged;
                bChange = true;
            }
        }
        return bChange ? Wait::kReported : Wait::kNothing;
    }

    std::vector<Step> m_script;
    std::size_t m_nNext = 0;
    std::map<std::string, Reader> m_readers;
    bool m_bUp = true;
    bool m_bEnding = false;
    int m_nConnections = 0;
};

using World = CScriptedService;
using Names = std::vector<std::string>;

Names RemovedIn(CScriptedService& service) {
    Names removed;
    CReaderWatch(service, [&](const std::string& strReader) {
        removed.push_back(strReader);
    }).Run();
    EXPECT_EQ(service.Connections(), 0);
    return removed;
}

void Nothing(World&) {}

TEST(ReaderWatch, ReportsCardsThatLeave) {
    const struct {
        const char* pszName;
        std::vector<World::Step> script;
        Names removed;
    } cases[] = {
        {"no readers", {Nothing}, {}},
        {"pulled",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, [](World& w) { w.Pull("A"); }},
         {"A"}},
        {"there before the watch, and stays",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, Nothing, Nothing},
         {}},
        {"one of two",
         {[](World& w) { w.Plug("A"), w.Plug("B"), w.Insert("A"), w.Insert("B"); },
          [](World& w) { w.Pull("B"); }, [](World& w) { w.Pull("A"); }},
         {"B", "A"}},
        {"inserted later",
         {[](World& w) { w.Plug("A"); }, [](World& w) { w.Insert("A"); },
          [](World& w) { w.Pull("A"); }},
         {"A"}},
        {"exchanged between two looks",
         {[](World& w) { w.Plug("A"), w.Insert("A"); },
          [](World& w) { w.Pull("A"), w.Insert("A"); }, [](World& w) { w.Pull("A"); }},
         {"A", "A"}},
        {"inserted and pulled between two looks: nobody knew of it",
         {[](World& w) { w.Plug("A"); }, [](World& w) { w.Insert("A"), w.Pull("A"); }},
         {}},
        {"reader unplugged with its card, and plugged in again",
         {[](World& w) { w.Plug("A"), w.Plug("B"), w.Insert("A"), w.Insert("B"); },
          [](World& w) { w.Unplug("A"); }, [](World& w) { w.Plug("A"), w.Insert("A"); },
          [](World& w) { w.Pull("A"); }},
         {"A", "A"}},
        {"empty reader unplugged",
         {[](World& w) { w.Plug("A"); }, [](World& w) { w.Unplug("A"); }},
         {}},
        {"service restarted in between, card stays",
         {[](World& w) { w.Plug("A"), w.Insert("A"), w.Pull("A"), w.Insert("A"); },
          [](World& w) { w.Stop(); }, [](World& w) { w.Start(); }, Nothing},
         {}},
        {"service restarted, card pulled meanwhile",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, [](World& w) { w.Stop(); },
          [](World& w) { w.Pull("A"), w.Start(); }},
         {"A"}},
        {"service restarted, reader gone meanwhile",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, [](World& w) { w.Stop(); },
          [](World& w) { w.Unplug("A"), w.Start(); }, Nothing},
         {"A"}},
        {"service stays away",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, [](World& w) { w.Stop(); }, Nothing,
          Nothing, Nothing, Nothing, Nothing},
         {"A"}},
        {"service away again and again, never for long",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, &World::Stop, &World::Start, &World::Stop,
          &World::Start, &World::Stop, &World::Start},
         {}},
        {"service back after long",
         {[](World& w) { w.Plug("A"), w.Insert("A"); }, [](World& w) { w.Stop(); }, Nothing,
          Nothing, Nothing, Nothing, [](World& w) { w.Start(); }, [](World& w) { w.Pull("A"); }},
         {"A", "A"}},
        {"service starts late",
         {[](World& w) { w.Stop(); }, Nothing, Nothing,
          [](World& w) { w.Start(), w.Plug("A"), w.Insert("A"); }, [](World& w) { w.Pull("A"); }},
         {"A"}},
    };
    for (const auto& each : cases) {
        CScriptedService service(each.script);
        EXPECT_EQ(RemovedIn(service), each.removed) << each.pszName;
    }
}

TEST(ReaderWatch, WatchesManyReaders) {
    std::vector<World::Step> script;
    Names expected;
    script.push_back([](World& world) {
        for (int i = 100; i < 200; ++i) {
            world.Plug("Reader " + std::to_string(i));
            world.Insert("Reader " + std::to_string(i));
        }
    });
    for (int i = 199; i >= 100; i -= 7) {
        expected.push_back("Reader " + std::to_string(i));
        script.push_back([i](World& world) { world.Pull("Reader " + std::to_string(i)); });
    }
    CScriptedService service(script);
    EXPECT_EQ(RemovedIn(service), expected);
}

// A service that gives the same answer at once, always, for a minute.
class CNoisyService final : public ICardService {
public:
    explicit CNoisyService(bool bAnswers, Wait result) : m_bAnswers(bAnswers), m_result(result) {}
    bool Connect() override { return ++m_nCalls, m_bAnswers; }
    void Disconnect() override {}
    bool ListReaders(std::vector<std::string>& names) override {
        names = {"A"};
        return true;
    }
    Wait WaitForChange(std::vector<ReaderState>& readers, unsigned) override {
        ++m_nCalls;
        readers[0].nNow = readers[0].nKnown;
        return m_result;
    }
    bool IsEnding() override { return m_nTimeMs > 60000; }
    bool Pause(unsigned nMs) override {
        m_nTimeMs += nMs;
        return !IsEnding();
    }
    int m_nCalls = 0;

private:
    bool m_bAnswers;
    Wait m_result;
    unsigned m_nTimeMs = 0;
};

TEST(ReaderWatch, NeverSpins) {
    for (const auto result : {ICardService::Wait::kReported, ICardService::Wait::kNothing,
                              ICardService::Wait::kUnknownReader, ICardService::Wait::kLost}) {
        for (const bool bAnswers : {true, false}) {
            CNoisyService service(bAnswers, result);
            CReaderWatch(service, [](const std::string&) { ADD_FAILURE(); }).Run();
            EXPECT_LE(service.m_nCalls, 60000 / static_cast<int>(CReaderWatch::kBreathMs) + 2);
        }
    }
}

}  // namespace
}  // namespace mvp
