// A library that uses vkevtsub, as a host's would, and can be loaded and freed with it.
#pragma once

#if defined(VKEVTSUB_CLIENT_EXPORTS)
#define VKEVTSUB_CLIENT_API __declspec(dllexport)
#else
#define VKEVTSUB_CLIENT_API
#endif

extern "C" {
// Subscribes, raises an event, waits for it and unsubscribes. Whether all of that went well.
VKEVTSUB_CLIENT_API bool ClientUseOnce();

// Subscribes an object that lives as long as the library and whose HandleEvent never returns;
// returns when that is running.
VKEVTSUB_CLIENT_API void ClientHang();
}
