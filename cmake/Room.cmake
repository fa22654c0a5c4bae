# A room of the house: one library of its own sources, included from the root as "Room/File.hpp".
function(quorvane_room name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC ${ARG_LINKS})
    quorvane_precompiled(${name} quorvane_precompiled_standard)
endfunction()

# The speed of tests does not matter. A test with a fault of these kinds crashes anyway, and the checks take a third of the
# compiler's time.
set(QUORVANE_TEST_OPTIONS "")
if(QUORVANE_SANITIZERS MATCHES undefined)
    list(APPEND QUORVANE_TEST_OPTIONS -fno-sanitize=null,alignment,vptr)
endif()
if(CMAKE_CROSSCOMPILING)
    list(APPEND QUORVANE_TEST_OPTIONS -O0)
endif()

# A test program of GoogleTest cases. Its sources are remembered: configuring fails if a test file is in no program. LABEL
# tells that several threads or processes meet in it: those are what CI runs with the thread sanitizer.
function(quorvane_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} quorvane_test_support GTest::gtest GTest::gtest_main)
    target_compile_options(${name} PRIVATE ${QUORVANE_TEST_OPTIONS})
    quorvane_precompiled(${name} quorvane_precompiled_tests)
    # A race ends the process that has it, or the programs of a session would only write it down.
    set(properties TIMEOUT 120 ENVIRONMENT "TSAN_OPTIONS=halt_on_error=1")
    if(ARG_LABEL)
        add_dependencies(concurrent-tests ${name})
        list(APPEND properties LABELS ${ARG_LABEL})
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES ${properties})
    foreach(source IN LISTS ARG_SOURCES)
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
        set_property(GLOBAL APPEND PROPERTY QUORVANE_TEST_SOURCES "${source}")
    endforeach()
endfunction()

# Call after every quorvane_test.
function(quorvane_check_every_test_is_built)
    file(GLOB_RECURSE files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/*Test.cpp")
    get_property(built GLOBAL PROPERTY QUORVANE_TEST_SOURCES)
    foreach(file IN LISTS files)
        if(NOT file IN_LIST built)
            message(FATAL_ERROR "${file} is in no test program: add it to one with quorvane_test().")
        endif()
    endforeach()
endfunction()
