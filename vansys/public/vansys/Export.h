/// @file
/// Marks what the shared library exports. Everything else in it is hidden.
#pragma once

#if defined(_WIN32)
#    if defined(VANSYS_BUILDING_LIBRARY)
#        define VANSYS_API __attribute__((dllexport))
#    else
#        define VANSYS_API __attribute__((dllimport))
#    endif
#else
#    define VANSYS_API __attribute__((visibility("default")))
#endif
