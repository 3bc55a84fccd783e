# Compares the symbols that the library exports with the classes that it is to export: members,
# statics, operators that take one of them, virtual tables and type information.
#
# Of a shared object it also compares the version that stands beside every symbol with that in the
# library's name; a DLL has none.
#
#     cmake -DNM=<nm> -DSOVERSION=<version of the interface>  (of a shared object)
#           -DOBJDUMP=<objdump> -DCXXFILT=<c++filt>           (of a DLL)
#           -DLIBRARY=<library> -DHEADERS=<folder of the public headers> -P <this file>

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

# Sets `symbols` to the lines of a text.
function(set_symbols text)
    # Brackets and semicolons have a meaning in CMake's lists.
    string(REGEX REPLACE "[][;]" "_" text "${text}")
    string(REGEX REPLACE "\n$" "" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(symbols ${lines} PARENT_SCOPE)
endfunction()

# Sets `symbols` to those of a shared object, without their version, which must be the stated one.
function(read_shared_object)
    execute_process(
        COMMAND ${NM} --dynamic --defined-only --demangle --format=posix ${LIBRARY}
        OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
    set_symbols("${listing}")
    # The version is a symbol, too, and stands behind each of the others.
    set(version QELDATAHANDLING_${SOVERSION})
    list(FILTER symbols EXCLUDE REGEX "^${version} A ")
    set(unversioned ${symbols})
    list(FILTER unversioned EXCLUDE REGEX "@@${version} ")
    if(unversioned)
        message(SEND_ERROR "Not of version ${version}: ${unversioned}")
    endif()
    list(TRANSFORM symbols REPLACE "@@[^ ]* [A-Za-z] [0-9a-f ]*$" "")
    set(symbols ${symbols} PARENT_SCOPE)
endfunction()

# Sets `symbols` to those in the export table of a DLL.
function(read_dll)
    execute_process(
        COMMAND ${OBJDUMP} --private-headers ${LIBRARY}
        COMMAND sed -n "s/^.*\\[ *[0-9]*\\] \\(_Z[^ ]*\\)$/\\1/p"
        COMMAND ${CXXFILT} --no-strip-underscore
        OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
    set_symbols("${listing}")
    set(symbols ${symbols} PARENT_SCOPE)
endfunction()

set(kinds vtable typeinfo)
if(OBJDUMP)
    read_dll() # the names of types need not be exported: they are compared letter by letter
else()
    read_shared_object()
    list(APPEND kinds "typeinfo name")
endif()

list(JOIN classes "|" any_class)
list(JOIN batch_functions "|" any_function)
foreach(symbol IN LISTS symbols)
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
    foreach(kind IN LISTS kinds)
        if(EXISTS ${HEADERS}/${class}.h AND NOT "${kind} ${class}" IN_LIST described)
            message(SEND_ERROR "The ${kind} of qel::${class} is not exported")
        endif()
    endforeach()
endforeach()
list(LENGTH symbols count)
message(STATUS "${count} symbols exported")
