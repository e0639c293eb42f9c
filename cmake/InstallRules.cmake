# What is installed beside the targets, GDAL's data and the manual.
install(DIRECTORY include/orvexcommon DESTINATION "${ORVEX_INSTALL_HEADERS}" COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(FILES "${ORVEX_GENERATED_INCLUDE}/orvexcommon/Version.h"
        DESTINATION "${ORVEX_INSTALL_HEADERS}/orvexcommon" COMPONENT development)
# The interface definitions, and beside them the one that they import and some compilers lack.
install(DIRECTORY include/orvexcommon/ DESTINATION "${ORVEX_INSTALL_IDL}" COMPONENT development FILES_MATCHING PATTERN "*.idl")
install(DIRECTORY windows/idl/ DESTINATION "${ORVEX_INSTALL_IDL}" COMPONENT development)
if(WIN32)
    return()
endif()

include(CMakePackageConfigHelpers)
set(packages "${CMAKE_CURRENT_BINARY_DIR}/packages")
get_property(orvex_host_libraries GLOBAL PROPERTY ORVEX_HOST_LIBRARIES)
configure_package_config_file(cmake/OrvexCommonConfig.cmake.in "${packages}/OrvexCommonConfig.cmake"
    INSTALL_DESTINATION "${ORVEX_INSTALL_CMAKE}" PATH_VARS ORVEX_INSTALL_HEADERS ORVEX_INSTALL_LIBRARIES
    NO_CHECK_REQUIRED_COMPONENTS_MACRO)
# Before 1.0 a minor version may change the interfaces.
write_basic_package_version_file("${packages}/OrvexCommonConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${packages}/OrvexCommonConfig.cmake" "${packages}/OrvexCommonConfigVersion.cmake"
        DESTINATION "${ORVEX_INSTALL_CMAKE}" COMPONENT development)

file(RELATIVE_PATH orvex_prefix "/${ORVEX_INSTALL_PKGCONFIG}" "/")
string(REGEX REPLACE "/$" "" orvex_prefix "${orvex_prefix}")
foreach(package orvexcommon orvexcommon-c)
    configure_file(cmake/${package}.pc.in "${packages}/${package}.pc" @ONLY)
    install(FILES "${packages}/${package}.pc" DESTINATION "${ORVEX_INSTALL_PKGCONFIG}" COMPONENT development)
endforeach()

install(FILES LICENSE THIRD-PARTY.md CHANGELOG.md docs/embedding.md DESTINATION "${ORVEX_INSTALL_DOCUMENTS}" COMPONENT terms)
orvex_end_installation()
