# Back ends are chosen by file name: by system (*_win.cpp, *_linux.cpp) and by architecture (*_x86.cpp,
# *_generic.cpp).
if(WIN32)
    set(VANSYS_SYSTEM win)
else()
    set(VANSYS_SYSTEM linux)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86|x86)$")
    set(VANSYS_ARCHITECTURE x86)
else()
    set(VANSYS_ARCHITECTURE generic)
endif()
