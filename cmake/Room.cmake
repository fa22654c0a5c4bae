# quorvane_room(NAME SOURCES … LINKS … INCLUDES … FOLDER …): the library of one folder, included from the root as
# "folder/File.hpp". Its files may include only their own folder, the folders of rooms that it links, and the single headers in
# INCLUDES: interfaces whose implementation is linked elsewhere. FOLDER is a subfolder of the CMakeLists.txt's own.
function(quorvane_room name)
    cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINKS;INCLUDES" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC ${ARG_LINKS})
    set(unity ${QUORVANE_UNITY})
    if(ARG_SOURCES MATCHES "[.]mm")  # Objective-C++ is compiled a file at a time
        set(unity OFF)
    endif()
    if(unity)  # GCC treats the room's .cpp files as headers there
        target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    endif()
    quorvane_precompiled(${name} quorvane_precompiled_standard)
    cmake_path(APPEND CMAKE_CURRENT_SOURCE_DIR "${ARG_FOLDER}" OUTPUT_VARIABLE folder)
    cmake_path(NORMAL_PATH folder)
    file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}" "${folder}")
    set_target_properties(${name} PROPERTIES QUORVANE_FOLDER "${folder}" QUORVANE_LINKS "${ARG_LINKS}"
                          QUORVANE_INCLUDES "${ARG_INCLUDES}"
                          UNITY_BUILD ${unity} UNITY_BUILD_BATCH_SIZE 0)
    set_property(GLOBAL APPEND PROPERTY QUORVANE_ROOMS ${name})
endfunction()

# The folders of a room and of all rooms that it links.
function(quorvane_folders_of target result)
    set(folders "")
    if(TARGET ${target})
        get_target_property(folders ${target} QUORVANE_FOLDER)
        get_target_property(links ${target} QUORVANE_LINKS)
        if(NOT folders)
            set(folders "")
            get_target_property(links ${target} INTERFACE_LINK_LIBRARIES)  # a name for several rooms
        endif()
        foreach(link IN LISTS links)
            quorvane_folders_of("${link}" more)
            list(APPEND folders ${more})
        endforeach()
    endif()
    set(${result} ${folders} PARENT_SCOPE)
endfunction()

# Call after every quorvane_room. Configuring fails if a room includes a file that it does not link.
function(quorvane_check_includes)
    get_property(rooms GLOBAL PROPERTY QUORVANE_ROOMS)
    foreach(room IN LISTS rooms)
        quorvane_folders_of(${room} folders)
        get_target_property(folder ${room} QUORVANE_FOLDER)
        get_target_property(includes ${room} QUORVANE_INCLUDES)
        file(GLOB files "${PROJECT_SOURCE_DIR}/${folder}/*.[chm]pp" "${PROJECT_SOURCE_DIR}/${folder}/*.mm")
        list(FILTER files EXCLUDE REGEX "Main[.]cpp$")  # an entry links what it needs
        foreach(file IN LISTS files)
            file(STRINGS "${file}" lines REGEX "^#include \"[^\"]+\"")
            foreach(line IN LISTS lines)
                string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" header "${line}")
                cmake_path(GET header PARENT_PATH from)
                if(NOT from IN_LIST folders AND NOT header IN_LIST includes)
                    message(SEND_ERROR "${file} includes ${header}, but ${room} does not link ${from}.")
                endif()
            endforeach()
        endforeach()
    endforeach()
endfunction()

# Test code skips the sanitizer checks that take a third of the compile time: a test with such a fault crashes anyway.
set(QUORVANE_TEST_OPTIONS "")
if(QUORVANE_SANITIZERS MATCHES undefined)
    list(APPEND QUORVANE_TEST_OPTIONS -fno-sanitize=null,alignment,vptr)
endif()
if(CMAKE_CROSSCOMPILING)
    list(APPEND QUORVANE_TEST_OPTIONS -O0)
endif()

# quorvane_test(NAME SOURCES … LINKS … LABEL …): a test program. Configuring fails if a test file is in no program. A LABEL
# says that the tests use several threads or processes, so that CI also runs them with the thread sanitizer.
function(quorvane_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    if(CMAKE_CROSSCOMPILING)  # it cannot run here: built only when it is named
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} quorvane_test_support GTest::gtest GTest::gtest_main)
    target_compile_options(${name} PRIVATE ${QUORVANE_TEST_OPTIONS})
    quorvane_precompiled(${name} quorvane_precompiled_tests)
    # A race must end its process; the programs of a test session would otherwise only log it.
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
