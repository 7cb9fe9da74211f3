// The client at the process's standard input and output.
//
// A thread of its own reads, so that a client that goes is noticed while a window is open.
#pragma once

#include <windows.h>

#include <memory>

#include "pinentry/core/channel.h"

namespace pinentry {

class StdioChannel : public Channel {
public:
    // Reads and writes the two, which stay the caller's and open until the process ends: a read
    // that waits cannot be called off on every system.
    StdioChannel(HANDLE hInput, HANDLE hOutput);

    bool Read(InputLine& line) override;
    bool Write(std::span<const char> bytes) override;

    // The window gets the message when the client goes, at once if it has gone. Null: none does.
    void TellEnd(HWND hWnd, UINT nMessage);

private:
    struct State;
    static void ReadAll(State& state, HANDLE hInput);

    std::shared_ptr<State> m_state;
    HANDLE m_hOutput;
};

// A channel that only writes.
class OutputChannel : public Channel {
public:
    explicit OutputChannel(HANDLE hOutput) : m_hOutput(hOutput) {}
    bool Read(InputLine& /*line*/) override { return false; }
    bool Write(std::span<const char> bytes) override;

private:
    HANDLE m_hOutput;
};

}  // namespace pinentry
