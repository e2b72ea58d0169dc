# SPDX-License-Identifier: MIT
# The version is defined once, in the header that hosts read, and with it the number of the binary
# interface.
set(header ${CMAKE_CURRENT_LIST_DIR}/../include/beatatlas/version.h)
foreach(name VERSION_MAJOR VERSION_MINOR VERSION_PATCH INTERFACE)
    file(STRINGS ${header} line REGEX "^#define BEATATLAS_${name} [0-9]+$")
    if(NOT line MATCHES " ([0-9]+)$")
        message(FATAL_ERROR "${header} defines no BEATATLAS_${name}")
    endif()
    set(BEATATLAS_${name} ${CMAKE_MATCH_1})
endforeach()
set(BEATATLAS_VERSION
    ${BEATATLAS_VERSION_MAJOR}.${BEATATLAS_VERSION_MINOR}.${BEATATLAS_VERSION_PATCH})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
