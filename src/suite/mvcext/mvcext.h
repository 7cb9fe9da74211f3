// mvcext: pattern matching for texts of the suite's users and administrators.
//
//     const CPattern link(".*<.*href\\s*=.*>.*");
//     if (link.IsMatched(pszMessage)) ...
//
// A pattern is a regular expression over 8-bit texts:
//
//     c            the character itself
//     .            every character, line ends included
//     [abc] [a-z]  one of a class; [^...] one that is not in it
//     \d \s \w     digit, white space, letter or digit or _; \D \S \W one that is not
//     \t \n \r \f \v \xHH, \ and a punctuation character: that one character
//     * + ?        any number, one or more, at most one of what stands before
//     | ( )        either; a group, also written (?: )
//     ^ $          the begin and the end of the text
//
// The whole text must match, so what may stand anywhere in it is written with .* at both ends.
// Letters are those of ASCII, also where case is ignored. Matching takes time and memory in
// proportion to the lengths of pattern and text, whatever they are: hostile ones cost no more.
//
// A malformed pattern, or one of more than 4096 bytes, matches nothing, and IsValid() tells it.
// Back references, counted repetition ({n,m}), look-ahead and named classes ([:alpha:]) do not
// exist and are malformed.
#pragma once

#if !defined(_WIN32)
#define MVCEXT_API
#elif defined(MVCEXT_EXPORTS)
#define MVCEXT_API __declspec(dllexport)
#else
#define MVCEXT_API __declspec(dllimport)
#endif

namespace mvp {
class PatternProgram;
}

// Once made, a pattern may be used by several threads at a time. No function throws.
class MVCEXT_API CPattern {
public:
    // Null counts as malformed. The pattern's text is not kept.
    explicit CPattern(const char* pszPattern, bool bIgnoreCase = false) noexcept;
    CPattern(const CPattern&) = delete;
    CPattern& operator=(const CPattern&) = delete;
    ~CPattern();

    // False when the pattern is malformed or memory ran out when it was made.
    bool IsValid() const noexcept;

    // Whether the whole text matches. False for null, and when memory runs out.
    bool IsMatched(const char* pszText) const noexcept;

private:
    mvp::PatternProgram* m_pProgram = nullptr;  // owned; null when the pattern is not valid
};
