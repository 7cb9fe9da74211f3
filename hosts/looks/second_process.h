// The listener (hosts/listener) to this process: what a screen reader would get of its windows.
#pragma once

#include <windows.h>

#include <string>

#include "platform/handle.h"
#include <nlohmann/json.hpp>

namespace looks {

class SecondProcess {
public:
    // Starts it, and returns when it listens. Throws std::runtime_error when it does not.
    SecondProcess();

    // Gives it an order, as hosts/listener/main.cpp describes them, and returns its answer. This
    // thread's messages are dispatched meanwhile, as the answer is asked of its windows, but for
    // the timers that belong to none. Throws when there is no answer.
    nlohmann::ordered_json Order(const std::string& strOrder);

private:
    std::string ReadLine();

    mvp::KernelHandle m_process;
    mvp::FileHandle m_input;
    mvp::FileHandle m_output;
};

}  // namespace looks
