#include "looks/listening.h"

#include <utility>
#include <vector>

#include "looks/dialogs.h"
#include "looks/flows.h"
#include "looks/second_process.h"
#include "looks/visitor.h"

namespace looks {

namespace {

using Json = nlohmann::ordered_json;

std::string NumberOf(HWND hWnd) {
    return std::to_string(reinterpret_cast<UINT_PTR>(hWnd));
}

Json PlaceOf(HWND hWindow) {
    RECT client{};
    GetClientRect(hWindow, &client);
    MapWindowPoints(hWindow, nullptr, reinterpret_cast<POINT*>(&client), 2);
    RECT hundred{0, 0, 100, 100};
    const bool units = MapDialogRect(hWindow, &hundred) != FALSE;
    return {{"client", {client.left, client.top, client.right, client.bottom}},
            {"units", units ? Json{hundred.right, hundred.bottom} : Json()},
            {"mirrored", (GetWindowLongPtrA(hWindow, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0}};
}

// `pszOrder` is the listener's for each state.
Json ListenTo(const std::vector<Entry>& entries, const char* pszOrder, const std::string& strOnly,
              int nKeys) {
    Json heard = Json::array();
    const char* kind = "";
    SecondProcess listener;
    const auto listen = [&](const std::string& strDialog, const std::string& strState,
                            HWND hWindow) {
        Json one{{"dialog", strDialog}, {"state", strState}, {"kind", kind}};
        if (strState == kManyKeys) {
            one.update(
                listener.Order("type " + NumberOf(GetFocus()) + ' ' + std::to_string(nKeys)));
        } else {
            one.update(PlaceOf(hWindow));
            one.update(listener.Order(pszOrder + NumberOf(hWindow)));
        }
        heard.push_back(std::move(one));
    };
    Visitor visitor(listen, {});
    for (const Entry& entry : entries) {
        if (strOnly.empty() || strOnly == entry.strName) {
            kind = NameOf(entry.kind);
            visitor.Visit(entry.strName, entry.open, entry.states, Visitor::Closing::Escape);
        }
    }
    return heard;
}

}  // namespace

Json ListenToDialogs(const std::string& strOnly) {
    return ListenTo(AllDialogs(), "read ", strOnly, 0);
}

Json ListenToFlows(const std::string& strOnly, int nKeys) {
    std::vector<Entry> flows = Flows();
    if (Entry broken = BrokenDialog(); strOnly == broken.strName) {
        broken.states.push_back({kManyKeys, {}});
        flows.push_back(std::move(broken));
    }
    return ListenTo(flows, "hear ", strOnly, nKeys);
}

}  // namespace looks
