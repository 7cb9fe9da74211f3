#include "dialogs/base/key_origin.h"

#include <string>

#include <gtest/gtest.h>

#include "dialogs/base/notice_row.h"

namespace mvp {
namespace {

// Messages, four characters each: d(own), u(p), c(haracter), p(aste) or m(enu); the origin,
// h(ardware), s(ystem), i(njected) or - for none, and H or + when another thread sent it; and the
// code in hexadecimal. The verdicts: x for what a program does to the text.
std::string Judge(const std::string& strMessages) {
    KeyJudge judge;
    std::string verdicts;
    for (std::size_t i = 0; i < strMessages.size(); i += 5) {
        const char kind = strMessages[i];
        const char origin = strMessages[i + 1];
        const KeyMessage message{
            kind == 'd'   ? KeyMessage::Kind::Down
            : kind == 'u' ? KeyMessage::Kind::Up
                          : KeyMessage::Kind::Character,
            static_cast<unsigned>(std::stoul(strMessages.substr(i + 2, 2), nullptr, 16)),
            origin == 'h' || origin == 'H' ? KeyOrigin::Hardware
            : origin == 's'                ? KeyOrigin::System
            : origin == 'i'                ? KeyOrigin::Injected
                                           : KeyOrigin::Unavailable,
            origin == 'H' || origin == '+'};
        verdicts += judge.IsInjected(message) ? 'x' : '.';
    }
    return verdicts;
}

TEST(KeyOrigin, TellsPersonsFromPrograms) {
    const struct {
        const char* pszWhat;
        const char* pszMessages;
        const char* pszVerdicts;
    } cases[] = {
        {"a key, and its repetition", "dh41 c-61 dh41 c-61 uh41", "....."},
        {"the touch keyboard", "ds41 c-61 us41", "..."},
        {"a system that tells of characters", "dh41 ch61 ch61 ch61 ci61", "....x"},
        {"a dead key before one it does not go with", "dhDE uhDE dh58 c-5E c-78 c-79", ".....x"},
        {"a program's key", "di41 c-61 ui41", ".x."},
        {"a posted key", "d-41 u-41 c-61", "..x"},
        {"a posted or sent character", "c-61 c+61 cH61", "xxx"},
        {"a sent one beside a person's", "dh41 c+62 c-61 uh41", ".x.."},
        {"a posted one behind a person's", "dh41 c-61 uh41 c-62", "...x"},
        {"an injected one beside a person's", "dh41 ci62 c-61", ".x."},
        {"a program's key behind a person's", "dh41 di42 c-62", "..x"},
        {"a key that another thread sends", "dH41 c-61", ".x"},
        {"a modifier that is held down", "dh10 c-61 dh11 c-61 dh12 c-61", ".x.x.x"},
        {"a capital letter", "dh10 dh41 c-41 uh41 uh10", "....."},
        {"Alt and a number", "dh12 dh66 uh66 uh12 c-41 c-42", ".....x"},
        {"another key's end, and a program's", "dh41 uh41 c-61 ui12 c-61 u-12 c-61", "..x.x.x"},
        {"keys of a program that change the text", "di08 di2D di2E d-2E di56 di58 di5A", "xxxxxxx"},
        {"the same of a person", "dh08 c-08 dh2E dh2D dh56", "....."},
        {"Tab, Enter, Esc, arrows, Home, F1", "di09 di0D di1B di25 di26 di27 di28 di24 di70",
         "........."},
        {"their characters, and selecting", "c-09 c-0A c-0D c-1B c-01 c-03", "......"},
        {"a character that deletes or pastes", "c-08 c-7F c-16 c-18 c-1A", "xxxxx"},
        {"pasting by keys", "dh56 c-16 c-16 c-16", "...x"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Judge(c.pszMessages), c.pszVerdicts) << c.pszWhat;
    }
}

TEST(NoticeRow, KeepsTheRhythmOfTheDialog) {
    constexpr ControlSpan kButton = {200, 300, 260, 323};
    constexpr ControlSpan kEdit = {10, 250, 260, 288};
    const struct {
        const char* pszWhat;
        ControlSpan other;
        int nTop, nGap;
    } cases[] = {
        {"below an edit", {}, 300, 12},
        {"below a lower one", {10, 270, 260, 293}, 300, 7},
        {"touching", {10, 270, 260, 300}, 300, 6},
        {"what is hidden does not count", {10, 270, 260, 299, false}, 300, 12},
        {"a band belongs to the row", {0, 291, 270, 296}, 291, 6},
        {"a hidden one too", {0, 294, 270, 298, false}, 294, 6},
        {"no band, but a picture", {0, 250, 270, 294}, 300, 6},
        {"a band below", {0, 330, 270, 335}, 300, 12},
    };
    for (const auto& c : cases) {
        const ControlSpan controls[] = {kEdit, c.other, kButton};
        const NoticeRow row = FindNoticeRow(controls, kButton, 270, 6, 15);
        EXPECT_EQ(row.nTop, c.nTop) << c.pszWhat;
        EXPECT_EQ(row.nGap, c.nGap) << c.pszWhat;
    }
    EXPECT_EQ(FindNoticeRow({}, kButton, 270, 6, 15).nGap, 15) << "far from everything";
}

}  // namespace
}  // namespace mvp
