#include "suite/mvcext/pattern_program.h"

namespace mvp {

// The states reached at one position of the text, each once, in the order they were reached.
class PatternProgram::StateList {
public:
    explicit StateList(std::size_t nStates) : m_marks(nStates, false) {
        m_reached.reserve(nStates);
    }
    // False when the state was in the list already.
    bool Add(StateIndex nState) {
        if (m_marks[nState]) {
            return false;
        }
        m_marks[nState] = true;
        m_reached.push_back(nState);
        return true;
    }
    void Clear() noexcept {
        for (const StateIndex index : m_reached) {
            m_marks[index] = false;
        }
        m_reached.clear();
    }
    const std::vector<StateIndex>& Reached() const noexcept { return m_reached; }

private:
    std::vector<StateIndex> m_reached;
    std::vector<bool> m_marks;
};

// Adds `nFrom` and all states that lie behind it without taking a byte. Returns whether one of the
// added states accepts.
bool PatternProgram::Follow(StateIndex nFrom, bool bAtBegin, bool bAtEnd, StateList& list,
                            std::vector<StateIndex>& pending) const {
    bool accepts = false;
    pending.assign(1, nFrom);
    while (!pending.empty()) {
        const StateIndex index = pending.back();
        pending.pop_back();
        if (!list.Add(index)) {
            continue;
        }
        const PatternState& state = m_states[index];
        switch (state.kind) {
            case PatternState::Kind::Byte:
                break;
            case PatternState::Kind::Accept:
                accepts = true;
                break;
            case PatternState::Kind::Split:
                pending.push_back(state.nOther);
                pending.push_back(state.nNext);
                break;
            case PatternState::Kind::Pass:
                pending.push_back(state.nNext);
                break;
            case PatternState::Kind::TextBegin:
                if (bAtBegin) {
                    pending.push_back(state.nNext);
                }
                break;
            case PatternState::Kind::TextEnd:
                if (bAtEnd) {
                    pending.push_back(state.nNext);
                }
                break;
        }
    }
    return accepts;
}

bool PatternProgram::Matches(std::string_view text, std::size_t* pnSteps) const {
    StateList here(m_states.size());
    StateList next(m_states.size());
    std::vector<StateIndex> pending;
    std::size_t steps = 0;

    bool accepts = Follow(m_nStart, true, text.empty(), here, pending);
    for (std::size_t at = 0; at < text.size() && !here.Reached().empty(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool atEnd = at + 1 == text.size();
        accepts = false;
        next.Clear();
        for (const StateIndex index : here.Reached()) {
            const PatternState& state = m_states[index];
            if (state.kind == PatternState::Kind::Byte && m_sets[state.nSet][byte]) {
                accepts |= Follow(state.nNext, false, atEnd, next, pending);
            }
        }
        steps += here.Reached().size();
        std::swap(here, next);
    }
    if (pnSteps != nullptr) {
        *pnSteps += steps + here.Reached().size();
    }
    return accepts;
}

}  // namespace mvp
