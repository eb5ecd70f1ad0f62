# The demangler of GCC's run-time library. The shared library offers it only with memory from malloc; the static one
# has the function that it is made of, too, which hands out its result in pieces and allocates nothing.
#
# What is linked is a copy of that one object, with names of our own: the rest of the static library would come with
# exceptions of its own.
execute_process(
    COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libsupc++.a
    OUTPUT_VARIABLE supcxx_library OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT IS_ABSOLUTE "${supcxx_library}")
    message(FATAL_ERROR "The compiler does not come with libsupc++.a, which GCC 12 has")
endif()

set(demangler_folder ${PROJECT_BINARY_DIR}/demangler)
set(demangler_copy ${demangler_folder}/libvansys_demangler.a)
file(MAKE_DIRECTORY ${demangler_folder})
add_custom_command(OUTPUT ${demangler_copy}
    COMMAND ${CMAKE_AR} x ${supcxx_library} cp-demangle.o
    COMMAND ${CMAKE_OBJCOPY}
        --redefine-sym __cxa_demangle=vansys_cxa_demangle
        --redefine-sym __gcclibcxx_demangle_callback=vansys_demangle
        cp-demangle.o
    COMMAND ${CMAKE_COMMAND} -E rm -f ${demangler_copy}
    COMMAND ${CMAKE_AR} rcs ${demangler_copy} cp-demangle.o
    DEPENDS ${supcxx_library}
    WORKING_DIRECTORY ${demangler_folder}
    VERBATIM)
add_custom_target(vansys_demangler_copy DEPENDS ${demangler_copy})

add_library(vansys_demangler STATIC IMPORTED GLOBAL)
add_dependencies(vansys_demangler vansys_demangler_copy)
set_target_properties(vansys_demangler PROPERTIES
    IMPORTED_LOCATION ${demangler_copy}
    INTERFACE_LINK_OPTIONS -Wl,--exclude-libs,libvansys_demangler.a)
