# Configures, builds and runs an external consumer's CMake project against the installed package.
# OPTIONS are further arguments for its configuration.

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${BUILD})
execute_process(
    COMMAND
        ${CMAKE_COMMAND} -S ${SOURCE} -B ${BUILD} -G ${GENERATOR} -DCMAKE_BUILD_TYPE=${CONFIG}
        -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${PREFIX} -DQEL_VERSION_WANTED=${VERSION}
        ${OPTIONS}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} --config ${CONFIG}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${BUILD} -C ${CONFIG} --verbose
                        --no-tests=error
                COMMAND_ERROR_IS_FATAL ANY)
