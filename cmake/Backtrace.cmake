# libbacktrace reads symbols and lines from ELF files. It comes with GCC, in that compiler's own folders; clang looks
# for libraries there, too, so either compiler knows where it is.
#
# What is linked is a copy whose calls of the system go to main/diagnostics/DebugFile_linux.cpp: libbacktrace by
# itself reads all modules at once, those that were loaded when it was first used, and frees nothing.
function(vansys_compiler_file name result)
    execute_process(
        COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
        OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${file}")
        message(FATAL_ERROR "The compiler does not come with ${name}, which GCC 12 has")
    endif()
    set(${result} ${file} PARENT_SCOPE)
endfunction()

vansys_compiler_file(libbacktrace.a backtrace_library)
vansys_compiler_file(include/backtrace.h backtrace_header)
set_property(GLOBAL PROPERTY VANSYS_BACKTRACE_LIBRARY ${backtrace_library}) # for those who compare with it

# The header by itself: those beside it are for GCC only.
set(backtrace_folder ${PROJECT_BINARY_DIR}/backtrace)
configure_file(${backtrace_header} ${backtrace_folder}/include/backtrace.h COPYONLY)
set(backtrace_copy ${backtrace_folder}/libvansys_backtrace.a)
add_custom_command(OUTPUT ${backtrace_copy}
    COMMAND ${CMAKE_OBJCOPY}
        --redefine-sym dl_iterate_phdr=vansys_backtrace_modules
        --redefine-sym open=vansys_backtrace_open
        --redefine-sym mmap=vansys_backtrace_map
        --redefine-sym munmap=vansys_backtrace_unmap
        ${backtrace_library} ${backtrace_copy}
    DEPENDS ${backtrace_library}
    VERBATIM)
add_custom_target(vansys_backtrace_copy DEPENDS ${backtrace_copy})

add_library(vansys_backtrace STATIC IMPORTED GLOBAL)
add_dependencies(vansys_backtrace vansys_backtrace_copy)
set_target_properties(vansys_backtrace PROPERTIES
    IMPORTED_LOCATION ${backtrace_copy}
    INTERFACE_INCLUDE_DIRECTORIES ${backtrace_folder}/include
    # Its names are nobody else's business, least of all a host's that has a libbacktrace of its own.
    INTERFACE_LINK_OPTIONS -Wl,--exclude-libs,libvansys_backtrace.a)
