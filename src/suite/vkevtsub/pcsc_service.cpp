#include "suite/vkevtsub/pcsc_service.h"

#include <utility>

#include "platform/system_library.h"

namespace mvp {
namespace {

static_assert(reader_state::kUnaware == SCARD_STATE_UNAWARE);
static_assert(reader_state::kChanged == SCARD_STATE_CHANGED);
static_assert(reader_state::kPresent == SCARD_STATE_PRESENT);

// The reader that is none: it changes when readers come or go. The upper half of its known state is
// the number of readers.
constexpr char kComingAndGoing[] = R"(\\?PnP?\Notification)";
constexpr DWORD kReaderListMax = 65536;

template <class Function>
bool Resolve(HMODULE hModule, const char* pszName, Function& pFunction) noexcept {
    pFunction = FindFunction<Function>(hModule, pszName);
    return pFunction != nullptr;
}

bool Failed(LONG nResult) noexcept {
    return nResult != SCARD_S_SUCCESS;
}

// The texts that lie one behind the other in `list`, up to an empty one.
std::vector<std::string> SplitList(const std::vector<char>& list) {
    std::vector<std::string> texts;
    std::string text;
    for (const char sign : list) {
        if (sign != '\0') {
            text += sign;
            continue;
        }
        if (text.empty()) {
            break;
        }
        texts.push_back(std::exchange(text, {}));
    }
    return texts;
}

}  // namespace

PcscService::PcscService(std::string strModule)
    : m_strModule(std::move(strModule)), m_end(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

void PcscService::End() noexcept {
    SetEvent(m_end.get());
    const ScopedLock lock(m_contextLock);
    if (m_bConnected) {
        m_pCancel(m_hContext);
    }
}

bool PcscService::Load() {
    if (m_module) {
        return true;
    }
    ModuleHandle module = m_strModule.empty() ? LoadSystemLibrary("winscard.dll")
                                              : ModuleHandle(LoadLibraryA(m_strModule.c_str()));
    if (!module || !Resolve(module.get(), "SCardEstablishContext", m_pEstablishContext) ||
        !Resolve(module.get(), "SCardReleaseContext", m_pReleaseContext) ||
        !Resolve(module.get(), "SCardListReadersA", m_pListReaders) ||
        !Resolve(module.get(), "SCardGetStatusChangeA", m_pGetStatusChange) ||
        !Resolve(module.get(), "SCardCancel", m_pCancel)) {
        return false;
    }
    m_module = std::move(module);
    return true;
}

bool PcscService::Connect() {
    SCARDCONTEXT context = 0;
    if (!Load() || Failed(m_pEstablishContext(SCARD_SCOPE_USER, nullptr, nullptr, &context))) {
        return false;
    }
    const ScopedLock lock(m_contextLock);
    m_hContext = context;
    m_bConnected = true;
    return true;
}

void PcscService::Disconnect() {
    const ScopedLock lock(m_contextLock);
    m_bConnected = false;
    m_pReleaseContext(m_hContext);
}

bool PcscService::ListReaders(std::vector<std::string>& names) {
    names.clear();
    // Asked for the length and then for the list; readers may come in between.
    for (int attempt = 0; attempt < 3; ++attempt) {
        DWORD length = 0;
        LONG result = m_pListReaders(m_hContext, nullptr, nullptr, &length);
        std::vector<char> list(length <= kReaderListMax ? length : 0);
        if (!Failed(result) && !list.empty()) {
            result = m_pListReaders(m_hContext, nullptr, list.data(), &length);
        }
        if (result == SCARD_E_INSUFFICIENT_BUFFER) {
            continue;
        }
        if (!Failed(result)) {
            names = SplitList(list);
        }
        return !Failed(result) || result == SCARD_E_NO_READERS_AVAILABLE;
    }
    return false;
}

ICardService::Wait PcscService::WaitForChange(std::vector<ReaderState>& readers,
                                              unsigned nTimeoutMs) {
    std::vector<SCARD_READERSTATEA> states(readers.size() + 1);
    for (std::size_t i = 0; i < readers.size(); ++i) {
        states[i].szReader = readers[i].strName.c_str();
        states[i].dwCurrentState = readers[i].nKnown;
    }
    states.back().szReader = kComingAndGoing;
    states.back().dwCurrentState = static_cast<DWORD>(readers.size())
                                   << reader_state::kCounterShift;

    // A wait that End cancels before it has begun is not cancelled: it lasts its time.
    const LONG result = m_pGetStatusChange(m_hContext, nTimeoutMs, states.data(),
                                           static_cast<DWORD>(states.size()));
    if (result == SCARD_E_TIMEOUT || result == SCARD_E_CANCELLED) {
        return Wait::Nothing;
    }
    if (result == SCARD_E_UNKNOWN_READER) {
        return Wait::UnknownReader;
    }
    if (Failed(result)) {
        return Wait::Lost;
    }
    for (std::size_t i = 0; i < readers.size(); ++i) {
        readers[i].nNow = states[i].dwEventState;
    }
    return Wait::Reported;
}

bool PcscService::Pause(unsigned nMs) {
    return WaitForSingleObject(m_end.get(), nMs) == WAIT_TIMEOUT;
}

}  // namespace mvp
