// A library that uses vkevtsub, as a host's would, and can be loaded and freed with it.
#include <windows.h>

#include <atomic>

#include <vkevtsub/vkevtsub.h>

namespace {

// Never returns from an event of the reader "hang".
class Client : public VKDelegateSubscriber {
public:
    ~Client() override { UnSubscribe(); }
    void HandleEvent(const VKEvent& event) override {
        ++m_nCalls;
        Sleep(*event.pszReaderName == 'h' ? INFINITE : 0);
    }
    bool Start(const char* pszReader) {
        return Subscribe(VKEVENT_CARD_REMOVED) == VKEVTSUB_OK &&
               VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader) == VKEVTSUB_OK;
    }

    std::atomic<int> m_nCalls{0};
};

Client g_hanging;

}  // namespace

// Subscribes, raises an event, waits for it and unsubscribes. Whether all of that went well.
extern "C" __declspec(dllexport) bool ClientUseOnce() {
    Client client;
    return client.Start("A") && VKWaitForIdle(20000) == VKEVTSUB_OK && client.m_nCalls == 1;
}

// Subscribes an object that lives as long as the library and whose HandleEvent never returns;
// returns when that is running.
extern "C" __declspec(dllexport) void ClientHang() {
    for (g_hanging.Start("hang"); g_hanging.m_nCalls == 0; Sleep(1)) {
    }
}
