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
#define IDD_UNLOCK_CODE 3005       // frame of IDD_UNLOCK_CODE_PANEL
#define IDD_INITIALIZE_PIN 3006
#define IDD_UNLOCK_CARD 3007
#define IDD_UNLOCK_FAILED 3008
#define IDD_UNLOCK_INIT_TOOL 3009
#define IDD_UNLOCK_SUCCESS 3010
#define IDD_POLICIES 3011  // child panel: one line for each PIN rule
#define IDD_CARD_MANAGER_LOCKED 3040
#define IDD_ENTER_PIN 3073
#define IDD_UNLOCK_CODE_PANEL 3077  // child panel: the unlock code, and whether to show it again
#define IDD_RESET_CARD_PANEL 3079   // child panel: the PIN or the unlock code
#define IDD_RESET_CARD_MAIN 3081    // frame of that panel, with OK and Cancel
#define IDD_CARD_EXPIRY 3082
#define IDD_ABOUT 3104

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

// --- Controls of IDD_UNLOCK_CARD -------------------------------------------------------------

#define IDC_UNLOCK_CARD_CHALLENGE 3026
#define IDC_UNLOCK_CARD_CONFIRM_EDIT 3028
#define IDC_UNLOCK_CARD_NEW_EDIT 3029
#define IDC_UNLOCK_CARD_CODE_EDIT 3030
#define IDC_UNLOCK_CARD_HEADING 3032
#define IDC_UNLOCK_CARD_CHALLENGE_LABEL 3033
#define IDC_UNLOCK_CARD_CHALLENGE_NOTE 3034
#define IDC_UNLOCK_CARD_HELP_DESK 3035
#define IDC_UNLOCK_CARD_PIN_BOX 3037  // the rules take its width
#define IDC_UNLOCK_CARD_CONFIRM_LABEL 3038
#define IDC_UNLOCK_CARD_NEW_LABEL 3039
#define IDC_UNLOCK_CARD_POLICIES_PLACE 3040  // hidden; marks where IDD_POLICIES goes
#define IDC_UNLOCK_CARD_INSTRUCTION 3042
#define IDC_UNLOCK_CARD_CODE_BOX 3043
#define IDC_UNLOCK_CARD_CODE_LABEL 3044
#define IDC_UNLOCK_CARD_CODE_NOTE 3046

// --- Controls of IDD_UNLOCK_FAILED, IDD_UNLOCK_SUCCESS and IDD_UNLOCK_INIT_TOOL ----------------

#define IDC_UNLOCK_RESULT_HEADING 3032
#define IDC_UNLOCK_RESULT_ICON 3036
#define IDC_UNLOCK_RESULT_MESSAGE 3041

// --- Controls of IDD_INITIALIZE_PIN ----------------------------------------------------------

#define IDC_INITIALIZE_PIN_NEW_EDIT 3029
#define IDC_INITIALIZE_PIN_CONFIRM_EDIT 3031
#define IDC_INITIALIZE_PIN_HEADING 3032
#define IDC_INITIALIZE_PIN_POLICIES_PLACE 3040  // hidden; marks where IDD_POLICIES goes

// --- Controls of IDD_UNLOCK_CODE and IDD_UNLOCK_CODE_PANEL -----------------------------------

#define IDC_UNLOCK_CODE_PANEL_PLACE 3050  // hidden; marks where IDD_UNLOCK_CODE_PANEL goes
#define IDC_UNLOCK_CODE_NEVER_AGAIN 3024
#define IDC_UNLOCK_CODE_CODE 3045

// --- Controls of IDD_CARD_MANAGER_LOCKED -----------------------------------------------------

#define IDC_CARD_MANAGER_LOCKED_TEXT 3025

// --- Controls of IDD_RESET_CARD_MAIN and IDD_RESET_CARD_PANEL --------------------------------

