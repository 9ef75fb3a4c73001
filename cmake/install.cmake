# Installs the headers, the library, a CMake package (find_package(tessaline) gives
# tessaline::tessaline) and a relocatable pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TESSALINE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tessaline)

install(TARGETS tessaline EXPORT tessalineTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/tessaline
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT tessalineTargets NAMESPACE tessaline:: DESTINATION ${TESSALINE_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/tessalineConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/tessalineConfig.cmake
                              INSTALL_DESTINATION ${TESSALINE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tessalineConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tessalineConfig.cmake
              ${PROJECT_BINARY_DIR}/tessalineConfigVersion.cmake
        DESTINATION ${TESSALINE_CMAKE_DIR})

# The .pc file finds the prefix relative to itself, so the installed tree can be moved.
file(RELATIVE_PATH TESSALINE_PC_TO_PREFIX
     /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" TESSALINE_PC_TO_PREFIX "${TESSALINE_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/tessaline.pc.in ${PROJECT_BINARY_DIR}/tessaline.pc
               @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tessaline.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
