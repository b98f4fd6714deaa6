# Debian packages: `cpack` in a build folder of the presets `debian` and `debian-armhf` makes libscard1,
# libscardverify1, libscard-dev and scard-tools. What they are is written here, the rest of their control files is
# worked out from what is in them.
set(SCARD_MAINTAINER "libscard maintainers <maintainers@libscard.invalid>" CACHE STRING "Who packages name as their maintainer")
mark_as_advanced(SCARD_MAINTAINER)

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME libscard)
set(CPACK_PACKAGE_VENDOR libscard)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET scard::verify)
    list(APPEND CPACK_COMPONENTS_ALL verification)
endif()
if(SCARD_PROGRAM)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${SCARD_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Each of the packages is built with the others of its own version, and only tried with these.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/scard ${PROJECT_BINARY_DIR}/scardverify ${PROJECT_BINARY_DIR}/aux)
set(scard_debian_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
if(CMAKE_CROSSCOMPILING)
    set(CPACK_STRIP_EXECUTABLE ${CMAKE_STRIP})
    set(CPACK_OBJDUMP_EXECUTABLE ${CMAKE_OBJDUMP})
    set(CPACK_READELF_EXECUTABLE ${CMAKE_READELF})
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
        ${CMAKE_SYSROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE} ${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()

set(what_it_is "Downloads EU digital tachograph cards (driver, workshop and company cards of
the first generation, of the second and of version 2.2) through a PC/SC
reader into files that inspectors accept, and answers what is on them.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libscard1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${what_it_is}\n\nThis package contains the shared library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS pcscd)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)

set(CPACK_DEBIAN_VERIFICATION_PACKAGE_NAME libscardverify1)
set(CPACK_DEBIAN_VERIFICATION_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_VERIFICATION_DESCRIPTION "${what_it_is}\n
This package contains the shared library that checks the signatures of such
files and the certificates behind them, up to a root key.")
set(CPACK_DEBIAN_VERIFICATION_PACKAGE_DEPENDS "libscard1 (= ${scard_debian_version})")
set(CPACK_DEBIAN_VERIFICATION_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)

set(scard_libraries "libscard1 (= ${scard_debian_version})")
if(TARGET scard::verify)
    string(APPEND scard_libraries ", libscardverify1 (= ${scard_debian_version})")
endif()

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libscard-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${what_it_is}\n
This package contains the headers, a CMake package and pkg-config files.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${scard_libraries}, qtbase5-dev (>= 5.14)")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME scard-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${what_it_is}\n\nThis package contains the command-line program.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${scard_libraries}")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS pcscd)

# What every package has to say of itself.
configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/changelog.Debian.in ${PROJECT_BINARY_DIR}/changelog.Debian @ONLY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} prefix)
    install(FILES
        ${PROJECT_BINARY_DIR}/changelog.Debian
        ${PROJECT_SOURCE_DIR}/packaging/debian/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${prefix}_PACKAGE_NAME}
        COMPONENT ${component}
    )
endforeach()
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/compress-documents.cmake)

include(CPack)
