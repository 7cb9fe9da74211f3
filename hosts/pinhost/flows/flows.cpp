#include "pinhost/flows/flows.h"

#include <cstdio>

#include <mvpingui/mvpingui.h>

#include "pinhost/flows/change_pin_window.h"
#include "platform/barrier.h"

namespace {

template <class Flow>
std::uint32_t RunFlow(const char* pszName, Flow&& flow) {
    return mvp::Guarded(
        MVPINGUI_REFUSED, [&] { return flow() ? MVPINGUI_OK : MVPINGUI_REFUSED; },
        [=] { std::fprintf(stderr, "pinhost_flows: %s failed\n", pszName); });
}

}  // namespace

extern "C" std::uint32_t PinHostChangePinEmbedded(const PinHostChangePin* pRequest) {
    return RunFlow("the change-PIN window", [=] { return pinhost::ChangePinEmbedded(*pRequest); });
}
