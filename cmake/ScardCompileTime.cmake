# What compiles faster in common, but only where the whole is built, tests and all: who builds the library alone sees each
# source with its own includes.

# Headers that take longer to read than most sources that include them.
function(scard_precompile_headers target)
    if(SCARD_DEVELOPER)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# What is compiled for its tests alone, with a sanitizer or for the emulator, is compiled as one unit.
function(scard_compile_as_one target)
    if(SCARD_DEVELOPER AND SCARD_SANITIZE)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
    endif()
endfunction()
