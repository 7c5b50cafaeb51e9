// The mark of an exported function: everything else in the library is hidden. Files that define exports include this;
// since those are called by name from outside alone, they have no declarations.
#pragma once

#pragma GCC diagnostic ignored "-Wmissing-declarations"

#ifdef _WIN32
#define XLL_EXPORT extern "C" __declspec(dllexport)
#else
#define XLL_EXPORT extern "C" __attribute__((visibility("default")))
#endif
