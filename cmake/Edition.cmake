# Selects the edition by target system. Differences outside platform/ are set here.
if(APPLE)
    set(QUORVANE_PLATFORM_FOLDER platform/macos)
    set(QUORVANE_SERVICES quorvane_macos)       # services without a screen
    set(QUORVANE_PLATFORM quorvane_macos_card)  # additional services of the card
    set(QUORVANE_PROGRAM_FOLDER MacOS)
    set(CMAKE_OBJCXX_STANDARD 23)
    set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
    set(CMAKE_OBJCXX_EXTENSIONS OFF)
    set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
    enable_language(OBJCXX)
    add_compile_options($<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
else()
    set(QUORVANE_PLATFORM_FOLDER platform/linux)
    set(QUORVANE_SERVICES quorvane_linux)
    set(QUORVANE_PLATFORM quorvane_linux_display)
    set(QUORVANE_PROGRAM_FOLDER Linux)
    add_compile_options(-pthread)  # as in GLib's flags, because precompiled headers need the same options everywhere
endif()
