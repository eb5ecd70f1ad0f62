# Installs the library, its public headers, a CMake package and a pkg-config file. Both find the library from
# where they are themselves, so that the installed tree can be moved as a whole.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vansys)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS vansys EXPORT vansysTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
    # A map is found beside its module. Hosts make theirs as this project does.
    install(FILES $<PATH:REPLACE_EXTENSION,LAST_ONLY,$<TARGET_FILE:vansys>,vsym> DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/SymbolMap.cmake DESTINATION ${package_dir})
    install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/make-vsym DESTINATION ${package_dir})
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/vansys/public/vansys
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")

install(EXPORT vansysTargets NAMESPACE vansys:: DESTINATION ${package_dir})
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/vansysConfig.cmake.in
    ${PROJECT_BINARY_DIR}/vansysConfig.cmake
    INSTALL_DESTINATION ${package_dir}
    NO_SET_AND_CHECK_MACRO)
# Before 1.0, each minor version may change the interface.
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(compatibility SameMinorVersion)
else()
    set(compatibility SameMajorVersion)
endif()
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/vansysConfigVersion.cmake
    COMPATIBILITY ${compatibility})
install(FILES
    ${PROJECT_BINARY_DIR}/vansysConfig.cmake
    ${PROJECT_BINARY_DIR}/vansysConfigVersion.cmake
    DESTINATION ${package_dir})

# The way from the pkg-config file to the prefix depends on how deep the library folder is (lib, or
# lib/x86_64-linux-gnu). Folders given as absolute paths are taken as they are, and cannot be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(pkgconfig_prefix ${CMAKE_INSTALL_PREFIX})
else()
    file(RELATIVE_PATH way_up /${pkgconfig_dir} /)
    string(REGEX REPLACE "/$" "" way_up ${way_up})
    set(pkgconfig_prefix "\${pcfiledir}/${way_up}")
endif()
set(pkgconfig_libdir ${CMAKE_INSTALL_LIBDIR})
set(pkgconfig_includedir ${CMAKE_INSTALL_INCLUDEDIR})
foreach(variable IN ITEMS pkgconfig_libdir pkgconfig_includedir)
    if(NOT IS_ABSOLUTE "${${variable}}")
        string(PREPEND ${variable} "\${prefix}/")
    endif()
endforeach()
configure_file(
    ${PROJECT_SOURCE_DIR}/cmake/vansys.pc.in
    ${PROJECT_BINARY_DIR}/vansys.pc
    @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vansys.pc DESTINATION ${pkgconfig_dir})
