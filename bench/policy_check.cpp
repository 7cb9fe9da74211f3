// How many rule checks a second the PIN checker does.
//
// Baseline "bare loop": the bytes of the same four texts hashed one by one, with nothing decided.
// Each figure is the best of several rounds, checker and baseline taking turns, so that a busy
// machine slows both alike.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "policy/pin_policy.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Attempt {
    std::string oldPin, newPin, confirmation;
    mvp::PinTexts Texts() const { return {oldPin, newPin, newPin, confirmation}; }
};

std::string RandomDigits(std::mt19937& engine, std::size_t length) {
    std::string text(length, '0');
    for (char& c : text) {
        c = static_cast<char>('0' + engine() % 10);
    }
    return text;
}

std::vector<Attempt> AllowedAttempts(std::size_t count, std::size_t length) {
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): every run measures the same
    std::mt19937 engine(1);
    std::vector<Attempt> attempts(count);
    for (Attempt& a : attempts) {
        a.newPin = RandomDigits(engine, length);
        a.oldPin = RandomDigits(engine, length);
        a.confirmation = a.newPin;
    }
    return attempts;
}

// Every rule reads its text to the end, and the last byte decides.
std::vector<Attempt> WorstAttempts(std::size_t count, std::size_t length) {
    std::vector<Attempt> attempts(count);
    for (Attempt& a : attempts) {
        a.newPin.assign(length, '7');
        a.oldPin = a.newPin;
        a.oldPin.back() = '8';
        a.confirmation = a.newPin;
    }
    return attempts;
}

volatile unsigned g_sink;

template <class Body>
double Seconds(const std::vector<Attempt>& attempts, std::size_t repeats, Body body) {
    unsigned sum = 0;
    const Clock::time_point start = Clock::now();
    for (std::size_t i = 0; i < repeats; ++i) {
        for (const Attempt& a : attempts) {
            sum += body(a.Texts());
        }
    }
    const std::chrono::duration<double> took = Clock::now() - start;
    g_sink = sum;
    return took.count();
}

unsigned HashBytes(const mvp::PinTexts& texts) {
    unsigned sum = 0;
    for (const std::string_view text :
         {texts.oldValue, texts.value, texts.newValue, texts.confirmValue}) {
        for (const char c : text) {
            sum = sum * 31 + static_cast<unsigned char>(c);
        }
    }
    return sum;
}

void Measure(const char* name, const std::vector<Attempt>& attempts, std::size_t repeats) {
    const PwdRuleArgs record = {0, 1, 1, 1, 4, MVP_NO_PIN_LENGTH_RULE - 1, 0};
    const mvp::PinRules rules(&record);
    double checker = std::numeric_limits<double>::max();
    double baseline = checker;
    for (int round = 0; round < 7; ++round) {
        checker = std::min(checker, Seconds(attempts, repeats, [&rules](const mvp::PinTexts& t) {
                               return unsigned{mvp::CheckPin(rules, t).Verdict()};
                           }));
        baseline = std::min(baseline, Seconds(attempts, repeats, HashBytes));
    }
    const auto count = static_cast<double>(attempts.size() * repeats);
    std::printf("%-34s %12.3f M checks/s   bare loop %12.3f M/s   ratio %5.2f\n", name,
                count / checker / 1e6, count / baseline / 1e6, checker / baseline);
}

}  // namespace

int main() {
    std::puts("all six rules in force; ratio = time of the checker / time of the bare loop");
    Measure("8 digits, allowed", AllowedAttempts(1024, 8), 1000);
    Measure("8 digits, every rule reads all", WorstAttempts(1024, 8), 1000);
    Measure("40 characters, every rule reads all", WorstAttempts(1024, 40), 300);
    Measure("10,000 characters", WorstAttempts(8, 10'000), 100);
    Measure("100,000 characters", WorstAttempts(8, 100'000), 10);
    return 0;
}
