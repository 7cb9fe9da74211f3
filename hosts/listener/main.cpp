// listener: what a screen reader would get of another process.
//
//     listener PROCESS     its number; reads orders from the input, a line each, and answers with a
//                          line of JSON
//
//     read WINDOW          {"events": [...], "tree": {...}, "tabs": [...]}: the events since the
//     last
//                          order, the objects of the window, as spoken_object.h describes them, and
//                          the windows in it that Tab goes to
//     hear WINDOW          {"events": [...], "focus": {...}}: the object with the focus, null for
//                          none; and "tree" and "tabs" when it is another window than the last time
//     type WINDOW COUNT    {"events": [...], "unprotected": N}: sends so many characters to the
//                          edit, and counts after which of them it was not a protected text with
//                          its own name and a value that is refused
#include <windows.h>
#include <oleacc.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

#include "common/accessible.h"
#include "listener/event_log.h"
#include "listener/spoken_object.h"
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

class Com {
public:
    Com() {
        if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
            throw std::runtime_error("the system gives no objects");
        }
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() { CoUninitialize(); }
};

bool IsProtected(const mvp::Accessible& edit, const std::string& strName) {
    BSTR str = nullptr;
    const HRESULT value = edit.get()->get_accValue(mvp::Child(CHILDID_SELF), &str);
    SysFreeString(str);
    const long state = edit.Number(&IAccessible::get_accState, mvp::Child(CHILDID_SELF));
    return value == E_ACCESSDENIED && str == nullptr && state != -1 &&
           (state & STATE_SYSTEM_PROTECTED) != 0 &&
           edit.Text(&IAccessible::get_accName, CHILDID_SELF) == strName;
}

// What is asked of the edit takes its turn behind the character before it.
Json Type(HWND hEdit, int nCount) {
    const mvp::Accessible edit = mvp::Accessible::Of(hEdit);
    if (!edit) {
        return -1;
    }
    const std::string name = edit.Text(&IAccessible::get_accName, CHILDID_SELF);
    int unprotected = 0;
    for (int i = 0; i < nCount; ++i) {
        PostMessageA(hEdit, WM_CHAR, i % 2 == 0 ? '5' : VK_BACK, 1);
        unprotected += IsProtected(edit, name) ? 0 : 1;
    }
    return unprotected;
}

Json TabStopsOf(HWND hWindow) {
    Json stops = Json::array();
    const HWND first = GetNextDlgTabItem(hWindow, nullptr, FALSE);
    HWND next = first;
    do {
        stops.push_back(reinterpret_cast<UINT_PTR>(next));
        next = GetNextDlgTabItem(hWindow, next, FALSE);
    } while (next != first && next != nullptr && stops.size() < 100);
    return stops;
}

Json FocusIn(HWND hWindow) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(hWindow, nullptr), &info);
    return info.hwndFocus != nullptr && GetAncestor(info.hwndFocus, GA_ROOT) == hWindow
               ? listener::ObjectOfEvent(info.hwndFocus, OBJID_CLIENT, CHILDID_SELF)
               : Json();
}

void Serve(DWORD dwProcessId) {
    const Com com;
    listener::EventLog log(dwProcessId);
    std::cout << "{}" << std::endl;
    std::string order;
    UINT_PTR handle = 0;
    HWND last = nullptr;
    while (std::cin >> order >> handle) {
        auto* const window = reinterpret_cast<HWND>(handle);
        Json told{{"events", log.Take()}};
        if (order == "type") {
            int count = 0;
            std::cin >> count;
            told["unprotected"] = Type(window, count);
        } else if (order == "hear") {
            told["focus"] = FocusIn(window);
        }
        if (order == "read" || (order == "hear" && window != last)) {
            told["tree"] = listener::TreeOf(window);
            told["tabs"] = TabStopsOf(window);
        }
        last = window;
        std::cout << told.dump() << std::endl;
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) {
            std::fputs("usage: listener PROCESS\n", stderr);
            return 2;
        }
        Serve(static_cast<DWORD>(std::strtoul(argv[1], nullptr, 0)));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "listener: %s\n", error.what());
        return 1;
    }
}
