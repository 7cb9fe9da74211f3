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
    for (std::size_t byte = 0; byte < set.size(); ++byte) {
        set[byte] = pHolds(static_cast<unsigned char>(byte));
    }
    return set;
}

int HexDigit(char digit) noexcept {
    const auto byte = static_cast<unsigned char>(digit);
    if (IsDigit(byte)) {
        return digit - '0';
    }
    if (IsBetween(byte, 'a', 'f')) {
        return digit - 'a' + 10;
    }
    return IsBetween(byte, 'A', 'F') ? digit - 'A' + 10 : -1;
}

// The lowest byte of a set that is not empty.
std::size_t FirstOf(const ByteSet& set) noexcept {
    std::size_t byte = 0;
    while (!set[byte]) {
        ++byte;
    }
    return byte;
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

class PatternCompiler {
public:
    PatternCompiler(std::string_view pattern, bool bIgnoreCase)
        : m_pattern(pattern), m_bIgnoreCase(bIgnoreCase), m_levels(1) {}

    std::optional<PatternProgram> Compile() {
        while (!AtEnd()) {
            if (!ReadElement()) {
                return std::nullopt;
            }
        }
        if (m_levels.size() != 1) {
            return std::nullopt;
        }
        const Fragment whole = CloseLevel();
        m_states[whole.nEnd].nNext = NewState(PatternState::Kind::Accept).nStart;
        return PatternProgram(std::move(m_states), std::move(m_sets), whole.nStart);
    }

private:
    bool AtEnd() const noexcept { return m_nAt == m_pattern.size(); }
    bool SkipIf(std::string_view text) noexcept {
        if (m_pattern.substr(m_nAt, text.size()) != text) {
            return false;
        }
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

bool PatternCompiler::ReadElement() {
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
            Append(NewState(PatternState::Kind::TextBegin), false);
            return true;
        case '$':
            Append(NewState(PatternState::Kind::TextEnd), false);
            return true;
        case '.':
            AppendSet(set.set());
            return true;
        case '[':
            if (!ReadClass(set)) {
                return false;
            }
            break;
        case '\\':
            if (!ReadEscape(set)) {
                return false;
            }
            break;
        default:
            set = Single(static_cast<unsigned char>(sign));
            FoldCase(set);
    }
    AppendSet(set);
    return true;
}

bool PatternCompiler::OpenGroup() {
    // Groups capture nothing, so (?: is a plain bracket; the other (? forms are not known.
    if (!SkipIf("?:") && !AtEnd() && m_pattern[m_nAt] == '?') {
        return false;
    }
    m_levels.emplace_back();
    return true;
}

bool PatternCompiler::CloseGroup() {
    if (m_levels.size() == 1) {
        return false;
    }
    const Fragment group = CloseLevel();
    m_levels.pop_back();
    Append(group, true);
    return true;
}

bool PatternCompiler::Repeat(char quantifier) {
    Level& level = m_levels.back();
    if (!level.last || !level.bLastMayRepeat) {
        return false;
    }
    const Fragment body = *level.last;
    const StateIndex split = NewState(PatternState::Kind::Split).nStart;
    const StateIndex end = NewState(PatternState::Kind::Pass).nStart;
    m_states[split].nNext = body.nStart;
    m_states[split].nOther = end;
    m_states[body.nEnd].nNext = quantifier == '?' ? end : split;
    level.last = Fragment{quantifier == '+' ? body.nStart : split, end};
    level.bLastMayRepeat = false;
    // As few as possible rather than as many: the same texts match.
    SkipIf("?");
    return true;
}

// What stands behind a backslash.
bool PatternCompiler::ReadEscape(ByteSet& set) {
    if (AtEnd()) {
        return false;
    }
    const auto sign = static_cast<unsigned char>(m_pattern[m_nAt++]);
    const char* const controls = "t\tn\nr\rf\fv\v";
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
            for (const char* psz = controls; *psz != '\0'; psz += 2) {
                if (static_cast<unsigned char>(psz[0]) == sign) {
                    set = Single(static_cast<unsigned char>(psz[1]));
                    return true;
                }
            }
            return false;
    }
    if (IsBetween(sign, 'A', 'Z')) {
        set.flip();
    }
    return true;
}

bool PatternCompiler::ReadHex(ByteSet& set) {
    if (m_pattern.size() - m_nAt < 2) {
        return false;
    }
    const int high = HexDigit(m_pattern[m_nAt]);
    const int low = HexDigit(m_pattern[m_nAt + 1]);
    if (high < 0 || low < 0) {
        return false;
    }
    m_nAt += 2;
    set = Single(static_cast<unsigned char>(high * 16 + low));
    FoldCase(set);
    return true;
}

// A class, from behind its [ to behind its ].
bool PatternCompiler::ReadClass(ByteSet& set) {
    const bool inverted = SkipIf("^");
    bool empty = true;
    while (!SkipIf("]")) {
        if (AtEnd() || !ReadClassItem(set)) {
            return false;
        }
        empty = false;
    }
    // Elsewhere a ] in the first place may stand for itself; here it must be escaped.
    if (empty) {
        return false;
    }
    FoldCase(set);
    if (inverted) {
        set.flip();
    }
    return true;
}

// A byte, an escape or a range.
bool PatternCompiler::ReadClassItem(ByteSet& set) {
    ByteSet first;
    if (!ReadClassByte(first)) {
        return false;
    }
    // A - stands for itself before the closing ].
    const bool range = m_pattern.substr(m_nAt, 1) == "-" && m_pattern.substr(m_nAt, 2) != "-]";
    if (!range) {
        set |= first;
        return true;
    }
    ++m_nAt;
    ByteSet last;
    if (AtEnd() || !ReadClassByte(last) || first.count() != 1 || last.count() != 1) {
        return false;
    }
    const std::size_t low = FirstOf(first);
    const std::size_t high = FirstOf(last);
    for (std::size_t byte = low; byte <= high; ++byte) {
        set.set(byte);
    }
    return low <= high;
}

bool PatternCompiler::ReadClassByte(ByteSet& set) {
    // Named classes are not known; refused, so that nobody takes them for known.
    if (SkipIf("[:") || SkipIf("[.") || SkipIf("[=")) {
        return false;
    }
    if (SkipIf("\\")) {
        return ReadEscape(set);
    }
    set = Single(static_cast<unsigned char>(m_pattern[m_nAt++]));
    return true;
}

Fragment PatternCompiler::NewState(PatternState::Kind kind) {
    const auto state = static_cast<StateIndex>(m_states.size());
    m_states.push_back({kind});
    return {state, state};
}

Fragment PatternCompiler::NewSet(const ByteSet& set) {
    const Fragment fragment = NewState(PatternState::Kind::Byte);
    m_states.back().nSet = static_cast<std::uint32_t>(m_sets.size());
    m_sets.push_back(set);
    return fragment;
}

void PatternCompiler::AppendSet(ByteSet set) {
    Append(NewSet(set), true);
}

void PatternCompiler::Append(Fragment element, bool bMayRepeat) {
    FinishElement();
    m_levels.back().last = element;
    m_levels.back().bLastMayRepeat = bMayRepeat;
}

Fragment PatternCompiler::Join(Fragment first, Fragment second) {
    m_states[first.nEnd].nNext = second.nStart;
    return {first.nStart, second.nEnd};
}

Fragment PatternCompiler::Either(Fragment first, Fragment second) {
    const StateIndex split = NewState(PatternState::Kind::Split).nStart;
    const StateIndex end = NewState(PatternState::Kind::Pass).nStart;
    m_states[split].nNext = first.nStart;
    m_states[split].nOther = second.nStart;
    m_states[first.nEnd].nNext = end;
    m_states[second.nEnd].nNext = end;
    return {split, end};
}

void PatternCompiler::FinishElement() {
    Level& level = m_levels.back();
    if (!level.last) {
        return;
    }
    level.sequence = level.sequence ? Join(*level.sequence, *level.last) : *level.last;
    level.last.reset();
}

void PatternCompiler::FinishAlternative() {
    FinishElement();
    Level& level = m_levels.back();
    const Fragment sequence = level.sequence ? *level.sequence : NewState(PatternState::Kind::Pass);
    level.alternatives = level.alternatives ? Either(*level.alternatives, sequence) : sequence;
    level.sequence.reset();
}

Fragment PatternCompiler::CloseLevel() {
    FinishAlternative();
    return *m_levels.back().alternatives;
}

void PatternCompiler::FoldCase(ByteSet& set) const {
    if (!m_bIgnoreCase) {
        return;
    }
    for (std::size_t upper = 'A'; upper <= 'Z'; ++upper) {
        const std::size_t lower = upper + ('a' - 'A');
        const bool either = set[upper] || set[lower];
        set[upper] = either;
        set[lower] = either;
    }
}

}  // namespace

std::optional<PatternProgram> CompilePattern(std::string_view pattern, bool bIgnoreCase) {
    if (pattern.size() > kPatternMax) {
        return std::nullopt;
    }
    return PatternCompiler(pattern, bIgnoreCase).Compile();
}

}  // namespace mvp
