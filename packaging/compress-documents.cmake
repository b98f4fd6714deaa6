# Debian wants manual pages and changelogs compressed, without a time stamp, so that a rebuild gives the same package.
file(GLOB documents
    ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/doc/*/changelog.Debian
    ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/man/*/*.1
)
foreach(document IN LISTS documents)
    execute_process(COMMAND gzip -9nf ${document} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
