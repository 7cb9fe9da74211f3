#include "support/heap_check.h"

#include <windows.h>

#include <malloc.h>

namespace mvp::test {

bool HeapsAreValid() {
    // The value has no other type than an integer in the runtime's interface.
    auto* const hRuntimeHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    return HeapValidate(hRuntimeHeap, 0, nullptr) != FALSE &&
           HeapValidate(GetProcessHeap(), 0, nullptr) != FALSE;
}

void HeapCheckListener::OnTestEnd(const testing::TestInfo& info) {
    EXPECT_TRUE(HeapsAreValid()) << "a heap is damaged after " << info.test_suite_name() << "."
                                 << info.name();
}

}  // namespace mvp::test
