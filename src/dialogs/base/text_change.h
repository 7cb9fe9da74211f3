// What the system's control did with a message, told from how long its text was and what was
// selected before and after. The control holds masks in place of the characters; whoever keeps the
// characters makes the same change to them.
#pragma once

#include <algorithm>

namespace mvp {

// In characters, from the beginning of the text; the selection ends before nEnd.
struct EditState {
    int nLength = 0;
    int nBegin = 0;
    int nEnd = 0;

    bool operator==(const EditState&) const = default;
};

// At nFrom, nRemoved characters have made way for the first nInserted of those that were offered.
struct TextChange {
    int nFrom = 0;
    int nRemoved = 0;
    int nInserted = 0;
};

// `nOffered` characters were to replace the selection; 0: something was to be deleted. The control
// may have taken fewer, or have done nothing at all.
constexpr TextChange ChangeBetween(const EditState& before, const EditState& after, int nOffered) {
    if (before == after) {
        return {};
    }
    const int selected = before.nEnd - before.nBegin;
    const int inserted = after.nLength - (before.nLength - selected);
    if (nOffered > 0 && inserted >= 0) {
        return {before.nBegin, selected, std::min(inserted, nOffered)};
    }
    // Where something was deleted the caret stands.
    return {after.nBegin, std::max(0, before.nLength - after.nLength), 0};
}

}  // namespace mvp
