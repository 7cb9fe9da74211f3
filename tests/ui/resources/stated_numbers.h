// The numbers of the resource module as they are promised to whoever translates it or embeds the
// library's panels: literals, so that a number that changes in resource_numbers.h, and with it in
// the sources and the scripts, is noticed.
#pragma once

#include <ostream>
#include <vector>

#include "resources/resource_numbers.h"

struct StatedNumber {
    int nNamed;   // what resource_numbers.h says
    int nStated;  // what must be
};

struct StatedControl {
    int nNamed;
    int nStated;
    const char* pszClass;
};

struct StatedDialog {
    const char* pszName;
    int nNamed;
    int nStated;
    std::vector<StatedControl> controls;

    // How test reports print it.
    friend std::ostream& operator<<(std::ostream& out, const StatedDialog& dialog) {
        return out << dialog.pszName;
    }
};

inline const std::vector<StatedDialog> kStatedDialogs = {
    {"EnterPin",
     IDD_ENTER_PIN,
     3073,
     {{IDOK, 1, "button"},
      {IDCANCEL, 2, "button"},
      {IDC_ENTER_PIN_BANNER, 3047, "static"},
      {IDC_ENTER_PIN_PROGRESS, 3048, "static"},
      {IDC_ENTER_PIN_EDIT, 3049, "edit"},
      {IDC_ENTER_PIN_PROMPT, 3074, "static"},
      {IDC_ENTER_PIN_BRAND_BANNER, 3075, "static"},
      {IDC_ENTER_PIN_BRAND_PROGRESS, 3076, "static"}}},
    {"ChangePinPanel",
     IDD_CHANGE_PIN_PANEL,
     3002,
     {{IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, 3003, "edit"},
      {IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, 3004, "edit"},
      {IDC_CHANGE_PIN_PANEL_NEW_EDIT, 3005, "edit"},
      {IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, 3017, "static"},
      {IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, 3018, "static"},
      {IDC_CHANGE_PIN_PANEL_NEW_LABEL, 3019, "static"},
      {IDC_CHANGE_PIN_PANEL_POLICIES_PLACE, 3020, "static"},
      {IDC_CHANGE_PIN_PANEL_INSTRUCTION, 3022, "static"}}},
    {"ChangePinMain",
     IDD_CHANGE_PIN_MAIN,
     3003,
     {{IDOK, 1, "button"},
      {IDCANCEL, 2, "button"},
      {IDC_CHANGE_PIN_MAIN_PANEL_PLACE, 3010, "static"}}},
    {"Policies",
     IDD_POLICIES,
     3011,
     {{IDC_POLICIES_BOX, 3008, "button"},
      {IDC_POLICIES_ALPHA_TEXT, 3001, "static"},
      {IDC_POLICIES_CONFIRM_TEXT, 3002, "static"},
      {IDC_POLICIES_MAX_TEXT, 3006, "static"},
      {IDC_POLICIES_MIN_TEXT, 3007, "static"},
      {IDC_POLICIES_SAME_TEXT, 3009, "static"},
      {IDC_POLICIES_WEAK_TEXT, 3023, "static"},
      {IDC_POLICIES_ALPHA_ICON, 3011, "static"},
      {IDC_POLICIES_CONFIRM_ICON, 3012, "static"},
      {IDC_POLICIES_MAX_ICON, 3013, "static"},
      {IDC_POLICIES_MIN_ICON, 3014, "static"},
      {IDC_POLICIES_SAME_ICON, 3015, "static"},
      {IDC_POLICIES_WEAK_ICON, 3016, "static"}}},
};

inline const std::vector<StatedNumber> kStatedStrings = {
    {IDS_POLICIES_ALPHA, 3021},
    {IDS_CARD_PIN_TITLE, 3022},
    {IDS_POLICIES_CONFIRM, 3023},
    {IDS_POLICIES_MAX_FORMAT, 3025},
    {IDS_POLICIES_MIN_FORMAT, 3026},
    {IDS_CHANGE_PIN_CURRENT_LABEL, 3028},
    {IDS_CHANGE_PIN_CONFIRM_LABEL, 3029},
    {IDS_CHANGE_PIN_NEW_LABEL, 3030},
    {IDS_POLICIES_BOX, 3031},
    {IDS_POLICIES_SAME, 3032},
    {IDS_CHANGE_PIN_INSTRUCTION, 3033},
    {IDS_POLICIES_WEAK, 3034},
    {IDS_CAPS_LOCK_TITLE, 3041},
    {IDS_CAPS_LOCK_PIN, 3042},
    {IDS_CAPS_LOCK_PASSWORD, 3043},
    {IDS_CAPS_LOCK_SYSTEM_BEGIN, 3044},
    {IDS_ERROR_GENERAL, 3059},
    {IDS_ERROR_CARD_ABSENT, 3060},
    {IDS_ERROR_READER_ABSENT, 3061},
    {IDS_ERROR_WRONG_PIN, 3062},
    {IDS_ERROR_WRONG_UNLOCK_CODE, 3063},
    {IDS_ERROR_PIN_BLOCKED, 3064},
    {IDS_ERROR_UNLOCK_CODE_BLOCKED, 3065},
    {IDS_ERROR_PIN_REFUSED, 3066},
    {IDS_ERROR_CARD_UNKNOWN, 3067},
    {IDS_ERROR_CARD_NOT_INITIALIZED, 3068},
    {IDS_ERROR_CARD_IN_USE, 3069},
    {IDS_ERROR_CARD_COMMUNICATION, 3070},
    {IDS_ERROR_CANCELLED, 3071},
    {IDS_LAST_PIN_TRY, 3073},
    {IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY, 3133}};

inline const std::vector<StatedNumber> kStatedIcons = {
    {IDI_CARD_PIN, 3012}, {IDI_RULE_VIOLATED, 3014}, {IDI_RULE_SATISFIED, 3016}};

inline const std::vector<StatedNumber> kStatedBitmaps = {{IDB_ENTER_PIN_BANNER, 3201},
                                                         {IDB_ENTER_PIN_PROGRESS, 3202}};
