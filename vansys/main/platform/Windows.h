/// @file
/// The one way to windows.h: API level, only what is needed, and no macros with our names.
#pragma once

#if !defined(_WIN32_WINNT)
#    define _WIN32_WINNT 0x0602 // Windows 8
#endif
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#    define NOMINMAX // the standard library of the cross compiler may have been first
#endif
#include <windows.h>

#undef GetProcessMemoryInfo
