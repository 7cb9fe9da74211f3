#include "pinentry/windows/stdio_channel.h"

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/barrier.h"

namespace pinentry {
namespace {

// A client that sends this many requests before the first is answered waits for none of them.
constexpr std::size_t kMaxWaiting = 256;

bool WriteAll(HANDLE hOutput, std::span<const char> bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(hOutput, bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                       nullptr) ||
            written == 0) {
            return false;
        }
        bytes = bytes.subspan(written);
    }
    return true;
}

}  // namespace

// Shared with the thread, which outlives the channel when it waits for a byte.
struct StdioChannel::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<InputLine> lines;
    bool bGone = false;
    HWND hWnd = nullptr;
    UINT nMessage = 0;

    // False when the client sends more than it should.
    bool Push(InputLine&& line) {
        const std::lock_guard lock(mutex);
        if (lines.size() == kMaxWaiting) {
            return false;
        }
        lines.push_back(std::move(line));
        changed.notify_one();
        return true;
    }

    void End() {
        const std::lock_guard lock(mutex);
        bGone = true;
        if (hWnd != nullptr) {
            PostMessageA(hWnd, nMessage, 0, 0);
        }
        changed.notify_one();
    }
};

StdioChannel::StdioChannel(HANDLE hInput, HANDLE hOutput)
    : m_state(std::make_shared<State>()), m_hOutput(hOutput) {
    std::thread([state = m_state, hInput] {
        mvp::Guarded([&] { ReadAll(*state, hInput); }, [] {});
        state->End();
    }).detach();
}

void StdioChannel::ReadAll(State& state, HANDLE hInput) {
    LineReader reader;
    std::array<char, 1024> buffer{};
    bool isTaken = true;
    DWORD length = 0;
    while (isTaken &&
           ReadFile(hInput, buffer.data(), static_cast<DWORD>(buffer.size()), &length, nullptr) &&
           length > 0) {
        reader.Feed({buffer.data(), length},
                    [&](InputLine&& line) { isTaken = isTaken && state.Push(std::move(line)); });
        pinhost::Wipe(buffer.data(), buffer.size());
    }
}

bool StdioChannel::Read(InputLine& line) {
    std::unique_lock lock(m_state->mutex);
    m_state->changed.wait(lock, [&] { return m_state->bGone || !m_state->lines.empty(); });
    if (m_state->lines.empty()) {
        return false;
    }
    line = std::move(m_state->lines.front());
    m_state->lines.pop_front();
    return true;
}

bool StdioChannel::Write(std::span<const char> bytes) {
    return WriteAll(m_hOutput, bytes);
}

void StdioChannel::TellEnd(HWND hWnd, UINT nMessage) {
    const std::lock_guard lock(m_state->mutex);
    m_state->hWnd = hWnd;
    m_state->nMessage = nMessage;
    if (hWnd != nullptr && m_state->bGone) {
        PostMessageA(hWnd, nMessage, 0, 0);
    }
}

bool OutputChannel::Write(std::span<const char> bytes) {
    return WriteAll(m_hOutput, bytes);
}

}  // namespace pinentry
