// The screen's work area as a test needs it (a task bar at this or that side), put back afterwards.
// What GetMonitorInfo tells does not follow everywhere.
#pragma once

#include <windows.h>

namespace mvp::test {

class WorkArea {
public:
    // In screen coordinates. Throws std::runtime_error when the system refuses.
    explicit WorkArea(const RECT& rect);
    WorkArea(const WorkArea&) = delete;
    WorkArea& operator=(const WorkArea&) = delete;
    ~WorkArea();

    static RECT Now();

private:
    RECT m_before;
};

}  // namespace mvp::test
