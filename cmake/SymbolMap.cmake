# vansys_add_symbol_map(TARGET): for Windows, writes NAME.vsym beside the DLL or program NAME, each time that it is
# linked: functions, files and lines for the stack walker, which the system's symbol handler does not read from what
# this compiler writes. The module itself may be stripped then. Does nothing for other systems.
#
# A host that takes the library in by find_package has this function, too.
if(WIN32)
    find_program(VANSYS_MAKE_VSYM make-vsym
        PATHS ${CMAKE_CURRENT_LIST_DIR} ${CMAKE_CURRENT_LIST_DIR}/../tools
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED
        DOC "Writes symbol maps")
    mark_as_advanced(VANSYS_MAKE_VSYM)
endif()

# What every source of such a module is compiled with: line tables, and no more, unless there is more already.
set(VANSYS_SYMBOL_MAP_OPTIONS $<$<CONFIG:Release,MinSizeRel>:-gdwarf-4> $<$<CONFIG:Release,MinSizeRel>:-g1>)

function(vansys_add_symbol_map target)
    if(NOT WIN32)
        return()
    endif()
    target_compile_options(${target} PRIVATE ${VANSYS_SYMBOL_MAP_OPTIONS})
    # The map belongs to the module that has the same build id.
    target_link_options(${target} PRIVATE -Wl,--build-id)
    string(REGEX REPLACE "nm([^/]*)$" "c++filt\\1" cxxfilt "${CMAKE_NM}")
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E env
            NM=${CMAKE_NM} OBJDUMP=${CMAKE_OBJDUMP} CXXFILT=${cxxfilt}
            ${VANSYS_MAKE_VSYM} --strip-prefix ${PROJECT_SOURCE_DIR} $<TARGET_FILE:${target}>
        VERBATIM)
endfunction()
