// That nobody but the dialog learns what was typed: every door, tried by a second process and by a
// second thread, on the system's own edits, which give it up, and on every field of the library.
//
// With ctest's -V it prints the table of docs/security.md.
#include "pinspy/doors.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "common/accessible.h"
#include "common/patched_imports.h"
#include "mvpingui/caps_lock_sensitive_edit.h"
#include "pinspy/loot_text.h"
#include "secret_fields.h"
#include "services/log.h"
#include "support/memory_scan.h"
#include "support/recording/recording.h"
#include "support/waiting.h"
#include "ui/support/child_process.h"

namespace mvp::test {

using namespace spy;

namespace {

// The second process.
class SpyProcess {
public:
    Loot Open(std::size_t nDoor, HWND hEdit) {
        m_process.Write(std::to_string(nDoor) + " " +
                        std::to_string(reinterpret_cast<UINT_PTR>(hEdit)) + "\n");
        return FromText(m_process.ReadUntil(kEnd));
    }

private:
    ChildProcess m_process{"\"" + OwnFolder() + R"(..\bin\pinspy.exe" --serve)"};
};

// --- What a door gave ---

// Whether any four characters of the secret stand there in its order.
bool HoldsRun(std::string_view bytes, const Secret& secret) {
    constexpr std::size_t kRun = 4;
    for (std::size_t first = 0; first + kRun <= secret.size(); ++first) {
        for (const bool wide : {false, true}) {
            std::string run(wide ? 2 * kRun - 1 : kRun, '\0');
            for (std::size_t i = 0; i < kRun; ++i) {
                run[wide ? 2 * i : i] = secret[first + i];
            }
            if (bytes.find(run) != std::string_view::npos) {
                return true;
            }
        }
    }
    return false;
}

bool Tells(const Loot& loot, const Secret& secret) {
    return std::ranges::any_of(loot, [&](std::string_view got) {
        const std::string_view bytes = got.substr(1);
        switch (got.front()) {
            case 't':
                return HoldsRun(bytes, secret);
            case 'c':
                return bytes.front() == secret[0];
            case 'w':
                return bytes.find_first_not_of(bytes.substr(0, 1)) != std::string_view::npos;
            default:
                return got.front() == 'i';
        }
    });
}

// --- Fields ---

enum class Held { Nothing, Secret, Other };

// What the field's own thread has of it.
Held HeldBy(const Dialog& d, const Field& field, const Secret& secret) {
    CString text;
    d.Run([&] {
        const HWND edit = d.Control(field.nId);
        if (auto* own = static_cast<CCapsLockSensitiveEdit*>(CWnd::FromHandlePermanent(edit))) {
            own->ReadSecret(text);
        } else {
            GetWindowTextA(edit, text.GetBuffer(100), 100);
            text.ReleaseBuffer();
        }
    });
    return text.IsEmpty() ? Held::Nothing : Is(text, secret) ? Held::Secret : Held::Other;
}

void Empty(Dialog& d, const Field& field) {
    PostMessageA(d.Control(field.nId), EM_SETSEL, 0, -1);
    PostMessageA(d.Control(field.nId), WM_CHAR, VK_BACK, 1);
    d.Settle();
}

void FocusElsewhere(Dialog& d) {
    d.Focus(d.IsEnabled(IDOK) ? IDOK : IDCANCEL);
}

void Fill(Dialog& d, const Field& field, const Secret& secret) {
    if (field.bTyped) {
        Empty(d, field);
        d.Type(field.nId, secret);
        FocusElsewhere(d);
    }
    EXPECT_TRUE(field.nId == Rich || HeldBy(d, field, secret) == Held::Secret) << field.strName;
}

// How one of Doors() is tried.
using Spy = std::function<Loot(std::size_t nDoor, HWND hEdit)>;

// A try of a door by a spy, both by their numbers.
struct Try {
    std::size_t nDoor;
    std::size_t nSpy;
};
using Wanted = std::function<bool(const Try&)>;
using Tell = std::function<void(const Try&, bool bOpen)>;

class Spies {
public:
    // Leaves the field as it was.
    void TryDoors(Dialog& d, const Field& field, const Wanted& isWanted, const Tell& tell) {
        std::map<DoorKind, std::vector<Try>> tries;
        for (std::size_t door = 0; door < Doors().size(); ++door) {
            for (const Try& one : {Try{door, 0}, Try{door, 1}}) {
                if (isWanted(one)) {
                    tries[Doors()[door].kind].push_back(one);
                }
            }
        }
        for (const auto& [kind, all] : tries) {
            if (kind == DoorKind::Picture) {
                ComparePictures(d, field, all, tell);
                continue;
            }
            for (const Try& one : all) {
                bool learns = false;
                for (int i = 0; i < Doors()[one.nDoor].nTimes; ++i) {
                    learns = Learns(d, field, one) || learns;
                }
                tell(one, learns);
            }
            MakeReady(d, field, DoorKind::Plain);
        }
    }

private:
    Loot Open(const Dialog& d, const Field& field, const Try& one) {
        return m_spies[one.nSpy](one.nDoor, d.Control(field.nId));
    }
    static void MakeReady(Dialog& d, const Field& field, DoorKind kind) {
        const Held held = HeldBy(d, field, field.secret);
        if (kind == DoorKind::Undo && held != Held::Nothing) {
            Empty(d, field);
        } else if (kind != DoorKind::Undo && held != Held::Secret) {
            Fill(d, field, field.secret);
        }
        if (kind == DoorKind::Keys) {
            d.Focus(field.nId);
            d.RealKey(VK_SHIFT);  // which brings the dialog to the foreground
        } else {
            FocusElsewhere(d);
        }
    }
    bool Learns(Dialog& d, const Field& field, const Try& one) {
        const DoorKind kind = Doors()[one.nDoor].kind;
        MakeReady(d, field, kind);
        return Tells(Open(d, field, one), field.secret) ||
               (kind == DoorKind::Change && HeldBy(d, field, field.secret) != Held::Secret) ||
               (kind == DoorKind::Undo && HeldBy(d, field, field.secret) != Held::Nothing);
    }
    void ComparePictures(Dialog& d, const Field& field, const std::vector<Try>& tries,
                         const Tell& tell) {
        using namespace std::chrono_literals;
        const auto takeAll = [&] {
            std::vector<Loot> all;
            all.reserve(tries.size());
            for (const Try& one : tries) {
                all.push_back(Open(d, field, one));
            }
            return all;
        };
        const std::vector<Loot> first = takeAll();
        Fill(d, field, m_other);
        std::vector<Loot> second;
        WaitFor(300ms, [&] { return (second = takeAll()) == first; });
        for (std::size_t i = 0; i < tries.size(); ++i) {
            tell(tries[i], first[i] != second[i]);
        }
        Fill(d, field, field.secret);
    }

