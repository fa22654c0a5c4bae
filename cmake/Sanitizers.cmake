if(QUORVANE_SANITIZERS)
    add_compile_options(-fsanitize=${QUORVANE_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${QUORVANE_SANITIZERS})
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang$")  # AppleClang too
        add_compile_options(-fno-sanitize=pointer-overflow)  # RapidJSON adds 0 to null pointers
    endif()
endif()
