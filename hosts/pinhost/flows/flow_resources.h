/* The identifiers of the module's resources. */
#pragma once

#define IDD_CHANGE_PIN_WINDOW 101
#define IDC_HEADING 1001
#define IDC_PANEL_PLACE 1002 /* hidden; its left and top place the panel */
