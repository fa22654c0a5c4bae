add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
                    -Wimplicit-fallthrough)
if(QUORVANE_WERROR)
    add_compile_options(-Werror)
endif()
# GCC 12 takes optionals and variants that are returned by value for uninitialised.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    add_compile_options(-Wno-maybe-uninitialized)
endif()
