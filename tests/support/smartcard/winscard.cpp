// winscard.dll for tests where the system has none that works: what the programs under test call on
// Windows goes to tests/support/smartcard/bridge.py, which asks the smart-card service of the
// machine. The variable MVP_SMARTCARD_PORT says where that listens; without one there is no
// service. MVP_SMARTCARD_CALLER is a name that the bridge knows the program by.
//
// One connection a call, so that a call that waits holds up no other; one more for each context,
// whose end tells the bridge that the program is gone.
#include <windows.h>
#include <winsock2.h>
// The header's declarations are those of this library.
#define WINSCARDAPI __declspec(dllexport)
#include <winscard.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

class Connection {
public:
    Connection() {
        WSADATA data;
        const char* port = std::getenv("MVP_SMARTCARD_PORT");
        if (port == nullptr || WSAStartup(MAKEWORD(2, 2), &data) != 0) {
            return;
        }
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<u_short>(std::strtoul(port, nullptr, 10)));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_socket = socket(AF_INET, SOCK_STREAM, 0);
        m_bOpen = connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        if (m_socket != INVALID_SOCKET) {
            closesocket(m_socket);
        }
    }

    // A line there, a line back, without its end; empty when that fails.
    std::string Ask(std::string strLine) {
        strLine += '\n';
        std::string answer;
        bool going = m_bOpen && send(m_socket, strLine.data(), static_cast<int>(strLine.size()),
                                     0) == static_cast<int>(strLine.size());
        SecureZeroMemory(strLine.data(), strLine.size());
        while (going) {
            char sign = 0;
            going = recv(m_socket, &sign, 1, 0) == 1 && sign != '\n';
            if (going) {
                answer += sign;
            }
        }
        return answer;
    }

private:
    SOCKET m_socket = INVALID_SOCKET;
    bool m_bOpen = false;
};

// What came back: the result, and words after it.
class Answer {
public:
    Answer(Connection& connection, const std::string& strLine) : m_words(connection.Ask(strLine)) {
        unsigned long result = 0;
        if (m_words >> std::hex >> result >> std::dec) {
            m_nResult = static_cast<LONG>(result);
        }
    }

    LONG Result() const { return m_nResult; }
    template <class Number>
    void Take(Number& number) {
        m_words >> number;
    }
    std::vector<BYTE> TakeBytes() {
        std::string text;
        m_words >> text;
        std::vector<BYTE> bytes;
        for (std::size_t i = 1; i + 1 < text.size(); i += 2) {  // a hyphen goes before them
            bytes.push_back(static_cast<BYTE>(std::stoi(text.substr(i, 2), nullptr, 16)));
        }
        return bytes;
    }

private:
    std::istringstream m_words;
    LONG m_nResult = SCARD_E_NO_SERVICE;
};

struct Context {
    Connection connection;
    unsigned long long nId = 0;
};

// Every word of a call, separated by blanks.
template <class... Words>
std::string Line(const Words&... words) {
    std::ostringstream line;
    ((line << words << ' '), ...);
    return line.str();
}

std::string Hex(const void* pBytes, std::size_t cbSize) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "-";
    const auto* bytes = static_cast<const unsigned char*>(pBytes);
    for (std::size_t i = 0; i < cbSize; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

std::string Hex(const char* pszText) {
    return Hex(pszText, std::strlen(pszText));
}

unsigned long long IdOf(SCARDCONTEXT hContext) {
    return reinterpret_cast<const Context*>(hContext)->nId;
}

// As the system's functions do it: the length alone for a null buffer, and the length that is
// needed when the buffer is too small.
LONG CopyOut(const std::vector<BYTE>& bytes, void* pBuffer, DWORD* pcbBuffer) {
    const DWORD room = *pcbBuffer;
    *pcbBuffer = static_cast<DWORD>(bytes.size());
    if (pBuffer == nullptr) {
        return SCARD_S_SUCCESS;
    }
    if (room < bytes.size()) {
        return SCARD_E_INSUFFICIENT_BUFFER;
    }
    std::memcpy(pBuffer, bytes.data(), bytes.size());
    return SCARD_S_SUCCESS;
}

template <class... Words>
LONG Simply(const Words&... words) {
    Connection connection;
    return Answer(connection, Line(words...)).Result();
}

}  // namespace