#define IDC_RESET_CARD_PANEL_PLACE 3061  // hidden; marks where IDD_RESET_CARD_PANEL goes
#define IDC_RESET_CARD_PIN_EDIT 3003
#define IDC_RESET_CARD_PIN_ROUTE 3051
#define IDC_RESET_CARD_CODE_ROUTE 3052
#define IDC_RESET_CARD_CODE_EDIT 3053  // a static unlock code; the rest of the route is hidden then
#define IDC_RESET_CARD_CHALLENGE_LABEL 3054
#define IDC_RESET_CARD_CHALLENGE 3055
#define IDC_RESET_CARD_RESPONSE_LABEL 3056
#define IDC_RESET_CARD_RESPONSE_EDIT 3057
#define IDC_RESET_CARD_CHALLENGE_NOTE 3059
#define IDC_RESET_CARD_RESPONSE_NOTE 3060

// --- Controls of IDD_CARD_EXPIRY -------------------------------------------------------------

#define IDC_CARD_EXPIRY_HEADING 3022  // what is added at run time takes its font
#define IDC_CARD_EXPIRY_DAYS 3049
#define IDC_CARD_EXPIRY_SPIN 3064
#define IDC_CARD_EXPIRY_REMIND 3065  // enables the days
#define IDC_CARD_EXPIRY_LIST 3066
#define IDC_CARD_EXPIRY_LIST_LABEL 3067
#define IDC_CARD_EXPIRY_SEPARATOR 3068  // above the buttons
#define IDC_CARD_EXPIRY_DAYS_LABEL 3069
#define IDC_CARD_EXPIRY_NEVER_AGAIN 3071
#define IDC_CARD_EXPIRY_SENTENCE 3073  // the configuration may give another

// --- Controls of IDD_ABOUT -------------------------------------------------------------------

#define IDC_ABOUT_CAPTION 1000  // what the host says
#define IDC_ABOUT_CREDITS_NOTE 1001
#define IDC_ABOUT_NAME 1005
#define IDC_ABOUT_VERSION 1006
#define IDC_ABOUT_NOTICE 1007
#define IDC_ABOUT_CREDITS 1008
#define IDC_ABOUT_MARK 1009

// --- Controls that come into any dialog with a PIN edit, at run time -------------------------

#define IDC_INJECTED_KEYS_ICON 3143
#define IDC_INJECTED_KEYS_TEXT 3144

// --- Strings ---------------------------------------------------------------------------------

// The lines of the rule panel. The two formats take one integer.
#define IDS_POLICIES_ALPHA 3021
#define IDS_POLICIES_CONFIRM 3023
#define IDS_POLICIES_MAX_FORMAT 3025
#define IDS_POLICIES_MIN_FORMAT 3026
#define IDS_POLICIES_BOX 3031
#define IDS_POLICIES_SAME 3032
#define IDS_POLICIES_WEAK 3034
// What a screen reader says behind a line, and a comma: whether it is met.
#define IDS_POLICIES_SATISFIED 3145
#define IDS_POLICIES_VIOLATED 3146

// Changing the PIN. The title also heads the frame of the reset-card dialog.
#define IDS_CARD_PIN_TITLE 3022
#define IDS_CHANGE_PIN_CURRENT_LABEL 3028
#define IDS_CHANGE_PIN_CONFIRM_LABEL 3029
#define IDS_CHANGE_PIN_NEW_LABEL 3030
#define IDS_CHANGE_PIN_INSTRUCTION 3033
#define IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY 3133  // when the current PIN is not asked for

// Unlocking the card. A format takes one text: the telephone number, or why it failed.
#define IDS_UNLOCK_INIT_TOOL_HEADING 3035  // when its mode is 0
#define IDS_INITIALIZE_FAILED_TITLE 3036
#define IDS_INITIALIZE_FAILED_HEADING 3037
#define IDS_UNLOCK_WRONG_CODE 3053
#define IDS_UNLOCK_PINS_DIFFER 3054
#define IDS_UNLOCK_FAILED_FORMAT 3055
#define IDS_UNLOCK_HELP_DESK 3056
#define IDS_UNLOCK_HELP_DESK_FORMAT 3057

