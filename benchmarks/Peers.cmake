# The libraries that the benchmarks compare with, each where it is found.
find_package(Eigen3 QUIET NO_MODULE)
find_package(GSL QUIET)
find_package(Boost QUIET)
find_package(VTK QUIET COMPONENTS CommonCore CommonDataModel)
find_path(QEL_NANOFLANN_INCLUDE nanoflann.hpp)

# GEOS's C++ interface is marked unstable by its authors, hence no package target for it.
find_path(QEL_GEOS_INCLUDE geos/geom/Geometry.h)
find_library(QEL_GEOS_LIBRARY geos)

# CGAL's headers, without its package, which asks for libraries that these works do not use.
find_path(QEL_CGAL_INCLUDE CGAL/Orthogonal_k_neighbor_search.h)

# qel_benchmark_peers(<group> <name>...) adds those of the named peers that were found to both
# programs of a group.
function(qel_benchmark_peers group)
    foreach(name ${ARGN})
        if(name STREQUAL EIGEN AND TARGET Eigen3::Eigen)
            qel_add_peer(${group} EIGEN "" Eigen3::Eigen)
        elseif(name STREQUAL GSL AND GSL_FOUND)
            qel_add_peer(${group} GSL "" GSL::gsl)
        elseif(name STREQUAL BOOST AND TARGET Boost::headers)
            qel_add_peer(${group} BOOST "" Boost::headers)
        elseif(name STREQUAL VTK AND VTK_FOUND)
            qel_add_peer(${group} VTK "" VTK::CommonCore VTK::CommonDataModel)
        elseif(name STREQUAL NANOFLANN AND QEL_NANOFLANN_INCLUDE)
            qel_add_peer(${group} NANOFLANN ${QEL_NANOFLANN_INCLUDE})
        elseif(name STREQUAL GEOS AND QEL_GEOS_INCLUDE AND QEL_GEOS_LIBRARY)
            qel_add_peer(${group} GEOS ${QEL_GEOS_INCLUDE} ${QEL_GEOS_LIBRARY})
        elseif(name STREQUAL CGAL AND QEL_CGAL_INCLUDE)
            qel_add_peer(${group} CGAL ${QEL_CGAL_INCLUDE})
        endif()
    endforeach()
endfunction()

# qel_add_peer(<group> <name> <include folder> <library>...). Its headers are not ours to warn about.
function(qel_add_peer group name include_folder)
    foreach(program ${group}_benchmark ${group}_benchmark_avx2)
        if(TARGET ${program})
            target_compile_definitions(${program} PRIVATE QEL_BENCHMARK_HAS_${name})
            if(name STREQUAL GEOS)
                target_compile_definitions(${program} PRIVATE USE_UNSTABLE_GEOS_CPP_API)
            endif()
            if(include_folder)
                target_include_directories(${program} SYSTEM PRIVATE ${include_folder})
            endif()
            target_link_libraries(${program} PRIVATE ${ARGN})
        endif()
    endforeach()
endfunction()

# qel_benchmark_peer_source(<group> <name> <source>) adds a file that is about one peer. There
# multiplications and additions may be contracted. The warning is about the compiler's own header.
function(qel_benchmark_peer_source group name source)
    foreach(program ${group}_benchmark ${group}_benchmark_avx2)
        if(TARGET ${program})
            get_target_property(definitions ${program} COMPILE_DEFINITIONS)
            if("QEL_BENCHMARK_HAS_${name}" IN_LIST definitions)
                target_sources(${program} PRIVATE ${source})
            endif()
        endif()
    endforeach()
    set_source_files_properties(
        ${source} PROPERTIES COMPILE_OPTIONS "-ffp-contract=fast;-Wno-maybe-uninitialized")
endfunction()
