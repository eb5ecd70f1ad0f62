# The cross build for 32-bit Windows with Debian's MinGW-w64 compiler. tools/setup-win32 installs what this
# file names, and builds the dependencies with the same flags.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

# The variant whose standard library has threads.
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

# SSE rounds each operation to double; the x87 unit, the default, keeps more digits until a value happens to
# be stored. Callers may have aligned the stack to 4 bytes only, where SSE needs 16. tools/setup-win32 reads
# this line, too.
set(win32_flags "-msse2 -mfpmath=sse -mstackrealign")
# Windows 8 is the oldest version that is supported.
set(win32_version "-D_WIN32_WINNT=0x0602")

# Wine's symbol handler reads DWARF up to version 4; the compiler's own choice is 5.
foreach(language IN ITEMS C CXX)
    set(CMAKE_${language}_FLAGS_INIT "${win32_flags} ${win32_version}")
    foreach(configuration IN ITEMS DEBUG RELWITHDEBINFO)
        set(CMAKE_${language}_FLAGS_${configuration}_INIT "-gdwarf-4")
    endforeach()
endforeach()

if(NOT VANSYS_WIN32_DEPENDENCIES)
    set(cache "$ENV{XDG_CACHE_HOME}")
    if(NOT cache)
        set(cache "$ENV{HOME}/.cache")
    endif()
    set(VANSYS_WIN32_DEPENDENCIES ${cache}/vansys/win32/dependencies)
endif()
set(VANSYS_WIN32_DEPENDENCIES "${VANSYS_WIN32_DEPENDENCIES}" CACHE PATH
    "Where include/, lib/ and bin/ of the dependencies are; bin/ also has the DLLs of the compiler")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VANSYS_WIN32_DEPENDENCIES)

# Programs run on the building machine; headers and libraries of that machine are of no use.
set(CMAKE_FIND_ROOT_PATH ${VANSYS_WIN32_DEPENDENCIES} /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
