#include <algorithm>
#include <atomic>
#include <new>
#include <utility>
#include <vector>

#include <dlgfw/module_state.h>

#include "platform/critical_section.h"

namespace {

// Guards the chain; never held while foreign code runs.
mvp::CriticalSection g_chainLock;
CDynLinkLibrary* g_pFirstLink = nullptr;

// Null stands for the host's module.
std::atomic<HINSTANCE> g_hResource = nullptr;

// The modules to look in, in order.
std::vector<HINSTANCE> ResourceModules() {
    std::vector<HINSTANCE> modules{AfxGetResourceHandle()};
    const mvp::ScopedLock lock(g_chainLock);
    for (const CDynLinkLibrary* link = g_pFirstLink; link != nullptr; link = link->m_pNextDLL) {
        if (link->m_hResource != nullptr) {
            modules.push_back(link->m_hResource);
        }
    }
    return modules;
}

template <class Holds>
HINSTANCE FirstThat(Holds holds) {
    const std::vector<HINSTANCE> modules = ResourceModules();
    const auto it = std::find_if(modules.begin(), modules.end(), holds);
    return it != modules.end() ? *it : modules.front();
}

// A link of the module, or with null any link, taken out of the chain.
CDynLinkLibrary* UnlinkOne(HMODULE hModule) {
    const mvp::ScopedLock lock(g_chainLock);
    for (CDynLinkLibrary** pp = &g_pFirstLink; *pp != nullptr; pp = &(*pp)->m_pNextDLL) {
        if (hModule == nullptr || (*pp)->m_hModule == hModule) {
            CDynLinkLibrary* link = *pp;
            *pp = link->m_pNextDLL;
            return link;
        }
    }
    return nullptr;
}

}  // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
    if (hModule == nullptr) {
        return FALSE;
    }
    if (!state.bInitialized) {
        state = {TRUE, hModule, hModule};
    }
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll) {
    if (!state.bInitialized) {
        return;
    }
    while (CDynLinkLibrary* link = UnlinkOne(bAll ? nullptr : state.hModule)) {
        delete link;
    }
    state = {};
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state)
    : m_hModule(state.hModule), m_hResource(state.hResource) {
    const mvp::ScopedLock lock(g_chainLock);
    m_pNextDLL = std::exchange(g_pFirstLink, this);
}

CDynLinkLibrary::~CDynLinkLibrary() {
    const mvp::ScopedLock lock(g_chainLock);
    for (CDynLinkLibrary** pp = &g_pFirstLink; *pp != nullptr; pp = &(*pp)->m_pNextDLL) {
        if (*pp == this) {
            *pp = m_pNextDLL;
            break;
        }
    }
}

void* CDynLinkLibrary::operator new(size_t nSize) {
    return ::operator new(nSize);
}
void CDynLinkLibrary::operator delete(void* p) {
    ::operator delete(p);
}

HINSTANCE AfxGetInstanceHandle() {
    return GetModuleHandleA(nullptr);
}

HINSTANCE AfxGetResourceHandle() {
    HINSTANCE resource = g_hResource;
    return resource != nullptr ? resource : AfxGetInstanceHandle();
}

void AfxSetResourceHandle(HINSTANCE hInstResource) {
    g_hResource = hInstResource;
}

HINSTANCE AfxFindResourceHandle(LPCSTR lpszName, LPCSTR lpszType) {
    return FirstThat(
        [=](HINSTANCE hInst) { return FindResourceA(hInst, lpszName, lpszType) != nullptr; });
}

// A block of sixteen strings may stand in one module and the string asked for in another, so the
// text itself is what is looked for.
HINSTANCE AfxFindStringResourceHandle(UINT nID) {
    return FirstThat([=](HINSTANCE hInst) {
        char start[2];
        return LoadStringA(hInst, nID, start, static_cast<int>(sizeof(start))) > 0;
    });
}
