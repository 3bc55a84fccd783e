# What is installed: the libraries and their headers, a CMake package and a pkg-config module.
# Nothing in it names the place of installation, so that the folder may be moved.

include(CMakePackageConfigHelpers)

set(qel_libraries QELDataHandling QELSystem QELError QELException)
set(qel_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QELDataHandling)

# -- Libraries and headers ----

qel_find_libraries_in(. ${qel_libraries})

install(TARGETS ${qel_libraries} EXPORT QELDataHandlingTargets)
install(
    DIRECTORY include/ support/QELException/include/ support/QELError/include/
              support/QELSystem/include/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING
    PATTERN "*.h")

# -- CMake package ----

install(
    EXPORT QELDataHandlingTargets
    NAMESPACE QEL::
    DESTINATION ${qel_package_dir})
configure_package_config_file(
    cmake/QELDataHandlingConfig.cmake.in ${PROJECT_BINARY_DIR}/QELDataHandlingConfig.cmake
    INSTALL_DESTINATION ${qel_package_dir})
# Before 1.0 a minor version may break callers.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/QELDataHandlingConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QELDataHandlingConfig.cmake
              ${PROJECT_BINARY_DIR}/QELDataHandlingConfigVersion.cmake
        DESTINATION ${qel_package_dir})

# The component VTK of it is for the version of VTK that the filters are built with: VTK's libraries
# carry that in their names.
if(QEL_HAVE_VTK)
    install(
        EXPORT QELDataHandlingVTKTargets
        NAMESPACE QEL::
        DESTINATION ${qel_package_dir})
    get_target_property(qel_vtk_modules QELVTK LINK_LIBRARIES)
    list(FILTER qel_vtk_modules INCLUDE REGEX "^VTK::")
    list(TRANSFORM qel_vtk_modules REPLACE "^VTK::" "")
    list(JOIN qel_vtk_modules " " qel_vtk_modules)
    math(EXPR qel_vtk_next_minor "${VTK_MINOR_VERSION} + 1")
    configure_file(cmake/QELDataHandlingVTK.cmake.in ${PROJECT_BINARY_DIR}/QELDataHandlingVTK.cmake
                   @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/QELDataHandlingVTK.cmake DESTINATION ${qel_package_dir})
endif()

# -- pkg-config module ----

# The same flags that the CMake target hands on.
set(qel_pc_cflags "-D_GLIBCXX_ASSERTIONS -ffp-contract=off")
if(NOT BUILD_SHARED_LIBS)
    string(APPEND qel_pc_cflags " -DQEL_STATIC")
endif()
# The way from the module's folder back to the prefix.
file(RELATIVE_PATH qel_pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" qel_pc_to_prefix "${qel_pc_to_prefix}")
configure_file(cmake/QELDataHandling.pc.in ${PROJECT_BINARY_DIR}/QELDataHandling.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/QELDataHandling.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
