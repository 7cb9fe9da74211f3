#include "suite/vkevtsub/vkevtsub.h"

#include "platform/barrier.h"
#include "suite/log_exception.h"
#include "suite/vkevtsub/event_dispatcher.h"

namespace {

mvp::EventDispatcher g_dispatcher;

}  // namespace

VKDelegateSubscriber::VKDelegateSubscriber() = default;

VKDelegateSubscriber::~VKDelegateSubscriber() {
    g_dispatcher.UnSubscribe(*this);
}

int VKDelegateSubscriber::Subscribe(int nEventKind) {
    return mvp::Guarded<int>(
        VKEVTSUB_NO_RESOURCES, [&] { return g_dispatcher.Subscribe(*this, nEventKind); },
        mvp::LogSuiteException("VKEVTSUB", "VKDelegateSubscriber::Subscribe"));
}

int VKDelegateSubscriber::UnSubscribe() {
    return g_dispatcher.UnSubscribe(*this);
}

int VKRaiseEvent(int nEventKind, const char* pszReaderName) {
    return mvp::Guarded<int>(
        VKEVTSUB_NO_RESOURCES, [&] { return g_dispatcher.Raise(nEventKind, pszReaderName); },
        mvp::LogSuiteException("VKEVTSUB", "VKRaiseEvent"));
}

int VKWaitForIdle(unsigned nTimeoutMs) {
    return g_dispatcher.WaitForIdle(nTimeoutMs);
}
