/* How the library's declarations are exported and imported. */
#ifndef MVPINGUI_EXPORT_H
#define MVPINGUI_EXPORT_H

#if defined(MVPINGUI_EXPORTS)
#define MVPINGUI_API __declspec(dllexport)
#else
#define MVPINGUI_API __declspec(dllimport)
#endif

#endif
