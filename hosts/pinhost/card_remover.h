// Pulls the software card out of its reader some time after the dialog has opened: raises the
// suite's card-removed event.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "platform/handle.h"

namespace pinhost {

class CardRemover {
public:
    // The delay begins when `isOpen`, asked on a thread of the remover's, says so. Throws
    // EnvironmentError when the suite's event module is missing.
    CardRemover(std::string strReader, std::chrono::milliseconds delay,
                std::function<bool()> isOpen);
    CardRemover(const CardRemover&) = delete;
    CardRemover& operator=(const CardRemover&) = delete;
    ~CardRemover() = default;

    // To be called when the library has returned. Whether the card was removed by then.
    bool Finish();

private:
    void Main(const std::stop_token& stop) noexcept;
    void PullCard(const std::stop_token& stop);

    mvp::ModuleHandle m_events;
    int (*m_pRaiseEvent)(int, const char*) = nullptr;
    std::string m_strReader;
    std::chrono::milliseconds m_delay;
    std::function<bool()> m_isOpen;
    bool m_bRemoved = false;
    std::jthread m_thread;  // last: it uses the others
};

}  // namespace pinhost
