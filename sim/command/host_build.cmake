# sorvane-sim serves callers of both widths as a 64-bit program (libfuse is there for 64 bits only): a 32-bit build takes it
# from a 64-bit one, which is configured like this one where it is not there yet.
set(SORVANE_HOST_BUILD ${PROJECT_BINARY_DIR}/host CACHE PATH "The 64-bit build that sorvane-sim is taken from")
if(NOT EXISTS ${SORVANE_HOST_BUILD}/CMakeCache.txt)
    set(settings)
    foreach(setting CMAKE_BUILD_TYPE CMAKE_C_COMPILER CMAKE_CXX_COMPILER CMAKE_C_FLAGS CMAKE_CXX_FLAGS
        CMAKE_CXX_FLAGS_RELEASE CMAKE_UNITY_BUILD CMAKE_EXPORT_COMPILE_COMMANDS CMAKE_CXX_COMPILER_LAUNCHER
        CMAKE_C_COMPILER_LAUNCHER SORVANE_COMMAND_OPTIONS SORVANE_WARNINGS)
        string(REGEX REPLACE " *-(m32|march=[^ ]*)" "" value "${${setting}}")
        string(REPLACE ";" "\\;" value "${value}")
        list(APPEND settings "-D${setting}=${value}")
    endforeach()
    message(STATUS "Configuring the 64-bit build of sorvane-sim in ${SORVANE_HOST_BUILD}")
    execute_process(RESULT_VARIABLE status OUTPUT_QUIET
        COMMAND ${CMAKE_COMMAND} -G ${CMAKE_GENERATOR} -S ${PROJECT_SOURCE_DIR} -B ${SORVANE_HOST_BUILD} ${settings})
    if(status)
        file(REMOVE ${SORVANE_HOST_BUILD}/CMakeCache.txt)
        message(FATAL_ERROR "The 64-bit build of sorvane-sim could not be configured")
    endif()
endif()

# Looked at in every build: only the other build knows whether anything is to be done.
set(program ${CMAKE_CURRENT_BINARY_DIR}/sorvane-sim)
add_custom_target(sorvane_sim_host ALL
    COMMAND ${CMAKE_COMMAND} --build ${SORVANE_HOST_BUILD} --target sorvane-sim
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${SORVANE_HOST_BUILD}/sim/command/sorvane-sim ${program}
    BYPRODUCTS ${program}
    VERBATIM)
add_executable(sorvane-sim IMPORTED GLOBAL)
set_target_properties(sorvane-sim PROPERTIES IMPORTED_LOCATION ${program})
add_dependencies(sorvane-sim sorvane_sim_host)
