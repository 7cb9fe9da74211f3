#include "listener/event_log.h"

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

#include "listener/spoken_object.h"

namespace listener {

namespace {

struct Kind {
    DWORD dwEvent;
    const char* pszName;
};

// Those that a reader speaks on.
constexpr std::array<Kind, 10> kKinds = {{
    {EVENT_SYSTEM_ALERT, "alert"},
    {EVENT_SYSTEM_FOREGROUND, "foreground"},
    {EVENT_SYSTEM_DIALOGSTART, "dialog start"},
    {EVENT_SYSTEM_DIALOGEND, "dialog end"},
    {EVENT_OBJECT_FOCUS, "focus"},
    {EVENT_OBJECT_SELECTION, "selection"},
    {EVENT_OBJECT_STATECHANGE, "state change"},
    {EVENT_OBJECT_NAMECHANGE, "name change"},
    {EVENT_OBJECT_DESCRIPTIONCHANGE, "description change"},
    {EVENT_OBJECT_VALUECHANGE, "value change"},
}};

const char* NameOf(DWORD dwEvent) {
    for (const Kind& kind : kKinds) {
        if (kind.dwEvent == dwEvent) {
            return kind.pszName;
        }
    }
    return nullptr;
}

struct Event {
    DWORD dwEvent;
    HWND hWnd;
    LONG nObject;
    LONG nChild;
};

DWORD g_dwProcessId = 0;
std::vector<Event> g_events;

void CALLBACK OnEvent(HWINEVENTHOOK, DWORD dwEvent, HWND hWnd, LONG nObject, LONG nChild, DWORD,
                      DWORD) {
    // Asked for the events of one process, not every system finds those of another one than ours.
    DWORD process = 0;
    GetWindowThreadProcessId(hWnd, &process);
    if (process == g_dwProcessId && NameOf(dwEvent) != nullptr) {
        g_events.push_back({dwEvent, hWnd, nObject, nChild});
    }
}

// A later one about the same says it all.
bool IsSuperseded(const Event& event, const Event& later) {
    return event.dwEvent == later.dwEvent &&
           (event.dwEvent == EVENT_OBJECT_FOCUS ||
            (event.hWnd == later.hWnd && event.nObject == later.nObject &&
             event.nChild == later.nChild));
}

}  // namespace

EventLog::EventLog(DWORD dwProcessId)
    : m_hook(SetWinEventHook(EVENT_MIN, EVENT_MAX, nullptr, &OnEvent, 0, 0,
                             WINEVENT_OUTOFCONTEXT | WINEVENT_SKIPOWNPROCESS)) {
    g_dwProcessId = dwProcessId;
    if (m_hook == nullptr) {
        throw std::runtime_error("the system lets nobody listen");
    }
}

EventLog::~EventLog() {
    UnhookWinEvent(m_hook);
}

nlohmann::ordered_json EventLog::Take() {
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageA(&message);
    }
    std::vector<Event> events = std::exchange(g_events, {});
    std::erase_if(events, [](const Event& event) { return !IsWindowVisible(event.hWnd); });
    auto told = nlohmann::ordered_json::array();
    for (auto event = events.begin(); event != events.end(); ++event) {
        bool superseded = false;
        for (auto later = event + 1; later != events.end() && !superseded; ++later) {
            superseded = IsSuperseded(*event, *later);
        }
        if (!superseded) {
            told.push_back({{"event", NameOf(event->dwEvent)},
                            {"object", ObjectOfEvent(event->hWnd, event->nObject, event->nChild)}});
        }
    }
    return told;
}

}  // namespace listener
