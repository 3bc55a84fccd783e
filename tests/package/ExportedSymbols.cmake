# Compares the symbols that the library exports with the classes that it is to export: members,
# statics, operators that take one of them, virtual tables and type information.
#
# It also compares the version that stands beside every symbol with that in the library's name.
#
#     cmake -DNM=<nm> -DLIBRARY=<library> -DHEADERS=<folder of the public headers>
#           -DSOVERSION=<version of the interface> -P <this file>

cmake_minimum_required(VERSION 3.25)

# Host interface: each class stands in the header of its name; the second list has those with
# virtual functions.
set(host_classes
    QELMatrix4 Doublet Vector LineSegment2D NumericalUtils FloatQELVector FloatQELVectorConcrete
    FloatQELVectorComponent TripletQELVector IntQELVector ParametricCurve QuadtreeBucket
    QuadtreeQuad QuadtreeObject TensorEigenizer)
set(polymorphic FloatQELVector FloatQELVectorConcrete FloatQELVectorComponent TripletQELVector
                IntQELVector ParametricCurve)

# Batch interface: classes and free functions.
set(batch_classes CurveView CurveLocator ScalarStatistics TripletStatistics)
set(batch_functions
    analyzeGradients findCrossings findCrossingsWithSegment findCrossingsWithLine findCrossingsWithPlane
    simplifyToError simplifyToCount computeCurveShape computeSignedArea computeOrientation
    resampleCurve)
set(classes ${host_classes} ${batch_classes})

execute_process(
    COMMAND ${NM} --dynamic --defined-only --demangle --format=posix ${LIBRARY}
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
# Brackets and semicolons have a meaning in CMake's lists.
string(REGEX REPLACE "[][;]" "_" listing "${listing}")
string(REGEX REPLACE "\n$" "" listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")

# The version is a symbol, too, and stands behind each of the others.
set(version QELDATAHANDLING_${SOVERSION})
list(FILTER lines EXCLUDE REGEX "^${version} A ")
set(unversioned ${lines})
list(FILTER unversioned EXCLUDE REGEX "@@${version} ")
if(unversioned)
    message(SEND_ERROR "Not of version ${version}: ${unversioned}")
endif()

list(JOIN classes "|" any_class)
list(JOIN batch_functions "|" any_function)
foreach(line IN LISTS lines)
    string(REGEX REPLACE "@@[^ ]* [A-Za-z] [0-9a-f ]*$" "" symbol "${line}")
    if(symbol MATCHES "^qel::(${any_class})(<[a-z]+>)?::")
        list(APPEND exporting ${CMAKE_MATCH_1})
    elseif(symbol MATCHES "^qel::(${any_function})\\(")
        list(APPEND exporting ${CMAKE_MATCH_1})
    elseif(symbol MATCHES "^(vtable|typeinfo|typeinfo name) for qel::(${any_class})$")
        list(APPEND described "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
    elseif(NOT symbol MATCHES "^qel::operator[^A-Za-z]*\\(.*qel::(${any_class})[ &,)].*\\)$")
        message(SEND_ERROR "Exported, but of no class that is to be: ${symbol}")
    endif()
endforeach()

foreach(class IN LISTS classes)
    if(EXISTS ${HEADERS}/${class}.h AND NOT class IN_LIST exporting)
        message(SEND_ERROR "Nothing of qel::${class} is exported")
    endif()
endforeach()
foreach(function IN LISTS batch_functions)
    if(NOT function IN_LIST exporting)
        message(SEND_ERROR "qel::${function} is not exported")
    endif()
endforeach()
foreach(class IN LISTS polymorphic)
    foreach(kind vtable typeinfo "typeinfo name")
        if(EXISTS ${HEADERS}/${class}.h AND NOT "${kind} ${class}" IN_LIST described)
            message(SEND_ERROR "The ${kind} of qel::${class} is not exported")
        endif()
    endforeach()
endforeach()
list(LENGTH lines count)
message(STATUS "${count} symbols exported")
