// Every field of the library that takes or shows a secret, in its dialog.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include <dlgfw/dlgfw.h>

#include "support/dialog_driver.h"
#include "support/memory_scan.h"

namespace mvp::test {

struct Field {
    std::string strName;
    int nId;
    const Secret& secret;
    bool bShown = false;  // on purpose, to whoever looks
    bool bTyped = true;
};

// Whether a text is the secret, be it in groups, and no more.
bool Is(const char* pszText, std::size_t nLength, const Secret& secret);
bool Is(const CString& str, const Secret& secret);

// Called with each dialog, open and its fields empty, and not closed: it fills the fields and
// presses OK. What the dialog hands over then must be the secrets.
using Visit = std::function<void(Dialog& d, const std::vector<Field>& fields)>;

void VisitEveryField(const Visit& visit);

// The same for a dialog with controls of the system: an edit, one without ES_PASSWORD, one with
// ES_MULTILINE, a rich edit. Their numbers are those of StockControl.
void VisitStockControls(const Visit& visit);

}  // namespace mvp::test