// Setting the first PIN, and showing the unlock code. The formats take the reason.
#define IDS_CARD_MANAGER_LOCKED 3040
#define IDS_UNLOCK_CODE_NONE 3048
#define IDS_UNLOCK_CODE_FAILED_FORMAT 3051
#define IDS_INITIALIZE_FAILED_FORMAT 3052

// The Caps Lock balloon. The last is what the system's own balloon text begins with.
#define IDS_CAPS_LOCK_TITLE 3041
#define IDS_CAPS_LOCK_PIN 3042
#define IDS_CAPS_LOCK_PASSWORD 3043
#define IDS_CAPS_LOCK_SYSTEM_BEGIN 3044

// The context menu of an edit that takes a PIN or a code.
#define IDS_EDIT_MENU_PASTE 3140
#define IDS_EDIT_MENU_DELETE 3141
#define IDS_EDIT_MENU_SELECT_ALL 3142

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

// The expiry notice: its line about the card, which takes the date in the format, and its list.
#define IDS_CARD_EXPIRY_EXPIRED 3093
#define IDS_CARD_EXPIRY_NAME_COLUMN 3094
#define IDS_CARD_EXPIRY_DATE_COLUMN 3095
#define IDS_CARD_EXPIRY_DATE_EXPIRED 3096  // stands behind the date of what has expired
#define IDS_CARD_EXPIRY_EXPIRES_FORMAT 3116
#define IDS_CARD_EXPIRY_CLOSE 3117  // the one button of a notice of what has expired

// The popup. The machine's configuration may give other messages; the links and the title stay.
#define IDS_POPUP_NO_READER 3038
#define IDS_POPUP_CARD_ALERT 3039
#define IDS_POPUP_CLOSE_LINK 3102
#define IDS_POPUP_HELP_LINK 3115
#define IDS_POPUP_TITLE 3127  // who speaks; an assistive program reads it before the message

// What is said of keys that a program sends.
#define IDS_INJECTED_KEYS_WARNING 3143
#define IDS_INJECTED_KEYS_REFUSED 3144

// The about box. The format takes the version.
#define IDS_ABOUT_VERSION_FORMAT 3104
#define IDS_ABOUT_CREDITS_NOTE 3106
#define IDS_ABOUT_TITLE 3107
#define IDS_ABOUT_NOTICE 3109

// --- Icons -----------------------------------------------------------------------------------

#define IDI_CARD_PIN 3012  // small window icon of the change-PIN and reset-card frames
#define IDI_CARD_INITIALIZE 3013
#define IDI_RULE_VIOLATED 3014
#define IDI_RULE_SATISFIED 3016
#define IDI_CARD_UNLOCK 3018
#define IDI_CERTIFICATE_VALID 3083
#define IDI_CERTIFICATE_EXPIRED 3084
#define IDI_ABOUT 3104  // the product's mark
#define IDI_POPUP_OTP 3128
#define IDI_POPUP_CARD_ALERT 3129
#define IDI_POPUP_NO_READER 3130
#define IDI_INJECTED_KEYS 3131

// --- Bitmaps ---------------------------------------------------------------------------------

#define IDB_POPUP_SKIN 3102
#define IDB_POPUP_LINK_BULLET 3125  // laid onto the skin, beside the link that closes
#define IDB_POPUP_HELP_BULLET 3126  // likewise, beside the link to the help
#define IDB_ENTER_PIN_BANNER 3201
#define IDB_ENTER_PIN_PROGRESS 3202

// The same, drawn for 200 %: the number of a bitmap and this.
#define BITMAP_AT_200_PERCENT 1000
#define IDB_POPUP_SKIN_200 4102
#define IDB_POPUP_LINK_BULLET_200 4125
#define IDB_POPUP_HELP_BULLET_200 4126
#define IDB_ENTER_PIN_BANNER_200 4201
#define IDB_ENTER_PIN_PROGRESS_200 4202
