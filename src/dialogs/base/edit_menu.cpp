#include "dialogs/base/edit_menu.h"

#include <windowsx.h>

#include "platform/handle.h"
#include "resources/resource_numbers.h"
#include "services/resource_module.h"

namespace mvp {

namespace {

struct MenuTraits {
    using Handle = HMENU;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DestroyMenu(handle); }
};
using Menu = UniqueHandle<MenuTraits>;

void Append(const Menu& menu, EditAction action, UINT nText, bool bEnabled) {
    AppendMenuA(menu.get(), UINT{MF_STRING} | (bEnabled ? MF_ENABLED : MF_GRAYED),
                static_cast<UINT_PTR>(action), ResourceString(nText));
}

// The place of the pointer, or the middle of the edit where a key asked for the menu.
POINT PlaceOfMenu(HWND hEdit, LPARAM lWhere) {
    POINT place{GET_X_LPARAM(lWhere), GET_Y_LPARAM(lWhere)};
    if (lWhere == -1) {
        RECT client{};
        GetClientRect(hEdit, &client);
        place = {client.right / 2, client.bottom / 2};
        ClientToScreen(hEdit, &place);
    }
    return place;
}

}  // namespace

EditAction ChooseFromEditMenu(HWND hEdit, LPARAM lWhere, const EditMenuState& state) {
    const Menu menu(CreatePopupMenu());
    Append(menu, EditAction::Paste, IDS_EDIT_MENU_PASTE,
           state.bEditable && IsClipboardFormatAvailable(CF_UNICODETEXT));
    Append(menu, EditAction::Delete, IDS_EDIT_MENU_DELETE, state.bEditable && state.bSelected);
    AppendMenuA(menu.get(), MF_SEPARATOR, 0, nullptr);
    Append(menu, EditAction::SelectAll, IDS_EDIT_MENU_SELECT_ALL, state.bSelectsMore);
    const POINT place = PlaceOfMenu(hEdit, lWhere);
    return static_cast<EditAction>(TrackPopupMenu(menu.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON,
                                                  place.x, place.y, 0, hEdit, nullptr));
}

}  // namespace mvp