extern "C" {

WINSCARDAPI LONG WINAPI SCardEstablishContext(DWORD, LPCVOID, LPCVOID, LPSCARDCONTEXT phContext) {
    auto context = std::make_unique<Context>();
    const char* caller = std::getenv("MVP_SMARTCARD_CALLER");
    Answer answer(context->connection, Line("EstablishContext", caller != nullptr ? caller : ""));
    if (answer.Result() == SCARD_S_SUCCESS) {
        answer.Take(context->nId);
        *phContext = reinterpret_cast<SCARDCONTEXT>(context.release());
    }
    return answer.Result();
}

// The end of its connection releases it.
WINSCARDAPI LONG WINAPI SCardReleaseContext(SCARDCONTEXT hContext) {
    delete reinterpret_cast<Context*>(hContext);
    return SCARD_S_SUCCESS;
}

WINSCARDAPI LONG WINAPI SCardCancel(SCARDCONTEXT hContext) {
    return Simply("Cancel", IdOf(hContext));
}

WINSCARDAPI LONG WINAPI SCardListReadersA(SCARDCONTEXT hContext, LPCSTR /*mszGroups*/,
                                          LPSTR mszReaders, LPDWORD pcchReaders) {
    Connection connection;
    Answer answer(connection, Line("ListReaders", IdOf(hContext)));
    return answer.Result() == SCARD_S_SUCCESS ? CopyOut(answer.TakeBytes(), mszReaders, pcchReaders)
                                              : answer.Result();
}

WINSCARDAPI LONG WINAPI SCardGetStatusChangeA(SCARDCONTEXT hContext, DWORD dwTimeout,
                                              LPSCARD_READERSTATEA rgReaderStates, DWORD cReaders) {
    std::string line = Line("GetStatusChange", IdOf(hContext), dwTimeout);
    for (DWORD i = 0; i < cReaders; ++i) {
        line += Line(Hex(rgReaderStates[i].szReader), rgReaderStates[i].dwCurrentState);
    }
    Connection connection;
    Answer answer(connection, line);
    for (DWORD i = 0; i < cReaders && answer.Result() == SCARD_S_SUCCESS; ++i) {
        answer.Take(rgReaderStates[i].dwEventState);
    }
    return answer.Result();
}

WINSCARDAPI LONG WINAPI SCardConnectA(SCARDCONTEXT hContext, LPCSTR szReader, DWORD dwShareMode,
                                      DWORD dwPreferredProtocols, LPSCARDHANDLE phCard,
                                      LPDWORD pdwActiveProtocol) {
    Connection connection;
    Answer answer(connection, Line("Connect", IdOf(hContext), Hex(szReader), dwShareMode,
                                   dwPreferredProtocols));
    if (answer.Result() == SCARD_S_SUCCESS) {
        answer.Take(*phCard);
        answer.Take(*pdwActiveProtocol);
    }
    return answer.Result();
}

WINSCARDAPI LONG WINAPI SCardReconnect(SCARDHANDLE hCard, DWORD dwShareMode,
                                       DWORD dwPreferredProtocols, DWORD dwInitialization,
                                       LPDWORD pdwActiveProtocol) {
    Connection connection;
    Answer answer(connection,
                  Line("Reconnect", hCard, dwShareMode, dwPreferredProtocols, dwInitialization));
    if (answer.Result() == SCARD_S_SUCCESS) {
        answer.Take(*pdwActiveProtocol);
    }
    return answer.Result();
}

WINSCARDAPI LONG WINAPI SCardDisconnect(SCARDHANDLE hCard, DWORD dwDisposition) {
    return Simply("Disconnect", hCard, dwDisposition);
}

WINSCARDAPI LONG WINAPI SCardBeginTransaction(SCARDHANDLE hCard) {
    return Simply("BeginTransaction", hCard);
}

WINSCARDAPI LONG WINAPI SCardEndTransaction(SCARDHANDLE hCard, DWORD dwDisposition) {
    return Simply("EndTransaction", hCard, dwDisposition);
}

WINSCARDAPI LONG WINAPI SCardTransmit(SCARDHANDLE hCard, LPCSCARD_IO_REQUEST pioSendPci,
                                      LPCBYTE pbSendBuffer, DWORD cbSendLength,
                                      LPSCARD_IO_REQUEST /*pioRecvPci*/, LPBYTE pbRecvBuffer,
                                      LPDWORD pcbRecvLength) {
    Connection connection;
    Answer answer(connection,
                  Line("Transmit", hCard, pioSendPci->dwProtocol, Hex(pbSendBuffer, cbSendLength)));
    return answer.Result() == SCARD_S_SUCCESS
               ? CopyOut(answer.TakeBytes(), pbRecvBuffer, pcbRecvLength)
               : answer.Result();
}
}
