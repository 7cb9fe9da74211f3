// A window that says more than its text still lets a screen reader into what it holds.
#include "services/named_accessible.h"

#include <gtest/gtest.h>

#include "common/accessible.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

HWND WindowOf(IDispatch* pObject) {
    Accessible object;
    HWND window = nullptr;
    if (pObject != nullptr &&
        pObject->QueryInterface(__uuidof(IAccessible), reinterpret_cast<void**>(object.put())) ==
            S_OK) {
        WindowFromAccessibleObject(object.get(), &window);
        pObject->Release();
    }
    return window;
}

TEST(NamedAccessible, HandsOutTheWindowsInItsWindow) {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    {
        HostWindow host;
        NamedAccessible* object = NamedAccessible::Create(host.m_hWnd, ROLE_SYSTEM_ALERT,
                                                          [] { return std::string("Said"); });
        ASSERT_NE(object, nullptr);
        IDispatch* child = nullptr;
        EXPECT_EQ(object->get_accChild(Child(1), &child), S_OK);
        EXPECT_EQ(WindowOf(child), host.m_ok.m_hWnd);
        EXPECT_NE(object->get_accChild(Child(2), &child), S_OK) << "there is but one";
        object->Disconnect();
        EXPECT_EQ(object->get_accChild(Child(1), &child), CO_E_OBJNOTCONNECTED);
        object->Release();
    }
    CoUninitialize();
}

}  // namespace
}  // namespace mvp::test
