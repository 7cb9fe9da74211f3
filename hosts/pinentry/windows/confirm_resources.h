/* The identifiers of the program's resources. */
#pragma once

#define IDD_CONFIRM 101
#define IDC_CONFIRM_ICON 1001
#define IDC_CONFIRM_TEXT 1002
