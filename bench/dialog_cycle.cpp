// What the framework adds to opening and closing a dialog.
//
// Baseline "DialogBoxIndirect": the system's own modal call on the same template, whose procedure
// ends it as soon as it is initialised. Both are shown for real before they end.
#include <windows.h>

#include <array>
#include <cstring>

#include <dlgfw/dialog.h>
#include <dlgfw/message_map.h>

#include "bench.h"

namespace {

// A template in memory: the records of the system's dialog format, written one after the other.
class Template {
public:
    Template() {
        Put(DLGTEMPLATE{WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME, 0, kControls, 10, 10,
                        160, 80});
        PutWords({0, 0, 0});
        for (WORD i = 0; i < kControls; ++i) {
            Align();
            Put(DLGITEMTEMPLATE{WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 7,
                                static_cast<short>(7 + 14 * i), 100, 12,
                                static_cast<WORD>(100 + i)});
            // Button, edit, static: the classes' ordinals.
            PutWords({0xFFFF, std::array<WORD, 3>{0x0080, 0x0081, 0x0082}.at(i % 3), 0, 0});
        }
    }
    LPCDLGTEMPLATE Get() const { return reinterpret_cast<LPCDLGTEMPLATE>(m_bytes.data()); }

private:
    static constexpr WORD kControls = 5;

    template <class Record>
    void Put(const Record& record) {
        std::memcpy(m_bytes.data() + m_size, &record, sizeof record);
        m_size += sizeof record;
    }
    void PutWords(std::initializer_list<WORD> words) {
        for (const WORD word : words) {
            Put(word);
        }
    }
    void Align() { m_size = (m_size + 3) & ~std::size_t{3}; }

    alignas(4) std::array<BYTE, 512> m_bytes{};
    std::size_t m_size = 0;
};

const Template g_template;

INT_PTR CALLBACK BareProc(HWND hWnd, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) {
        ShowWindow(hWnd, SW_SHOWNORMAL);
        PostMessageA(hWnd, WM_APP, 0, 0);
        return TRUE;
    }
    if (message == WM_APP) {
        EndDialog(hWnd, IDOK);
        return TRUE;
    }
    return FALSE;
}

class BenchDialog : public CDialog {
public:
    BenchDialog() { InitModalIndirect(g_template.Get()); }

protected:
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        ShowWindow(SW_SHOWNORMAL);
        PostMessage(WM_APP, 0, 0);
        return TRUE;
    }
    afx_msg LRESULT OnEnd(WPARAM, LPARAM) {
        EndDialog(IDOK);
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(BenchDialog, CDialog)
    ON_MESSAGE(WM_APP, &BenchDialog::OnEnd)
END_MESSAGE_MAP()

}  // namespace

int main() {
    const auto framework = [] {
        BenchDialog dialog;
        if (dialog.DoModal() != IDOK) {
            std::exit(1);
        }
    };
    const auto bare = [] {
        if (DialogBoxIndirectParamA(GetModuleHandleA(nullptr), g_template.Get(), nullptr, BareProc,
                                    0) != IDOK) {
            std::exit(1);
        }
    };
    mvp::bench::Print("open + close, 5 controls", "DialogBoxIndirect",
                      mvp::bench::Compare(20, framework, bare));
}
