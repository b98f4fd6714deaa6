# Finds a platform's own libaux: headers <aux/Error.h>, <aux/ErrorData.h>, <aux/CountryCodes.h> and the
# library. Gives the target scard::aux.
find_path(Aux_INCLUDE_DIR aux/Error.h)
find_library(Aux_LIBRARY aux)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Aux REQUIRED_VARS Aux_LIBRARY Aux_INCLUDE_DIR)

if(Aux_FOUND AND NOT TARGET scard::aux)
    add_library(scard::aux UNKNOWN IMPORTED GLOBAL)
    set_target_properties(scard::aux PROPERTIES
        IMPORTED_LOCATION ${Aux_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${Aux_INCLUDE_DIR}
        INTERFACE_LINK_LIBRARIES Qt5::Core
    )
endif()
