# The VTK filters and the program on them, where the libraries that they need are found.

# VTK's own search looks for packages that need a C compiler.
enable_language(C)
find_package(
    VTK 9.1 QUIET
    COMPONENTS ChartsCore
               CommonCore
               CommonDataModel
               CommonExecutionModel
               CommonMath
               FiltersCore
               FiltersGeneral
               FiltersGeometry
               FiltersModeling
               IOCGNSReader
               IOCore
               IOEnSight
               IOExodus
               IOExport
               IOGeometry
               IOImage
               IOLegacy
               IOParallel
               IOParallelXML
               IOXML
               RenderingAnnotation
               RenderingContext2D
               RenderingContextOpenGL2
               RenderingCore
               RenderingFreeType
               RenderingOpenGL2
               cgns
               netcdf
               pugixml)
find_package(CLI11 QUIET)
find_package(nlohmann_json QUIET)
find_package(nanoflann QUIET)
find_package(X11 QUIET)

if(NOT VTK_FOUND)
    message(STATUS "Without the VTK filters and the qel program: VTK 9.1 is not found (libvtk9-dev)")
    return()
endif()
add_subdirectory(integrations)
set(QEL_HAVE_VTK ON)

if(NOT CLI11_FOUND OR NOT nlohmann_json_FOUND OR NOT nanoflann_FOUND OR NOT X11_FOUND)
    message(STATUS "Without the qel program: it needs CLI11, nlohmann_json, nanoflann and X11 "
                   "(libcli11-dev, nlohmann-json3-dev, libnanoflann-dev, libx11-dev)")
    return()
endif()
add_subdirectory(apps)
set(QEL_HAVE_PROGRAM ON)
