// Where strings, dialogs and bitmaps are found.
#include <string>
#include <utility>

#include <dlgfw/dialog.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/module_state.h>
#include <dlgfw/string.h>
#include <gtest/gtest.h>

#include "platform/handle.h"
#include "support/dialog_driver.h"

namespace mvp::test {
namespace {

class ResourceChainTest : public testing::Test {
protected:
    ~ResourceChainTest() override {
        AfxTermExtensionModule(m_stateA);
        AfxTermExtensionModule(m_stateB);
        AfxSetResourceHandle(nullptr);
    }

    static std::string String(UINT nID) {
        CString str("unchanged");
        const bool loaded = str.LoadString(nID) != FALSE;
        EXPECT_EQ(loaded, str != "unchanged");
        return str.GetString();
    }
    static void Link(AFX_EXTENSION_MODULE& state, const ModuleHandle& module) {
        EXPECT_TRUE(AfxInitExtensionModule(state, module.get()));
        new CDynLinkLibrary(state);
    }
    void LinkBoth() {
        Link(m_stateA, m_a);
        Link(m_stateB, m_b);
    }

    const ModuleHandle m_a{LoadLibraryA("chain_a.dll")};
    const ModuleHandle m_b{LoadLibraryA("chain_b.dll")};
    AFX_EXTENSION_MODULE m_stateA;
    AFX_EXTENSION_MODULE m_stateB;
};

TEST_F(ResourceChainTest, LinksAreSearchedNewestFirstAfterTheCurrentHandle) {
    EXPECT_EQ(String(100), "unchanged");
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEA(200), RT_DIALOG), GetModuleHandleA(nullptr));
    Link(m_stateA, m_a);
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEA(200), RT_DIALOG), m_a.get());
    EXPECT_EQ(String(100), "from A");
    Link(m_stateB, m_b);
    EXPECT_EQ(String(100), "from B");
    EXPECT_EQ(String(101), "only in A");  // B has others of the same block
    EXPECT_EQ(String(103), "unchanged");
    CString str;
    EXPECT_TRUE(str.LoadString(m_a.get(), 100));
    EXPECT_FALSE(str.LoadString(m_b.get(), 101));
    EXPECT_STREQ(str, "from A");
    AfxSetResourceHandle(m_a.get());
    EXPECT_EQ(AfxGetResourceHandle(), m_a.get());
    EXPECT_EQ(String(100), "from A");
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleA(nullptr));

    AfxTermExtensionModule(m_stateB);
    EXPECT_EQ(String(100), "from A");
    AfxTermExtensionModule(m_stateA);
    EXPECT_EQ(String(100), "unchanged");
    LinkBoth();
    AfxTermExtensionModule(m_stateA, TRUE);  // all of them
    EXPECT_EQ(String(100), "unchanged");
}

TEST_F(ResourceChainTest, ModuleMayNameAnotherOneForItsResources) {
    EXPECT_TRUE(AfxInitExtensionModule(m_stateB, m_b.get()));
    m_stateB.hResource = m_a.get();
    {
        const CDynLinkLibrary link(m_stateB);
        EXPECT_EQ(String(101), "only in A");
    }
    EXPECT_EQ(String(101), "unchanged");  // it left the chain when it went
    EXPECT_FALSE(AfxInitExtensionModule(m_stateA, nullptr));
    EXPECT_FALSE(m_stateA.bInitialized);
    m_stateB.hResource = nullptr;
    new CDynLinkLibrary(m_stateB);
    EXPECT_EQ(String(101), "unchanged");
}

TEST_F(ResourceChainTest, DialogsAndBitmapsComeFromTheChain) {
    LinkBoth();
    CBitmap bitmap;
    EXPECT_TRUE(bitmap.LoadBitmap(300u));
    EXPECT_FALSE(bitmap.LoadBitmap(301u));
    for (const auto& [number, title] :
         {std::pair{200u, "Dialog of A"}, {201u, "Plain dialog of A"}}) {
        const DialogDriver driver([text = title](Dialog& dialog) {
            EXPECT_EQ(dialog.Title(), text);
            dialog.Click(IDOK);
        });
        EXPECT_EQ(CDialog(number).DoModal(), IDOK);
    }
}

}  // namespace
}  // namespace mvp::test
