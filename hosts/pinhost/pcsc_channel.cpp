#include "pinhost/pcsc_channel.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/system_library.h"

namespace pinhost {
namespace {

constexpr DWORD kReaderListMax = 65536;
constexpr DWORD kProtocols = SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1;
// Of the commands that a card with an application for its PIN knows, none answers with more.
constexpr std::size_t kAnswerCapacity = 258;
// Others may reset the card between a reconnection and the next try.
constexpr int kBeginAttempts = 3;

const char* WordsFor(LONG nResult) noexcept {
    switch (nResult) {
        case SCARD_E_NO_SERVICE:
        case SCARD_E_SERVICE_STOPPED:
            return "the smart-card service does not run";
        case SCARD_E_NO_READERS_AVAILABLE:
            return "there is no reader";
        case SCARD_E_UNKNOWN_READER:
        case SCARD_E_READER_UNAVAILABLE:
            return "there is no such reader";
        case SCARD_E_NO_SMARTCARD:
            return "there is no card in the reader";
        case SCARD_E_SHARING_VIOLATION:
            return "another program has the card to itself";
        case SCARD_E_NOT_TRANSACTED:
        case SCARD_E_COMM_DATA_LOST:
        case SCARD_W_UNRESPONSIVE_CARD:
        case SCARD_W_UNPOWERED_CARD:
        case SCARD_W_UNSUPPORTED_CARD:
            return "the card does not answer the reader";
        default:
            return "the smart-card service failed";
    }
}

[[noreturn]] void Fail(LONG nResult) {
    if (nResult == SCARD_W_REMOVED_CARD) {
        throw CardGone();
    }
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s (%08lX)", WordsFor(nResult),
                  static_cast<unsigned long>(nResult));
    throw CardError(text.data());
}

void Expect(LONG nResult) {
    if (nResult != SCARD_S_SUCCESS) {
        Fail(nResult);
    }
}

// A card that is pulled while a command runs makes the command fail in many ways.
bool MeansGone(LONG nResult) noexcept {
    return nResult == SCARD_W_REMOVED_CARD || nResult == SCARD_E_NO_SMARTCARD ||
           nResult == SCARD_E_READER_UNAVAILABLE;
}

template <class Function>
void Resolve(HMODULE hModule, const char* pszName, Function& pFunction) {
    pFunction = mvp::FindFunction<Function>(hModule, pszName);
    if (pFunction == nullptr) {
        throw CardError(std::string("winscard.dll lacks ") + pszName);
    }
}

}  // namespace

PcscChannel::PcscChannel() {
    Load();
    Expect(m_functions.pEstablishContext(SCARD_SCOPE_USER, nullptr, nullptr, &m_hContext));
}

void PcscChannel::Load() {
    m_module = mvp::LoadSystemLibrary("winscard.dll");
    if (!m_module) {
        throw CardError("winscard.dll could not be loaded");
    }
    const HMODULE module = m_module.get();
    Resolve(module, "SCardEstablishContext", m_functions.pEstablishContext);
    Resolve(module, "SCardReleaseContext", m_functions.pReleaseContext);
    Resolve(module, "SCardListReadersA", m_functions.pListReaders);
    Resolve(module, "SCardGetStatusChangeA", m_functions.pGetStatusChange);
    Resolve(module, "SCardConnectA", m_functions.pConnect);
    Resolve(module, "SCardReconnect", m_functions.pReconnect);
    Resolve(module, "SCardDisconnect", m_functions.pDisconnect);
    Resolve(module, "SCardBeginTransaction", m_functions.pBeginTransaction);
    Resolve(module, "SCardEndTransaction", m_functions.pEndTransaction);
    Resolve(module, "SCardTransmit", m_functions.pTransmit);
}

