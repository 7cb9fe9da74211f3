// Names for every number of the resource module mvpinguirc. The sources of the library and the
// resource scripts of all languages share this header, so it holds plain #defines only: the
// resource compiler reads it too.
//
// Dialogs (IDD_), strings (IDS_), icons (IDI_), bitmaps (IDB_) and the controls of a dialog (IDC_)
// are namespaces of their own: the same number in two of them means two different things, and a
// control's number means something only together with its dialog. A control's name therefore
// begins with its dialog's: IDC_POLICIES_ belongs to IDD_POLICIES. OK and Cancel are IDOK (1) and
// IDCANCEL (2) everywhere; a static that no code asks for is IDC_STATIC (-1).
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// --- Dialogs ---------------------------------------------------------------------------------

#define IDD_CHANGE_PIN_PANEL 3002  // child panel: the three PIN edits and the rules
#define IDD_CHANGE_PIN_MAIN 3003   // frame of that panel, with OK and Cancel
#define IDD_POLICIES 3011          // child panel: one line for each PIN rule
#define IDD_ENTER_PIN 3073

// --- Controls of IDD_CHANGE_PIN_PANEL --------------------------------------------------------

#define IDC_CHANGE_PIN_PANEL_CURRENT_EDIT 3003
#define IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT 3004
#define IDC_CHANGE_PIN_PANEL_NEW_EDIT 3005
#define IDC_CHANGE_PIN_PANEL_CURRENT_LABEL 3017
#define IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL 3018
#define IDC_CHANGE_PIN_PANEL_NEW_LABEL 3019
#define IDC_CHANGE_PIN_PANEL_POLICIES_PLACE 3020  // hidden; marks where IDD_POLICIES goes
#define IDC_CHANGE_PIN_PANEL_INSTRUCTION 3022

// --- Controls of IDD_CHANGE_PIN_MAIN ---------------------------------------------------------

#define IDC_CHANGE_PIN_MAIN_PANEL_PLACE 3010  // hidden; marks where IDD_CHANGE_PIN_PANEL goes

// --- Controls of IDD_POLICIES ----------------------------------------------------------------

#define IDC_POLICIES_ALPHA_TEXT 3001
#define IDC_POLICIES_CONFIRM_TEXT 3002
#define IDC_POLICIES_MAX_TEXT 3006
#define IDC_POLICIES_MIN_TEXT 3007
#define IDC_POLICIES_BOX 3008  // the group box around the lines
#define IDC_POLICIES_SAME_TEXT 3009
#define IDC_POLICIES_ALPHA_ICON 3011
#define IDC_POLICIES_CONFIRM_ICON 3012
#define IDC_POLICIES_MAX_ICON 3013
#define IDC_POLICIES_MIN_ICON 3014
#define IDC_POLICIES_SAME_ICON 3015
#define IDC_POLICIES_WEAK_ICON 3016
#define IDC_POLICIES_WEAK_TEXT 3023

// --- Controls of IDD_ENTER_PIN ---------------------------------------------------------------

#define IDC_ENTER_PIN_BANNER 3047    // the picture of the template
#define IDC_ENTER_PIN_PROGRESS 3048  // likewise
#define IDC_ENTER_PIN_EDIT 3049
#define IDC_ENTER_PIN_PROMPT 3074
#define IDC_ENTER_PIN_BRAND_BANNER 3075    // hidden; takes the customer's picture, if there is one
#define IDC_ENTER_PIN_BRAND_PROGRESS 3076  // likewise

// --- Strings ---------------------------------------------------------------------------------

// The lines of the rule panel. The two formats take one integer.
#define IDS_POLICIES_ALPHA 3021
#define IDS_POLICIES_CONFIRM 3023
#define IDS_POLICIES_MAX_FORMAT 3025
#define IDS_POLICIES_MIN_FORMAT 3026
#define IDS_POLICIES_BOX 3031
#define IDS_POLICIES_SAME 3032
#define IDS_POLICIES_WEAK 3034

// Changing the PIN. The title also heads the frame of the reset-card dialog.
#define IDS_CARD_PIN_TITLE 3022
#define IDS_CHANGE_PIN_CURRENT_LABEL 3028
#define IDS_CHANGE_PIN_CONFIRM_LABEL 3029
#define IDS_CHANGE_PIN_NEW_LABEL 3030
#define IDS_CHANGE_PIN_INSTRUCTION 3033
#define IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY 3133  // when the current PIN is not asked for

// The Caps Lock balloon. The last is what the system's own balloon text begins with.
#define IDS_CAPS_LOCK_TITLE 3041
#define IDS_CAPS_LOCK_PIN 3042
#define IDS_CAPS_LOCK_PASSWORD 3043
#define IDS_CAPS_LOCK_SYSTEM_BEGIN 3044

// What a result code tells the user; the code stands behind each. Code 13 has no text.
#define IDS_ERROR_GENERAL 3059               // 1
#define IDS_ERROR_CARD_ABSENT 3060           // 2
#define IDS_ERROR_READER_ABSENT 3061         // 3
#define IDS_ERROR_WRONG_PIN 3062             // 4
#define IDS_ERROR_WRONG_UNLOCK_CODE 3063     // 5
#define IDS_ERROR_PIN_BLOCKED 3064           // 6
#define IDS_ERROR_UNLOCK_CODE_BLOCKED 3065   // 7
#define IDS_ERROR_PIN_REFUSED 3066           // 8
#define IDS_ERROR_CARD_UNKNOWN 3067          // 9
#define IDS_ERROR_CARD_NOT_INITIALIZED 3068  // 10
#define IDS_ERROR_CANCELLED 3071             // 11
#define IDS_ERROR_CARD_IN_USE 3069           // 12
#define IDS_ERROR_CARD_COMMUNICATION 3070    // 14

#define IDS_LAST_PIN_TRY 3073

// --- Icons -----------------------------------------------------------------------------------

#define IDI_CARD_PIN 3012  // small window icon of the change-PIN and reset-card frames
#define IDI_RULE_VIOLATED 3014
#define IDI_RULE_SATISFIED 3016

// --- Bitmaps ---------------------------------------------------------------------------------

#define IDB_ENTER_PIN_BANNER 3201
#define IDB_ENTER_PIN_PROGRESS 3202
