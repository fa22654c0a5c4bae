# Finds the JSON library's headers: RAPIDJSON_INCLUDE_DIR. Newer compilers reject one unused operator of its releases, an
# assignment to a constant member, so they get a copy without it.
find_path(QUORVANE_RAPIDJSON rapidjson/document.h REQUIRED)
set(RAPIDJSON_INCLUDE_DIR "${QUORVANE_RAPIDJSON}")
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    set(RAPIDJSON_INCLUDE_DIR "${CMAKE_BINARY_DIR}/json")
    file(REAL_PATH "${QUORVANE_RAPIDJSON}/rapidjson" headers)  # a copied link would lead back there
    file(COPY "${headers}/" DESTINATION "${RAPIDJSON_INCLUDE_DIR}/rapidjson"
         PATTERN document.h EXCLUDE)
    file(READ "${headers}/document.h" text)
    string(REPLACE "GenericStringRef& operator=(const GenericStringRef& rhs) { s = rhs.s; length = rhs.length; }" ""
           text "${text}")
    file(CONFIGURE OUTPUT "${RAPIDJSON_INCLUDE_DIR}/rapidjson/document.h" CONTENT "${text}" @ONLY)
endif()
