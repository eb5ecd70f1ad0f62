# Adds the licences to what is installed, and lets cpack make a package of it: for Windows a zip that has the
# run-time DLLs too, else a Debian package. To be included after Install.cmake.

if(WIN32)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
    install(FILES ${VANSYS_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
    # What may be done with the run-time DLLs, in the words of the Debian packages that they are from. The first
    # has the exception that the GPL makes for programs that use them.
    set(runtime_notices ${CMAKE_INSTALL_DOCDIR}/runtime)
    install(FILES /usr/share/doc/gcc-mingw-w64-base/copyright
        DESTINATION ${runtime_notices} RENAME libgcc-and-libstdc++.txt)
    install(FILES /usr/share/common-licenses/GPL-3 DESTINATION ${runtime_notices} RENAME GPL-3.txt)
    install(FILES /usr/share/doc/mingw-w64-common/copyright
        DESTINATION ${runtime_notices} RENAME libwinpthread.txt)
    install(FILES ${VANSYS_WIN32_DEPENDENCIES}/share/licenses/icu/LICENSE
        DESTINATION ${runtime_notices} RENAME icu.txt)
else()
    # Under the name that Debian has for it.
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
endif()

# A project that takes this one in packages itself as it likes.
if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_VENDOR vansys)
set(CPACK_PACKAGE_CONTACT "vansys maintainers <maintainers@vansys.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_STRIP_FILES ON)
# Folders have these permissions whatever the umask of whoever makes the package.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

if(WIN32)
    set(CPACK_GENERATOR ZIP)
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
        "Shared library, headers, and files for CMake and pkg-config. The headers need a C++17 compiler.")
    set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
    # Which packages the library needs, and which versions of them, follows from what it is linked with.
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
endif()
include(CPack)
