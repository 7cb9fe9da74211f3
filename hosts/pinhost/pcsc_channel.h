// A card in a reader of the system's smart-card service (PC/SC), through winscard.dll, which is
// loaded when a real card is asked for: the host runs on systems without it.
#pragma once

#include <windows.h>
#include <winscard.h>

#include <memory>
#include <string>

#include "pinhost/apdu_channel.h"
#include "platform/handle.h"

namespace pinhost {

class PcscChannel final : public IApduChannel {
public:
    // Connects with the card in the reader (ANSI); with that of the first reader that has one when
    // there is no name. The connection is shared with other programs. Throws CardError.
    static std::unique_ptr<PcscChannel> Open(const std::string& strReader);
    ~PcscChannel() override;

    // ANSI, as the service calls it.
    const std::string& Reader() const noexcept { return m_strReader; }

    void Begin() override;
    void End(bool bReset) noexcept override;
    Apdu Transmit(std::span<const unsigned char> command) override;
    bool IsGone() override;

private:
    struct Functions {
        decltype(&SCardEstablishContext) pEstablishContext;
        decltype(&SCardReleaseContext) pReleaseContext;
        decltype(&SCardListReadersA) pListReaders;
        decltype(&SCardGetStatusChangeA) pGetStatusChange;
        decltype(&SCardConnectA) pConnect;
        decltype(&SCardReconnect) pReconnect;
        decltype(&SCardDisconnect) pDisconnect;
        decltype(&SCardBeginTransaction) pBeginTransaction;
        decltype(&SCardEndTransaction) pEndTransaction;
        decltype(&SCardTransmit) pTransmit;
    };

    PcscChannel();
    void Load();
    std::string ReaderWithCard() const;
    LONG TryBegin() noexcept;

    mvp::ModuleHandle m_module;
    Functions m_functions{};
    SCARDCONTEXT m_hContext = 0;
    SCARDHANDLE m_hCard = 0;
    DWORD m_dwProtocol = 0;
    bool m_bConnected = false;
    std::string m_strReader;
};

}  // namespace pinhost
