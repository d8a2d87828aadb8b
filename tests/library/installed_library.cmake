# Installs a build into a folder of its own and builds the example program against it, by find_package and by
# pkg-config; both run a geometry. A project that takes the sources in as a folder has to configure.
set(prefix ${BUILD}/library_test/installed)
file(REMOVE_RECURSE ${BUILD}/library_test)

function(must)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}: ${status}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(must_run program)
    file(COPY ${SOURCE}/examples/shock_tube.gmt DESTINATION ${BUILD}/library_test/run)
    must(${CMAKE_COMMAND} -E chdir ${BUILD}/library_test/run ${program} shock_tube.gmt)
    if(NOT output MATCHES "step [0-9]+, [0-9.e-]+ s: [0-9.]+ K in cell [0-9]+\n$")
        message(FATAL_ERROR "${program} printed\n${output}")
    endif()
endfunction()

must(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

set(built ${BUILD}/library_test/example)
must(${CMAKE_COMMAND} -S ${SOURCE}/examples/library -B ${built} -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_CXX_COMPILER=${CXX})
must(${CMAKE_COMMAND} --build ${built})
must_run(${built}/hottest_cell)

find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
    set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
    must(${PKG_CONFIG} --define-variable=prefix=${prefix} --cflags --libs norvane)
    separate_arguments(flags UNIX_COMMAND "${output}")
    must(${CXX} -std=c++20 ${SOURCE}/examples/library/hottest_cell.cpp -o ${built}/by_pkg_config ${flags})
    must_run(${built}/by_pkg_config)
endif()

file(WRITE ${BUILD}/library_test/parent/CMakeLists.txt "
    cmake_minimum_required(VERSION 3.25)
    project(parent LANGUAGES CXX)
    add_subdirectory(${SOURCE} norvane)
    add_executable(parent ${SOURCE}/examples/library/hottest_cell.cpp)
    target_link_libraries(parent PRIVATE norvane::shell)
    if(TARGET norvane OR TARGET norvane_tests)
        message(FATAL_ERROR \"a project that takes the libraries in gets programs and tests, too\")
    endif()")
must(${CMAKE_COMMAND} -S ${BUILD}/library_test/parent -B ${BUILD}/library_test/parent_build -D CMAKE_CXX_COMPILER=${CXX})
