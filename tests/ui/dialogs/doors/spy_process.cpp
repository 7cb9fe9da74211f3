#include <iostream>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "doors.h"

namespace mvp::test {

// Asked "number of the door, window"; the answer, behind what GoogleTest has said: ">", each piece
// in digits of its own, and an end mark.
constexpr char kEnd = '\x04';

Loot SpyProcess::Open(std::size_t nDoor, HWND hEdit) {
    std::ostringstream order;
    order << nDoor << ' ' << reinterpret_cast<UINT_PTR>(hEdit) << '\n';
    m_process.Write(order.str());
    std::istringstream answer(m_process.ReadUntil(kEnd));
    answer.ignore(std::numeric_limits<std::streamsize>::max(), '>');
    Loot loot;
    for (std::string digits; answer >> digits && digits.front() != kEnd;) {
        std::string& bytes = loot.emplace_back();
        for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
            bytes.push_back(static_cast<char>((digits[i] - 'A') * 16 + (digits[i + 1] - 'A')));
        }
    }
    return loot;
}

// What the second process does, as long as the first one lives.
TEST(SpyProcess, DISABLED_Serve) {
    std::size_t door = 0;
    UINT_PTR edit = 0;
    while (std::cin >> door >> edit) {
        std::string answer = ">";
        for (const std::string& bytes : Doors()[door].open(reinterpret_cast<HWND>(edit))) {
            answer.push_back(' ');
            for (const char ch : bytes) {
                const auto byte = static_cast<unsigned char>(ch);
                answer.push_back(static_cast<char>('A' + byte / 16));
                answer.push_back(static_cast<char>('A' + byte % 16));
            }
        }
        std::cout << answer << ' ' << kEnd << std::flush;
    }
}

}  // namespace mvp::test
