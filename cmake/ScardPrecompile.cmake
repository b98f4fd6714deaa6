# Headers that take longer to read than most sources that include them. Only where the whole is built, tests and all: who
# builds the library alone sees each source with its own includes.
function(scard_precompile_headers target)
    if(SCARD_DEVELOPER)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()
