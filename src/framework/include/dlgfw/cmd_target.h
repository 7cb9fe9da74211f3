// CCmdTarget: the root of everything that has a message map.
//
// A class declares its map with DECLARE_MESSAGE_MAP and defines it with the macros of
// message_map.h. Maps are searched from the most derived class to the root.
#pragma once

#include <dlgfw/afx_export.h>

class CCmdTarget;

// A message on its way to a handler. For commands and control notifications wParam is the
// identifier; for WM_NOTIFY lParam is the NMHDR*.
struct AFX_MSGCALL {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

// Unpacks a call and runs one particular handler. FALSE when the handler leaves the message to
// others.
using AFX_THUNK = BOOL (*)(CCmdTarget* pTarget, const AFX_MSGCALL& call, LRESULT& lResult);

struct AFX_MSGMAP_ENTRY {
    UINT nMessage;
    UINT nCode;  // control notification code
    UINT nID;    // first and last control identifier
    UINT nLastID;
    const UINT* pnRegistered;  // the variable that holds a registered message's number
    AFX_THUNK pfnThunk;        // null ends the map
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();  // null at the root
    const AFX_MSGMAP_ENTRY* lpEntries;
};

// What OnCmdMsg finds when it is asked for the handler and not to run it.
struct AFX_CMDHANDLERINFO {
    CCmdTarget* pTarget;
    AFX_THUNK pfnThunk;
};

// What OnCmdMsg gets as pExtra for a WM_NOTIFY.
struct AFX_NOTIFY {
    LRESULT* pResult;
    NMHDR* pNMHDR;
};

// nCode of a menu or accelerator command.
constexpr int CN_COMMAND = 0;

// Stands at the end of a class's declaration; leaves the access at protected.
#define DECLARE_MESSAGE_MAP()                     \
protected:                                        \
    static const AFX_MSGMAP* GetThisMessageMap(); \
    const AFX_MSGMAP* GetMessageMap() const override;

class DLGFW_API CCmdTarget {
public:
    CCmdTarget() noexcept = default;
    CCmdTarget(const CCmdTarget&) = delete;
    CCmdTarget& operator=(const CCmdTarget&) = delete;
    virtual ~CCmdTarget();

    // Routes a command or notification to its handler. nCode is the notification code, for
    // WM_NOTIFY the code in the low and WM_NOTIFY in the high word. Returns whether it was handled;
    // with pHandlerInfo only looks the handler up.
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};
