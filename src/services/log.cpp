#include "services/log.h"

char g_szLogTag[] = "MVPINGUI";
