if(QUORVANE_SANITIZERS)
    add_compile_options(-fsanitize=${QUORVANE_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${QUORVANE_SANITIZERS})
endif()
