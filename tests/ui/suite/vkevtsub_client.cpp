// A library that uses vkevtsub, as a host's would, and can be loaded and freed with it.
#include <windows.h>

#include <atomic>

#include <vkevtsub/vkevtsub.h>

namespace {

class Client : public VKDelegateSubscriber {
public:
    explicit Client(bool bHangs) : m_bHangs(bHangs) {}
    ~Client() override { UnSubscribe(); }
    void HandleEvent(const VKEvent&) override {
        ++m_nCalls;
        if (m_bHangs) {
            Sleep(INFINITE);
        }
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

Client g_hanging(true);

}  // namespace

extern "C" {

// Subscribes, raises an event, waits for it and unsubscribes. Whether all of that went well.
__declspec(dllexport) bool ClientUseOnce() {
    Client client(false);
    return client.Start() && VKWaitForIdle(20000) == VKEVTSUB_OK && client.Calls() == 1;
}

// Subscribes an object that lives as long as the library and whose HandleEvent never returns;
// returns when that is running.
__declspec(dllexport) void ClientHang() {
    g_hanging.Start();
    while (g_hanging.Calls() == 0) {
        Sleep(1);
    }
}

}  // extern "C"
