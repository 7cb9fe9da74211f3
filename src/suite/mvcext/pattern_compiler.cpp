#include "suite/mvcext/pattern_compiler.h"

namespace mvp {
namespace {

bool IsBetween(unsigned char byte, char from, char to) noexcept {
    return byte >= static_cast<unsigned char>(from) && byte <= static_cast<unsigned char>(to);
}

bool IsDigit(unsigned char byte) noexcept {
    return IsBetween(byte, '0', '9');
}

bool IsLetter(unsigned char byte) noexcept {
    return IsBetween(byte, 'a', 'z') || IsBetween(byte, 'A', 'Z');
}

ByteSet SetWhere(bool (*pHolds)(unsigned char)) {
    ByteSet set;
    for (std::size_t nByte = 0; nByte < set.size(); ++nByte)
        set[nByte] = pHolds(static_cast<unsigned char>(nByte));
    return set;
}

int HexDigit(char digit) noexcept {
    const auto byte = static_cast<unsigned char>(digit);
    if (IsDigit(byte))
        return digit - '0';
    if (IsBetween(byte, 'a', 'f'))
        return digit - 'a' + 10;
    return IsBetween(byte, 'A', 'F') ? digit - 'A' + 10 : -1;
}

// The lowest byte of a set that is not empty.
std::size_t FirstOf(const ByteSet& set) noexcept {
    std::size_t nByte = 0;
    while (!set[nByte])
        ++nByte;
    return nByte;
}

ByteSet Single(unsigned char byte) {
    return ByteSet().set(byte);
}

// A part of the machine: one state to enter it, and one that leaves it and whose nNext is still
// open.
struct Fragment {
    StateIndex nStart;
    StateIndex nEnd;
};

// What is open on one level of brackets: the alternatives before the last |, the sequence behind
// it, and the last element of the sequence, apart because a quantifier may follow.
struct Level {
    std::optional<Fragment> alternatives;
    std::optional<Fragment> sequence;
    std::optional<Fragment> last;
    bool bLastMayRepeat = false;
};

class CPatternCompiler {
public:
    CPatternCompiler(std::string_view pattern, bool bIgnoreCase)
        : m_pattern(pattern), m_bIgnoreCase(bIgnoreCase), m_levels(1) {}

    std::optional<CPatternProgram> Compile() {
        while (!AtEnd()) {
            if (!ReadElement())
                return std::nullopt;
        }
        if (m_levels.size() != 1)
            return std::nullopt;
        const Fragment whole = CloseLevel();
        m_states[whole.nEnd].nNext = NewState(PatternState::Kind::kAccept).nStart;
        return CPatternProgram(std::move(m_states), std::move(m_sets), whole.nStart);
    }

private:
    bool AtEnd() const noexcept { return m_nAt == m_pattern.size(); }
    bool SkipIf(std::string_view text) noexcept {
        if (m_pattern.substr(m_nAt, text.size()) != text)
            return false;
        m_nAt += text.size();
        return true;
    }

    // Reading. Each returns false when the pattern is malformed.
    bool ReadElement();
    bool OpenGroup();
    bool CloseGroup();
    bool Repeat(char quantifier);
    bool ReadEscape(ByteSet& set);
    bool ReadHex(ByteSet& set);
    bool ReadClass(ByteSet& set);
    bool ReadClassItem(ByteSet& set);
    bool ReadClassByte(ByteSet& set);

    // Building.
    Fragment NewState(PatternState::Kind kind);
    Fragment NewSet(const ByteSet& set);
    void Append(Fragment element, bool bMayRepeat);
    void AppendSet(ByteSet set);
    Fragment Join(Fragment first, Fragment second);
    Fragment Either(Fragment first, Fragment second);
    void FinishElement();
    void FinishAlternative();
    Fragment CloseLevel();
    void FoldCase(ByteSet& set) const;

