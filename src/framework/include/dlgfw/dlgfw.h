// The whole dialog framework.
//
// Windows, dialogs, controls, drawing objects and strings in the shape that Windows programmers
// know, over the operating system's 8-bit functions. Start reading at dialog.h, message_map.h and
// data_exchange.h; wnd.h states how objects and windows live and die.
#pragma once

#include <dlgfw/controls.h>
#include <dlgfw/data_exchange.h>
#include <dlgfw/dc.h>
#include <dlgfw/dialog.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/geometry.h>
#include <dlgfw/image_list.h>
#include <dlgfw/message_map.h>
#include <dlgfw/module_state.h>
#include <dlgfw/ptr_array.h>
#include <dlgfw/string.h>
#include <dlgfw/time.h>
#include <dlgfw/wnd.h>
