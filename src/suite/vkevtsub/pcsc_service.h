// The smart-card service of the system (PC/SC), through winscard.dll, which is loaded when it is
// first needed.
//
// All functions are for the one thread that watches, but End, which any thread may call.
#pragma once

#include <windows.h>
#include <winscard.h>

#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/handle.h"
#include "suite/vkevtsub/card_service.h"

namespace mvp {

class PcscService final : public ICardService {
public:
    // `strModule` is the full path of winscard.dll; empty stands for the system's.
    explicit PcscService(std::string strModule = {});

    // False when it could not be made; it must not be used then.
    bool IsUsable() const noexcept { return static_cast<bool>(m_end); }

    // Ends the watch: every wait returns soon, IsEnding is true from now on.
    void End() noexcept;

    bool Connect() override;
    void Disconnect() override;
    bool ListReaders(std::vector<std::string>& names) override;
    Wait WaitForChange(std::vector<ReaderState>& readers, unsigned nTimeoutMs) override;
    bool IsEnding() override { return !Pause(0); }
    bool Pause(unsigned nMs) override;

private:
    bool Load();

    std::string m_strModule;
    ModuleHandle m_module;
    decltype(&SCardEstablishContext) m_pEstablishContext = nullptr;
    decltype(&SCardReleaseContext) m_pReleaseContext = nullptr;
    decltype(&SCardListReadersA) m_pListReaders = nullptr;
    decltype(&SCardGetStatusChangeA) m_pGetStatusChange = nullptr;
    decltype(&SCardCancel) m_pCancel = nullptr;

    KernelHandle m_end;
    // Holds the context still while another thread cancels the wait in it.
    CriticalSection m_contextLock;
    SCARDCONTEXT m_hContext = 0;
    bool m_bConnected = false;
};

}  // namespace mvp
