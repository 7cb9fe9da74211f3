// No memory for strings of the framework.
//
//     const NoStringMemory none;
//     EXPECT_EQ(readStringFromRegistry_sz(kKey, "Text", &out), -1);
//
// While it lives, every calloc of single bytes in dlgfw.dll fails, on all threads: a CString that
// needs storage throws. The rest goes on, which the language's runtime needs for the exception
// itself.
#pragma once

#include <windows.h>

namespace mvp::test {

class NoStringMemory {
public:
    NoStringMemory();
    NoStringMemory(const NoStringMemory&) = delete;
    NoStringMemory& operator=(const NoStringMemory&) = delete;
    ~NoStringMemory();

private:
    ULONGLONG* m_pImport = nullptr;  // the module's way to calloc
    ULONGLONG m_nCalloc = 0;
};

}  // namespace mvp::test