    const Secret m_other;
    SpyProcess m_process;
    const Spy m_spies[2] = {
        [this](std::size_t nDoor, HWND hEdit) { return m_process.Open(nDoor, hEdit); },
        [](std::size_t nDoor, HWND hEdit) { return Doors()[nDoor].open(hEdit); }};
};

bool IsFor(const Try& one, const Field& field) {
    switch (Doors()[one.nDoor].kind) {
        case DoorKind::Inside:
            return one.nSpy == 1;
        case DoorKind::Picture:
            return !field.bShown;
        case DoorKind::Undo:
            return field.bTyped;
        default:
            return true;
    }
}

// --- The memory of the process, and the log ---

struct Block {
    ULONG_PTR nBegin;
    SIZE_T nSize;
};
constexpr ULONG_PTR kPage = 4096;
std::vector<Block> g_locked;
std::vector<Block> g_excluded;

bool IsIn(const std::vector<Block>& blocks, ULONG_PTR address) {
    return std::ranges::any_of(blocks, [=](const Block& block) {
        return address >= block.nBegin && address - block.nBegin < block.nSize;
    });
}

BOOL WINAPI Lock(void* p, SIZE_T nSize) {
    g_locked.push_back({reinterpret_cast<ULONG_PTR>(p), nSize});
    return VirtualLock(p, nSize);
}
void Erase(std::vector<Block>& blocks, const void* p) {
    std::erase_if(blocks,
                  [=](const Block& b) { return b.nBegin == reinterpret_cast<ULONG_PTR>(p); });
}
BOOL WINAPI Free(void* p, SIZE_T nSize, DWORD dwType) {
    Erase(g_locked, p);
    return VirtualFree(p, nSize, dwType);
}
HRESULT WINAPI Exclude(const void* p, DWORD dwSize) {
    g_excluded.push_back({reinterpret_cast<ULONG_PTR>(p), dwSize});
    return S_OK;
}
HRESULT WINAPI Include(const void* p) {
    Erase(g_excluded, p);
    return S_OK;
}
// Of a system that leaves out of its error reports what it is told.
FARPROC WINAPI Find(HMODULE hModule, LPCSTR pszName) {
    const std::string_view name(pszName);
    return name == "WerRegisterExcludedMemoryBlock" ? reinterpret_cast<FARPROC>(Address(&Exclude))
           : name == "WerUnregisterExcludedMemoryBlock"
               ? reinterpret_cast<FARPROC>(Address(&Include))
               : GetProcAddress(hModule, pszName);
}

// In how many of the library's pages that are locked and left out of error reports the secret
// stands; -1 when it stands anywhere else.
std::ptrdiff_t PlacesOf(const Secret& secret) {
    std::set<ULONG_PTR> pages;
    for (const MemoryHit& hit : ScanMemory(secret)) {
        if (!IsIn(g_locked, hit.address) || !IsIn(g_excluded, hit.address)) {
            return -1;
        }
        pages.insert(hit.address / kPage);
    }
    return std::ssize(pages);
}

// What the library logs of secrets while this object lives. It keeps no line, which could hold one.
class LogWatch {
public:
    LogWatch() { RecordLogTo(&OnLine, this); }
    LogWatch(const LogWatch&) = delete;
    LogWatch& operator=(const LogWatch&) = delete;
    ~LogWatch() { RecordLogTo(nullptr, nullptr); }

