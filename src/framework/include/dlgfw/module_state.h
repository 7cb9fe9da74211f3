// Where resources are looked for, and how a library that extends a host takes part in that.
//
// A library calls AfxInitExtensionModule when it is attached, makes one CDynLinkLibrary over its
// record for each host that wants its resources, and calls AfxTermExtensionModule when it is
// detached:
//
//     static AFX_EXTENSION_MODULE theExtension;
//     AfxInitExtensionModule(theExtension, hInstance);
//     theExtension.hResource = hLocalizedModule;  // when the resources stand in another module
//     new CDynLinkLibrary(theExtension);          // the chain owns it from now on
//     ...
//     AfxTermExtensionModule(theExtension);
//
// The chain and the current resource handle belong to the process and may be used on any thread.
#pragma once

#include <dlgfw/afx_export.h>

struct AFX_EXTENSION_MODULE {
    BOOL bInitialized = FALSE;
    HMODULE hModule = nullptr;    // the library
    HMODULE hResource = nullptr;  // where its resources are; not owned
};

// FALSE, with the record untouched, when hModule is null; TRUE also when the record was
// initialized before, which it then stays.
DLGFW_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
// Deletes the links made over the record, or with bAll every link, and clears the record.
DLGFW_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

// One link of the resource chain. It joins at construction and leaves at destruction; one made with
// `new` is deleted by AfxTermExtensionModule.
class DLGFW_API CDynLinkLibrary {
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state);
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;
    virtual ~CDynLinkLibrary();

    // In the framework's own heap, so that it can delete what a host made.
    static void* operator new(size_t nSize);
    static void operator delete(void* p);

    HMODULE m_hModule;
    HMODULE m_hResource;
    CDynLinkLibrary* m_pNextDLL = nullptr;  // the next older link
};

// The host process's module.
DLGFW_API HINSTANCE AfxGetInstanceHandle();
// The module whose resources are looked at first: the host's, until another one is set. Null sets
// the host's again.
DLGFW_API HINSTANCE AfxGetResourceHandle();
DLGFW_API void AfxSetResourceHandle(HINSTANCE hInstResource);

// The first module that holds the resource: the current resource handle, then the links, newest
// first. The current resource handle when none does.
DLGFW_API HINSTANCE AfxFindResourceHandle(LPCSTR lpszName, LPCSTR lpszType);

// The same for a string resource.
DLGFW_API HINSTANCE AfxFindStringResourceHandle(UINT nID);