    std::string_view m_pattern;
    bool m_bIgnoreCase;
    std::size_t m_nAt = 0;
    std::vector<Level> m_levels;
    std::vector<PatternState> m_states;
    std::vector<ByteSet> m_sets;
};

bool CPatternCompiler::ReadElement() {
    const char sign = m_pattern[m_nAt++];
    ByteSet set;
    switch (sign) {
        case '(':
            return OpenGroup();
        case ')':
            return CloseGroup();
        case '|':
            FinishAlternative();
            return true;
        case '*':
        case '+':
        case '?':
            return Repeat(sign);
        case '{':
        case '}':
            // Counted repetition elsewhere; refused, so that nobody takes it for one here.
            return false;
        case '^':
            Append(NewState(PatternState::Kind::kTextBegin), false);
            return true;
        case '$':
            Append(NewState(PatternState::Kind::kTextEnd), false);
            return true;
        case '.':
            AppendSet(set.set());
            return true;
        case '[':
            if (!ReadClass(set))
                return false;
            break;
        case '\\':
            if (!ReadEscape(set))
                return false;
            break;
        default:
            set = Single(static_cast<unsigned char>(sign));
            FoldCase(set);
    }
    AppendSet(set);
    return true;
}

bool CPatternCompiler::OpenGroup() {
    // Groups capture nothing, so (?: is a plain bracket; the other (? forms are not known.
    if (!SkipIf("?:") && !AtEnd() && m_pattern[m_nAt] == '?')
        return false;
    m_levels.emplace_back();
    return true;
}

bool CPatternCompiler::CloseGroup() {
    if (m_levels.size() == 1)
        return false;
    const Fragment group = CloseLevel();
    m_levels.pop_back();
    Append(group, true);
    return true;
}

bool CPatternCompiler::Repeat(char quantifier) {
    Level& level = m_levels.back();
    if (!level.last || !level.bLastMayRepeat)
        return false;
    const Fragment body = *level.last;
    const StateIndex nSplit = NewState(PatternState::Kind::kSplit).nStart;
    const StateIndex nEnd = NewState(PatternState::Kind::kPass).nStart;
    m_states[nSplit].nNext = body.nStart;
    m_states[nSplit].nOther = nEnd;
    m_states[body.nEnd].nNext = quantifier == '?' ? nEnd : nSplit;
    level.last = Fragment{quantifier == '+' ? body.nStart : nSplit, nEnd};
    level.bLastMayRepeat = false;
    // As few as possible rather than as many: the same texts match.
    SkipIf("?");
    return true;
}

// What stands behind a backslash.
bool CPatternCompiler::ReadEscape(ByteSet& set) {
    if (AtEnd())
        return false;
    const auto sign = static_cast<unsigned char>(m_pattern[m_nAt++]);
    const char* const pszControls = "t\tn\nr\rf\fv\v";
    switch (sign) {
        case 'd':
        case 'D':
            set = SetWhere(IsDigit);
            break;
        case 's':
        case 'S':
            set = SetWhere(
                [](unsigned char byte) { return byte == ' ' || IsBetween(byte, '\t', '\r'); });
            break;
        case 'w':
        case 'W':
            set = SetWhere(
                [](unsigned char byte) { return IsLetter(byte) || IsDigit(byte) || byte == '_'; });
            break;
        case 'x':
            return ReadHex(set);
        default:
            if (!IsLetter(sign) && !IsDigit(sign)) {
                set = Single(sign);
                return true;
            }
            for (const char* psz = pszControls; *psz != '\0'; psz += 2) {
                if (static_cast<unsigned char>(psz[0]) == sign) {
                    set = Single(static_cast<unsigned char>(psz[1]));
                    return true;
                }
            }
            return false;
    }
    if (IsBetween(sign, 'A', 'Z'))
        set.flip();
    return true;
}

bool CPatternCompiler::ReadHex(ByteSet& set) {
    if (m_pattern.size() - m_nAt < 2)
        return false;
    const int nHigh = HexDigit(m_pattern[m_nAt]);
    const int nLow = HexDigit(m_pattern[m_nAt + 1]);
    if (nHigh < 0 || nLow < 0)
        return false;
    m_nAt += 2;
    set = Single(static_cast<unsigned char>(nHigh * 16 + nLow));
    FoldCase(set);
    return true;
}

// A class, from behind its [ to behind its ].
bool CPatternCompiler::ReadClass(ByteSet& set) {
    const bool bInverted = SkipIf("^");
    bool bEmpty = true;
    while (!SkipIf("]")) {
        if (AtEnd() || !ReadClassItem(set))
            return false;
        bEmpty = false;
    }
    // Elsewhere a ] in the first place may stand for itself; here it must be escaped.
    if (bEmpty)
        return false;
    FoldCase(set);
    if (bInverted)
        set.flip();
    return true;
}

// A byte, an escape or a range.
bool CPatternCompiler::ReadClassItem(ByteSet& set) {
    ByteSet first;
    if (!ReadClassByte(first))
        return false;
    // A - stands for itself before the closing ].
    const bool bRange = m_pattern.substr(m_nAt, 1) == "-" && m_pattern.substr(m_nAt, 2) != "-]";
    if (!bRange) {
        set |= first;
        return true;
    }
    ++m_nAt;
    ByteSet last;
    if (AtEnd() || !ReadClassByte(last) || first.count() != 1 || last.count() != 1)
        return false;
    const std::size_t nFirst = FirstOf(first);
    const std::size_t nLast = FirstOf(last);
    for (std::size_t nByte = nFirst; nByte <= nLast; ++nByte)
        set.set(nByte);
    return nFirst <= nLast;
}

bool CPatternCompiler::ReadClassByte(ByteSet& set) {
    // Named classes are not known; refused, so that nobody takes them for known.
    if (SkipIf("[:") || SkipIf("[.") || SkipIf("[="))
        return false;
    if (SkipIf("\\"))
        return ReadEscape(set);
    set = Single(static_cast<unsigned char>(m_pattern[m_nAt++]));
    return true;
}

Fragment CPatternCompiler::NewState(PatternState::Kind kind) {
    const auto nState = static_cast<StateIndex>(m_states.size());
    m_states.push_back({kind});
    return {nState, nState};
}

Fragment CPatternCompiler::NewSet(const ByteSet& set) {
    const Fragment fragment = NewState(PatternState::Kind::kByte);
    m_states.back().nSet = static_cast<std::uint32_t>(m_sets.size());
    m_sets.push_back(set);
    return fragment;
}

void CPatternCompiler::AppendSet(ByteSet set) {
    Append(NewSet(set), true);
}

void CPatternCompiler::Append(Fragment element, bool bMayRepeat) {
    FinishElement();
    m_levels.back().last = element;
    m_levels.back().bLastMayRepeat = bMayRepeat;
}

Fragment CPatternCompiler::Join(Fragment first, Fragment second) {
    m_states[first.nEnd].nNext = second.nStart;
    return {first.nStart, second.nEnd};
}

Fragment CPatternCompiler::Either(Fragment first, Fragment second) {
    const StateIndex nSplit = NewState(PatternState::Kind::kSplit).nStart;
    const StateIndex nEnd = NewState(PatternState::Kind::kPass).nStart;
    m_states[nSplit].nNext = first.nStart;
    m_states[nSplit].nOther = second.nStart;
    m_states[first.nEnd].nNext = nEnd;
    m_states[second.nEnd].nNext = nEnd;
    return {nSplit, nEnd};
}

void CPatternCompiler::FinishElement() {
    Level& level = m_levels.back();
    if (!level.last)
        return;
    level.sequence = level.sequence ? Join(*level.sequence, *level.last) : *level.last;
    level.last.reset();
}

void CPatternCompiler::FinishAlternative() {
    FinishElement();
    Level& level = m_levels.back();
    const Fragment sequence =
        level.sequence ? *level.sequence : NewState(PatternState::Kind::kPass);
    level.alternatives = level.alternatives ? Either(*level.alternatives, sequence) : sequence;
    level.sequence.reset();
}

Fragment CPatternCompiler::CloseLevel() {
    FinishAlternative();
    return *m_levels.back().alternatives;
}

void CPatternCompiler::FoldCase(ByteSet& set) const {
    if (!m_bIgnoreCase)
        return;
    for (std::size_t nUpper = 'A'; nUpper <= 'Z'; ++nUpper) {
        const std::size_t nLower = nUpper + ('a' - 'A');
        const bool bEither = set[nUpper] || set[nLower];
        set[nUpper] = bEither;
        set[nLower] = bEither;
    }
}

}  // namespace

std::optional<CPatternProgram> CompilePattern(std::string_view pattern, bool bIgnoreCase) {
    if (pattern.size() > kPatternMax)
        return std::nullopt;
    return CPatternCompiler(pattern, bIgnoreCase).Compile();
}

}  // namespace mvp
