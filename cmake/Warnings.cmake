add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
                    -Wimplicit-fallthrough)
if(QUORVANE_WERROR)
    add_compile_options(-Werror)
endif()
