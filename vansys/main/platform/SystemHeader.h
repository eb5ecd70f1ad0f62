/// @file
/// VANSYS_SYSTEM_HEADER: for a header of which each system has its own.
#pragma once

/// `#include VANSYS_SYSTEM_HEADER(room, Name)` includes main/room/Name_linux.h or main/room/Name_win.h. For
/// classes that hold the state of one system and have to be inlined; where a call does no harm, one header
/// and a source file for each system are plainer.
#if defined(_WIN32)
#    define VANSYS_SYSTEM_HEADER(room, name) VANSYS_SYSTEM_HEADER_PATH(room, name##_win)
#else
#    define VANSYS_SYSTEM_HEADER(room, name) VANSYS_SYSTEM_HEADER_PATH(room, name##_linux)
#endif

// The formatter would take the path for a division, and put spaces into it; and a path has no parentheses.
// clang-format off
// NOLINTNEXTLINE(bugprone-macro-parentheses)
#define VANSYS_SYSTEM_HEADER_PATH(room, file) VANSYS_SYSTEM_HEADER_QUOTE(main/room/file.h)
// clang-format on

#define VANSYS_SYSTEM_HEADER_QUOTE(path) #path
