// The mark of an exported function: everything else in the library is hidden.
#pragma once

#ifdef _WIN32
#define XLL_EXPORT extern "C" __declspec(dllexport)
#else
#define XLL_EXPORT extern "C" __attribute__((visibility("default")))
#endif