    // Looks for these from now on.
    void LookFor(const std::vector<Field>& fields) {
        const std::lock_guard lock(m_lock);
        m_secrets.clear();
        for (const Field& field : fields) {
            m_secrets.push_back(field.secret);
        }
    }

    int nDetails = 0;  // lines of that level with a piece of a secret, which are stated

private:
    static void OnLine(void* pContext, const char* /*pszTag*/, int nLevel, const char* pszText) {
        auto& watch = *static_cast<LogWatch*>(pContext);
        const std::lock_guard lock(watch.m_lock);
        for (const Secret& secret : watch.m_secrets) {
            if (HoldsRun(pszText, secret)) {
                EXPECT_EQ(nLevel, kLogDetail) << "a line of the log holds a piece of a secret";
                ++watch.nDetails;
            }
        }
    }

    std::mutex m_lock;
    std::vector<Secret> m_secrets;
};

// --- The tests ---

// Of the table.
struct Row {
    std::string stock = "--";
    int nTried[2] = {};
    int nOpen[2] = {};
};

// What a screen reader says of it, which also tells where the user is.
void ExpectProtected(const Dialog& d, const Field& field) {
    d.Run([&] {
        EXPECT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        {
            const Accessible edit = Accessible::Of(d.Control(field.nId));
            const long state = edit.Number(&IAccessible::get_accState, Child(CHILDID_SELF));
            EXPECT_NE(state & STATE_SYSTEM_PROTECTED, 0) << field.strName;
            EXPECT_NE(edit.Text(&IAccessible::get_accName, CHILDID_SELF), "none") << field.strName;
        }
        CoUninitialize();
    });
}

class DoorsTest : public testing::Test {
protected:
    static void TearDownTestSuite() {
        std::cout << "| # | door | stock control, by process and thread "
                     "| fields that gave it up, by process and thread |\n|---|---|---|---|\n";
        for (std::size_t i = 0; i < Doors().size(); ++i) {
            const Row& row = s_rows[i];
            const auto told = [&](int nSpy) {
                return row.nTried[nSpy] == 0 ? "not tried"
                                             : std::to_string(row.nOpen[nSpy]) + " of " +
                                                   std::to_string(row.nTried[nSpy]);
            };
            std::cout << "| " << Doors()[i].nRow << " | " << Doors()[i].pszName << " | "
                      << row.stock[0] << ", " << row.stock[1] << " | " << told(0) << ", " << told(1)
                      << " |\n";
        }
    }

