# The warnings that our own code is built with. Each one is here for a fault that it has been known to
# find; all of them are errors. Dependencies are not built with them.
set(VANSYS_WARNINGS
    -Wall -Wextra         # the compiler's own idea of code worth a second look
    -Wpedantic            # extensions would tie the library to one compiler
    -Werror               # a warning that nobody has to act on is soon one of hundreds
    -Wconversion          # lengths are int, sizes are size_t, units are 16 bits: narrowing must be visible
    -Wsign-conversion     # char is signed here and unsigned elsewhere
    -Wshadow              # a shadowed name is read as the wrong variable
    -Wnon-virtual-dtor    # exceptions are deleted through their base
    -Woverloaded-virtual  # an override with a different signature hides its base's function
    -Wold-style-cast      # a C cast hides whether it reinterprets, drops const or converts
    -Wcast-qual           # shared blocks must not be written through a dropped const
    -Wundef               # a misspelt macro in #if is silently 0
    -Wformat=2            # format strings that are not literals
    -Wdouble-promotion    # an unintended float to double hides a wrong constant
    -Wextra-semi          # noise that hides a missing body
)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND VANSYS_WARNINGS
        -Wduplicated-cond     # the same condition twice in an else-if chain
        -Wduplicated-branches # two branches that do the same
        -Wlogical-op          # && where & was meant
    )
endif()

# Turns the warnings on for one of our own targets.
function(vansys_set_warnings target)
    target_compile_options(${target} PRIVATE ${VANSYS_WARNINGS})
endfunction()
