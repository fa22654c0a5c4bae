# Precompiled standard headers. Each program and library still includes what it uses: the macOS edition is built without them.
set(QUORVANE_STANDARD_HEADERS
    <algorithm> <array> <chrono> <cmath> <cstdint> <expected> <filesystem> <functional> <map> <memory> <mutex> <optional>
    <set> <span> <string> <string_view> <utility> <variant> <vector>)

# quorvane_precompiled(TARGET PROVIDER): TARGET uses the headers that PROVIDER has compiled. Does nothing for Objective-C++.
function(quorvane_precompiled target provider)
    get_target_property(sources ${target} SOURCES)
    if(TARGET ${provider} AND NOT sources MATCHES "[.]mm")
        target_precompile_headers(${target} REUSE_FROM ${provider})
    endif()
endfunction()

if(QUORVANE_PRECOMPILE STREQUAL all)
    add_library(quorvane_precompiled_standard OBJECT "${CMAKE_CURRENT_LIST_DIR}/Precompiled.cpp")
    target_precompile_headers(quorvane_precompiled_standard PRIVATE ${QUORVANE_STANDARD_HEADERS})
endif()
