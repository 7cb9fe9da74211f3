#include "suite/mvcext/pattern_program.h"

namespace mvp {

// The states reached at one position of the text, each once, in the order they were reached.
class CPatternProgram::CStateList {
public:
    explicit CStateList(std::size_t nStates) : m_marks(nStates, false) {
        m_reached.reserve(nStates);
    }
    // False when the state was in the list already.
    bool Add(StateIndex nState) {
        if (m_marks[nState])
            return false;
        m_marks[nState] = true;
        m_reached.push_back(nState);
        return true;
    }
    void Clear() noexcept {
        for (const StateIndex nState : m_reached)
            m_marks[nState] = false;
        m_reached.clear();
    }
    const std::vector<StateIndex>& Reached() const noexcept { return m_reached; }

private:
    std::vector<StateIndex> m_reached;
    std::vector<bool> m_marks;
};

// Adds `nFrom` and all states that lie behind it without taking a byte. Returns whether one of the
// added states accepts.
bool CPatternProgram::Follow(StateIndex nFrom, bool bAtBegin, bool bAtEnd, CStateList& list,
                             std::vector<StateIndex>& pending) const {
    bool bAccepts = false;
    pending.assign(1, nFrom);
    while (!pending.empty()) {
        const StateIndex nState = pending.back();
        pending.pop_back();
        if (!list.Add(nState))
            continue;
        const PatternState& state = m_states[nState];
        switch (state.kind) {
            case PatternState::Kind::kByte:
                break;
            case PatternState::Kind::kAccept:
                bAccepts = true;
                break;
            case PatternState::Kind::kSplit:
                pending.push_back(state.nOther);
                pending.push_back(state.nNext);
                break;
            case PatternState::Kind::kPass:
                pending.push_back(state.nNext);
                break;
            case PatternState::Kind::kTextBegin:
                if (bAtBegin)
                    pending.push_back(state.nNext);
                break;
            case PatternState::Kind::kTextEnd:
                if (bAtEnd)
                    pending.push_back(state.nNext);
                break;
        }
    }
    return bAccepts;
}

bool CPatternProgram::Matches(std::string_view text, std::size_t* pnSteps) const {
    CStateList here(m_states.size());
    CStateList next(m_states.size());
    std::vector<StateIndex> pending;
    std::size_t nSteps = 0;

    bool bAccepts = Follow(m_nStart, true, text.empty(), here, pending);
    for (std::size_t nAt = 0; nAt < text.size() && !here.Reached().empty(); ++nAt) {
        const auto nByte = static_cast<unsigned char>(text[nAt]);
        const bool bAtEnd = nAt + 1 == text.size();
        bAccepts = false;
        next.Clear();
        for (const StateIndex nState : here.Reached()) {
            const PatternState& state = m_states[nState];
            if (state.kind == PatternState::Kind::kByte && m_sets[state.nSet][nByte])
                bAccepts |= Follow(state.nNext, false, bAtEnd, next, pending);
        }
        nSteps += here.Reached().size();
        std::swap(here, next);
    }
    if (pnSteps != nullptr)
        *pnSteps += nSteps + here.Reached().size();
    return bAccepts;
}

}  // namespace mvp
