// Marks what the add-in, or the stand-in XLCALL32.DLL, finds among the program's exports.
#pragma once

#ifdef _WIN32
#define QCALC_EXPORT extern "C" __declspec(dllexport)
#else
#define QCALC_EXPORT extern "C" __attribute__((visibility("default")))
#endif
