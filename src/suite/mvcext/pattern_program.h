// A compiled pattern: a small machine of states that is run over a text.
//
// The machine is run without backtracking: all states that can be reached so far are carried along
// together, so a match takes at most (length of the text + 1) x (number of states) steps, whatever
// the pattern, and memory for two lists of states. Nothing recurses.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace mvp {

using ByteSet = std::bitset<256>;
using StateIndex = std::uint32_t;

struct PatternState {
    enum class Kind : std::uint8_t {
        Byte,       // takes a byte of the set nSet, goes to nNext
        Pass,       // goes to nNext
        Split,      // goes to nNext and to nOther
        TextBegin,  // goes to nNext at the text's begin
        TextEnd,    // goes to nNext at the text's end
        Accept,
    };
    Kind kind;
    StateIndex nNext = 0;
    StateIndex nOther = 0;
    std::uint32_t nSet = 0;
};

class PatternProgram {
public:
    // The states may form loops; every index in them is valid, and one state accepts.
    PatternProgram(std::vector<PatternState> states, std::vector<ByteSet> sets, StateIndex nStart)
        : m_states(std::move(states)), m_sets(std::move(sets)), m_nStart(nStart) {}

    // Whether the whole text matches. Adds the number of states visited to *pnSteps, if given.
    bool Matches(std::string_view text, std::size_t* pnSteps = nullptr) const;

    std::size_t StateCount() const noexcept { return m_states.size(); }

private:
    class StateList;
    bool Follow(StateIndex nFrom, bool bAtBegin, bool bAtEnd, StateList& list,
                std::vector<StateIndex>& pending) const;

    std::vector<PatternState> m_states;
    std::vector<ByteSet> m_sets;
    StateIndex m_nStart;
};

}  // namespace mvp
