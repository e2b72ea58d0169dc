# SPDX-License-Identifier: MIT
# The version is defined once, in the header that hosts read.
set(header ${CMAKE_CURRENT_LIST_DIR}/../include/beatatlas/version.h)
set(BEATATLAS_VERSION "")
foreach(part MAJOR MINOR PATCH)
    file(STRINGS ${header} line REGEX "^#define BEATATLAS_VERSION_${part} [0-9]+$")
    if(NOT line MATCHES " ([0-9]+)$")
        message(FATAL_ERROR "${header} defines no BEATATLAS_VERSION_${part}")
    endif()
    list(APPEND BEATATLAS_VERSION ${CMAKE_MATCH_1})
endforeach()
list(JOIN BEATATLAS_VERSION "." BEATATLAS_VERSION)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
