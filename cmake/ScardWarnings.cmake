# Warnings belong to those who develop here; a project that builds the library as its part keeps its own.
function(scard_set_warnings target)
    if(NOT SCARD_DEVELOPER)
        return()
    endif()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC 12 sees overflows in std::vector's range insert that are not there; the sanitizers look for real ones.
        target_compile_options(${target} PRIVATE -Wno-stringop-overflow -Wno-stringop-overread)
    endif()
    if(SCARD_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
