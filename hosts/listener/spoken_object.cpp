#include "listener/spoken_object.h"

#include <oleacc.h>

#include <string>
#include <vector>

#include "common/accessible.h"
#include "common/thread_windows.h"
#include "common/utf8.h"
#include "listener/stock_controls.h"

namespace listener {

namespace {

using Json = nlohmann::ordered_json;
using mvp::Accessible;

using TextGetter = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, BSTR*);

// The answer to a question for a text. No text and an empty one are the same to a listener.
struct Answer {
    HRESULT hr = E_FAIL;
    std::string strText;
};

Answer Ask(const Accessible& object, TextGetter getter, long nChild) {
    BSTR str = nullptr;
    Answer answer;
    answer.hr = (object.get()->*getter)(mvp::Child(nChild), &str);
    if (str != nullptr) {
        answer.strText = mvp::Utf8(std::wstring(str, SysStringLen(str)));
        SysFreeString(str);
    }
    return answer;
}

void Tell(Json& told, const char* pszKey, const std::string& strText) {
    if (!strText.empty()) {
        told[pszKey] = strText;
    }
}

template <UINT(WINAPI* pfnText)(DWORD, LPWSTR, UINT)>
std::string Word(long nWhich) {
    wchar_t word[100] = L"";
    pfnText(static_cast<DWORD>(nWhich), word, 100);
    return mvp::Utf8(word);
}

Json StatesOf(long nState) {
    Json words = Json::array();
    for (int bit = 0; bit < 31; ++bit) {
        if ((nState & (1L << bit)) != 0) {
            words.push_back(Word<GetStateTextW>(1L << bit));
        }
    }
    return words;
}

Json RectOf(const Accessible& object, long nChild) {
    long left = 0;
    long top = 0;
    long width = 0;
    long height = 0;
    object.get()->accLocation(&left, &top, &width, &height, mvp::Child(nChild));
    return {left, top, width, height};
}

// A class that the framework has registered has the numbers of its parts behind its name.
std::string KindOf(HWND hWnd) {
    const std::string name = mvp::ClassOf(hWnd);
    return name.substr(0, name.find(':'));
}

Json Describe(const Accessible& object, HWND hWnd, long nChild) {
    StockFacts facts{object.Number(&IAccessible::get_accRole, mvp::Child(nChild)),
                     object.Number(&IAccessible::get_accState, mvp::Child(nChild)),
                     Ask(object, &IAccessible::get_accDefaultAction, nChild).strText};
    std::string name = Ask(object, &IAccessible::get_accName, nChild).strText;
    const StockFacts stock = StockFactsOf(hWnd, facts.nState);
    if (stock.nRole != ROLE_SYSTEM_CLIENT && nChild == CHILDID_SELF) {
        facts.nState = stock.nState;
        if (facts.nRole == ROLE_SYSTEM_CLIENT) {
            facts = stock;
            name = facts.bLabelled ? mvp::Utf8(LabelOf(hWnd)) : name;
        }
    }
    Json told{{"window", reinterpret_cast<UINT_PTR>(hWnd)},
              {"child", nChild},
              {"class", KindOf(hWnd)},
              {"role", Word<GetRoleTextW>(facts.nRole)}};
    Tell(told, "name", name);
    const Answer value = Ask(object, &IAccessible::get_accValue, nChild);
    if (value.hr == E_ACCESSDENIED) {
        told["value"] = nullptr;
    } else {
        Tell(told, "value", value.strText);
    }
    Tell(told, "shortcut", Ask(object, &IAccessible::get_accKeyboardShortcut, nChild).strText);
    Tell(told, "description", Ask(object, &IAccessible::get_accDescription, nChild).strText);
    Tell(told, "action", facts.strAction);
    told["states"] = StatesOf(facts.nState);
    told["rect"] = RectOf(object, nChild);
    return told;
}

// The parts of an object that have no object of their own, and the windows in its window. The
// latter are taken from the system, which also makes the objects for them: not every one hands out
// those of another process each time.
Json ChildrenOf(const Accessible& object, HWND hWnd) {
    long count = 0;
    object.get()->get_accChildCount(&count);
    std::vector<VARIANT> children(static_cast<std::size_t>(count));
    AccessibleChildren(object.get(), 0, count, children.data(), &count);
    Json told = Json::array();
    for (VARIANT& child : children) {
        if (child.vt == VT_I4) {
            told.push_back(Describe(object, hWnd, child.lVal));
        }
        VariantClear(&child);
    }
    for (HWND window = GetWindow(hWnd, GW_CHILD); window != nullptr;
         window = GetWindow(window, GW_HWNDNEXT)) {
        if (IsWindowVisible(window)) {
            told.push_back(TreeOf(window));
        }
    }
    return told;
}

}  // namespace

Json ObjectOfEvent(HWND hWnd, long nObject, long nChild) {
    Accessible object;
    VARIANT child{};
    if (AccessibleObjectFromEvent(hWnd, static_cast<DWORD>(nObject), static_cast<DWORD>(nChild),
                                  object.put(), &child) != S_OK) {
        return nullptr;
    }
    return Describe(object, hWnd, child.lVal);
}

Json TreeOf(HWND hWnd) {
    const Accessible object = Accessible::Of(hWnd);
    if (!object) {
        return {{"role", "none"}};
    }
    Json told = Describe(object, hWnd, CHILDID_SELF);
    if (Json children = ChildrenOf(object, hWnd); !children.empty()) {
        told["children"] = std::move(children);
    }
    return told;
}

}  // namespace listener
