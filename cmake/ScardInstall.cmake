# What `cmake --install` gives, in parts that packages follow: `runtime` (libscard and libaux), `verification`
# (libscardverify), `development` (headers and what finds them) and `tools` (the program); and `license`, for Debian has
# a file of its own. All of it can be moved as a whole.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(scard_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/scard)

# A shared library, in the part `runtime` unless its property SCARD_INSTALL_COMPONENT names another, and its public
# headers, which keep their folders.
function(scard_install_library target)
    get_target_property(component ${target} SCARD_INSTALL_COMPONENT)
    if(NOT component)
        set(component runtime)
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    set_property(TARGET ${target} PROPERTY SCARD_PUBLIC_HEADERS ${ARGN})
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    install(TARGETS ${target}
        EXPORT scard
        LIBRARY
            DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${component}
            NAMELINK_COMPONENT development
    )
    foreach(header IN LISTS ARGN)
        get_filename_component(folder ${header} DIRECTORY)
        install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${target}/${folder} COMPONENT development)
    endforeach()
endfunction()

# The program, its manual page and its completion.
function(scard_install_program target)
    set(library_path ${CMAKE_INSTALL_FULL_LIBDIR})
    if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} AND NOT IS_ABSOLUTE ${CMAKE_INSTALL_BINDIR})
        file(RELATIVE_PATH from_program_to_library /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
        set(library_path "$ORIGIN/${from_program_to_library}")
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${library_path}")
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/man/scard.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES ${PROJECT_SOURCE_DIR}/cli/completion/scard
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT tools
    )
endfunction()

# What find_package(scard) and pkg-config read.
function(scard_install_package)
    install(EXPORT scard
        FILE scardTargets.cmake
        NAMESPACE scard::
        DESTINATION ${scard_cmake_dir}
        COMPONENT development
    )
    configure_package_config_file(
        ${PROJECT_SOURCE_DIR}/cmake/scardConfig.cmake.in ${PROJECT_BINARY_DIR}/scardConfig.cmake
        INSTALL_DESTINATION ${scard_cmake_dir}
        NO_SET_AND_CHECK_MACRO
    )
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/scardConfigVersion.cmake COMPATIBILITY SameMajorVersion)
    set(package_files ${PROJECT_BINARY_DIR}/scardConfig.cmake ${PROJECT_BINARY_DIR}/scardConfigVersion.cmake)
    if(SCARD_SYSTEM_AUX)
        list(APPEND package_files ${PROJECT_SOURCE_DIR}/cmake/FindAux.cmake)
    endif()
    install(FILES ${package_files} DESTINATION ${scard_cmake_dir} COMPONENT development)

    set(pc_prefix ${CMAKE_INSTALL_PREFIX})
    if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
        file(RELATIVE_PATH prefix_from_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
        set(pc_prefix "\${pcfiledir}/${prefix_from_pc}")
    endif()
    foreach(dir LIBDIR INCLUDEDIR)
        set(pc_${dir} ${CMAKE_INSTALL_${dir}})
        if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_${dir}})
            set(pc_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
        endif()
    endforeach()
    if(SCARD_SYSTEM_AUX)
        get_filename_component(aux_libdir ${Aux_LIBRARY} DIRECTORY)
        set(pc_aux_libs "-L${aux_libdir} ")
        set(pc_aux_cflags " -I${Aux_INCLUDE_DIR}")
        set(pc_aux_link ":${aux_libdir}")
    endif()
    set(pc_names scard)
    if(TARGET scard::verify)
        list(APPEND pc_names scardverify)
    endif()
    foreach(name IN LISTS pc_names)
        configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
        install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
            DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
            COMPONENT development
        )
    endforeach()
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libscard COMPONENT license)
endfunction()
