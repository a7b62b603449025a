# Installation of the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)
set(MMFS_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/mmfileshared)
install(EXPORT mmfilesharedTargets NAMESPACE mmfileshared:: DESTINATION ${MMFS_CMAKE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/mmfilesharedConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/mmfilesharedConfig.cmake INSTALL_DESTINATION ${MMFS_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/mmfilesharedConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mmfilesharedConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/mmfilesharedConfigVersion.cmake
        DESTINATION ${MMFS_CMAKE_DIR})
# Relocatable: the prefix is found from where the file is installed.
file(RELATIVE_PATH MMFS_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" MMFS_PC_TO_PREFIX "${MMFS_PC_TO_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/mmfileshared.pc.in
               ${CMAKE_CURRENT_BINARY_DIR}/mmfileshared.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mmfileshared.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
