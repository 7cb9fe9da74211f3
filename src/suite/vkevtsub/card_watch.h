// The watch over the readers of the system, on a thread of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "suite/vkevtsub/pcsc_service.h"

namespace mvp {

class CardWatch {
public:
    // Gets the watch that reports, and the reader's name, on the watch's thread. Must not throw.
    using OnRemoved = std::function<void(const CardWatch& watch, const std::string& strReader)>;

    // Starts the thread. Null when that is not possible; may throw std::bad_alloc. `strModule` as
    // for PcscService.
    static std::shared_ptr<CardWatch> Start(OnRemoved onRemoved, const std::string& strModule = {});

    // Tells the thread to end and does not wait for it: a last report may still come.
    void End() noexcept { m_service.End(); }

private:
    CardWatch(OnRemoved onRemoved, const std::string& strModule);
    void Run() noexcept;

    PcscService m_service;
    OnRemoved m_onRemoved;
};

}  // namespace mvp
