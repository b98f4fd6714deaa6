# Headers are included by their folder, as <scard/SCardReader.h>. Each folder gets a root of its own, through a link in
# the build directory: with the source directory as the root, <aux/Error.h> would always be this project's own, also
# where the platform's libaux is to take its place.
function(scard_include_root target scope folder)
    set(root ${PROJECT_BINARY_DIR}/include-roots/${folder})
    file(MAKE_DIRECTORY ${root})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
    target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${root}>)
endfunction()