std::unique_ptr<PcscChannel> PcscChannel::Open(const std::string& strReader) {
    std::unique_ptr<PcscChannel> channel(new PcscChannel);
    channel->m_strReader = strReader.empty() ? channel->ReaderWithCard() : strReader;
    const LONG result = channel->m_functions.pConnect(
        channel->m_hContext, channel->m_strReader.c_str(), SCARD_SHARE_SHARED, kProtocols,
        &channel->m_hCard, &channel->m_dwProtocol);
    // It has not been there yet: nobody pulled it.
    Expect(result == SCARD_W_REMOVED_CARD ? SCARD_E_NO_SMARTCARD : result);
    channel->m_bConnected = true;
    return channel;
}

PcscChannel::~PcscChannel() {
    if (m_bConnected) {
        m_functions.pDisconnect(m_hCard, SCARD_LEAVE_CARD);
    }
    if (m_hContext != 0) {
        m_functions.pReleaseContext(m_hContext);
    }
}

std::string PcscChannel::ReaderWithCard() const {
    DWORD length = 0;
    Expect(m_functions.pListReaders(m_hContext, nullptr, nullptr, &length));
    if (length > kReaderListMax) {
        Fail(SCARD_E_INSUFFICIENT_BUFFER);
    }
    // Two terminators more than there should be, in case that the last name lacks its own as well.
    std::vector<char> list(length + 2);
    Expect(m_functions.pListReaders(m_hContext, nullptr, list.data(), &length));
    std::vector<SCARD_READERSTATEA> states;
    for (const char* name = list.data(); *name != '\0'; name += std::strlen(name) + 1) {
        states.push_back({});
        states.back().szReader = name;
    }
    if (states.empty()) {
        Fail(SCARD_E_NO_READERS_AVAILABLE);
    }
    Expect(m_functions.pGetStatusChange(m_hContext, 0, states.data(),
                                        static_cast<DWORD>(states.size())));
    for (const SCARD_READERSTATEA& state : states) {
        if ((state.dwEventState & SCARD_STATE_PRESENT) != 0) {
            return state.szReader;
        }
    }
    throw CardError("there is no card in any reader");
}

LONG PcscChannel::TryBegin() noexcept {
    LONG result = SCARD_S_SUCCESS;
    for (int attempt = 0; attempt < kBeginAttempts; ++attempt) {
        result = m_functions.pBeginTransaction(m_hCard);
        if (result != SCARD_W_RESET_CARD) {
            break;
        }
        // Another program has reset the card, and this connection has to take note of that.
        result = m_functions.pReconnect(m_hCard, SCARD_SHARE_SHARED, kProtocols, SCARD_LEAVE_CARD,
                                        &m_dwProtocol);
        if (result != SCARD_S_SUCCESS) {
            break;
        }
        result = SCARD_W_RESET_CARD;
    }
    return MeansGone(result) ? SCARD_W_REMOVED_CARD : result;
}

void PcscChannel::Begin() {
    Expect(TryBegin());
}

void PcscChannel::End(bool bReset) noexcept {
    m_functions.pEndTransaction(m_hCard, bReset ? SCARD_RESET_CARD : SCARD_LEAVE_CARD);
}

Apdu PcscChannel::Transmit(std::span<const unsigned char> command) {
    const SCARD_IO_REQUEST protocol{m_dwProtocol, sizeof(SCARD_IO_REQUEST)};
    Apdu answer(kAnswerCapacity);
    auto length = static_cast<DWORD>(answer.size());
    const LONG result =
        m_functions.pTransmit(m_hCard, &protocol, command.data(),
                              static_cast<DWORD>(command.size()), nullptr, answer.data(), &length);
    Expect(MeansGone(result) ? SCARD_W_REMOVED_CARD : result);
    answer.resize(length);
    return answer;
}

bool PcscChannel::IsGone() {
    const LONG result = TryBegin();
    if (result == SCARD_S_SUCCESS) {
        End(false);
    }
    // A service that is lost takes its cards along.
    return result != SCARD_S_SUCCESS;
}

}  // namespace pinhost
