// The events that a process raises for screen readers, taken out of its context.
//
// They wait in the queue of this thread until Take is called, so that what is asked about their
// objects does not depend on how fast anybody is.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>

namespace listener {

class EventLog {
public:
    // One at a time. Throws std::runtime_error when the system refuses.
    explicit EventLog(DWORD dwProcessId);
    EventLog(const EventLog&) = delete;
    EventLog& operator=(const EventLog&) = delete;
    ~EventLog();

    // Those since the last time, in their order, each {"event": ..., "object": ...}, about windows
    // that are still there. Of the moves of the focus the last alone: that is where it is.
    nlohmann::ordered_json Take();

private:
    HWINEVENTHOOK m_hook;
};

}  // namespace listener
