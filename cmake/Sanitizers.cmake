# VANSYS_SANITIZE reaches everything that is built here, the test framework included: a sanitizer that
# sees only half of a program reports faults that are not there.
if(VANSYS_SANITIZE)
    add_compile_options(-fsanitize=${VANSYS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VANSYS_SANITIZE})
endif()
