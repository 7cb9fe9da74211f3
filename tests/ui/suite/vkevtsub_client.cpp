#include "vkevtsub_client.h"

#include <windows.h>

#include <atomic>

#include <vkevtsub/vkevtsub.h>

namespace {

class CClient : public VKDelegateSubscriber {
public:
    explicit CClient(bool bHangs) : m_bHangs(bHangs) {}
    ~CClient() override { UnSubscribe(); }
    void HandleEvent(const VKEvent&) override {
        ++m_nCalls;
        if (m_bHangs)
            Sleep(INFINITE);
    }
    bool Start() {
        return Subscribe(VKEVENT_CARD_REMOVED) == VKEVTSUB_OK &&
               VKRaiseEvent(VKEVENT_CARD_REMOVED, "A") == VKEVTSUB_OK;
    }
    int Calls() const { return m_nCalls; }

private:
    bool m_bHangs;
    std::atomic<int> m_nCalls{0};
};

CClient g_hanging(true);

}  // namespace

bool ClientUseOnce() {
    CClient client(false);
    return client.Start() && VKWaitForIdle(20000) == VKEVTSUB_OK && client.Calls() == 1;
}

void ClientHang() {
    g_hanging.Start();
    while (g_hanging.Calls() == 0)
        Sleep(1);
}
