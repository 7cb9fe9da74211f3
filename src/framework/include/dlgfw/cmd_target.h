// CCmdTarget: the root of everything that has a message map.
//
// A class declares its map with DECLARE_MESSAGE_MAP and defines it with the macros of
// message_map.h. Maps are searched from the most derived class to the root.
#pragma once

#include <dlgfw/afx_export.h>

class CCmdTarget;

// A message on its way to a handler.
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
    UINT nCode;                // control notification code
    UINT nID;                  // control identifier
    const UINT* pnRegistered;  // the variable that holds a registered message's number
    AFX_THUNK pfnThunk;        // null ends the map
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();  // null at the root
    const AFX_MSGMAP_ENTRY* lpEntries;
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

    // Routes a command, or the notification of a control, to its handler. nCode is the
    // notification code. Returns whether it was handled.
    BOOL OnCmdMsg(UINT nID, int nCode);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};