    static inline std::vector<Row> s_rows{Doors().size()};
    Spies m_spies;
};

TEST_F(DoorsTest, TheSystemsControlsGiveUpTheirText) {
    VisitStockControls([&](Dialog& d, const std::vector<Field>& fields) {
        for (const Field& field : fields) {
            const auto first = [](const Try& one) -> char& {
                return s_rows[one.nDoor].stock[one.nSpy];
            };
            Fill(d, field, field.secret);
            m_spies.TryDoors(
                d, field,
                [&](const Try& one) {
                    return IsFor(one, field) && first(one) == NoControl &&
                           (field.nId != Rich || Doors()[one.nDoor].nRow == 9);
                },
                [&](const Try& one, bool bOpen) {
                    first(one) = static_cast<char>(bOpen ? field.nId : NoControl);
                });
        }
        EXPECT_EQ(PlacesOf(fields.front().secret), -1);
        d.Click(IDOK);
    });
    for (std::size_t door = 0; door < Doors().size(); ++door) {
        EXPECT_EQ(s_rows[door].stock, Doors()[door].pszStock) << Doors()[door].pszName;
    }
}

TEST_F(DoorsTest, EveryFieldKeepsItsText) {
    LogWatch log;
    const PatchedImports pages("mvpingui.dll", {{"VirtualLock", Address(&Lock)},
                                                {"VirtualFree", Address(&Free)},
                                                {"GetProcAddress", Address(&Find)}});
    const Visit visit = [&](Dialog& d, const std::vector<Field>& fields) {
        log.LookFor(fields);
        std::multiset<const Secret*> secrets;
        for (const Field& field : fields) {
            Fill(d, field, field.secret);
            secrets.insert(&field.secret);
            ExpectProtected(d, field);
        }
        for (const Field& field : fields) {
            // In one for each edit.
            const auto count = static_cast<std::ptrdiff_t>(secrets.count(&field.secret));
            const std::ptrdiff_t places = count == 0 ? 0 : PlacesOf(field.secret);
            secrets.erase(&field.secret);
            EXPECT_EQ(places, count) << field.strName;
        }
        for (const Field& field : fields) {
            m_spies.TryDoors(
                d, field, [&](const Try& one) { return IsFor(one, field); },
                [&](const Try& one, bool bOpen) {
                    const Door& door = Doors()[one.nDoor];
                    EXPECT_FALSE(bOpen) << field.strName << ": " << door.pszName
                                        << (one.nSpy == 0 ? ", process" : ", thread");
                    ++s_rows[one.nDoor].nTried[one.nSpy];
                    s_rows[one.nDoor].nOpen[one.nSpy] += bOpen ? 1 : 0;
                });
        }
        for (const Block& block : g_locked) {
            EXPECT_EQ(block.nSize, kPage) << "tells the length of a PIN";
        }
        d.Click(IDOK);
    };
    VisitEveryField(visit);
    EXPECT_TRUE(g_excluded.empty());
    EXPECT_GT(log.nDetails, 0);
}

}  // namespace
}  // namespace mvp::test
