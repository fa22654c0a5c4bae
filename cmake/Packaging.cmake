# Install rules, and the Debian package that cpack makes.
include(GNUInstallDirs)
# No multiarch folder: the host looks for the bundle in lib beside the bin folder.
set(QUORVANE_INSTALLED_BUNDLE "lib/quorvane/Quorvane Lock Screen.app")

install(TARGETS quorvane-host RUNTIME)
install(TARGETS quorvane-fetch-artwork RUNTIME DESTINATION lib/quorvane)  # where the host looks for it
install(TARGETS quorvane-lock-screen quorvane-card-surface RUNTIME DESTINATION "${QUORVANE_INSTALLED_BUNDLE}/Contents/Linux")
get_property(modules GLOBAL PROPERTY QUORVANE_MODULES)
install(TARGETS ${modules} LIBRARY DESTINATION "${QUORVANE_INSTALLED_BUNDLE}/Contents/Linux")
install(FILES "${QUORVANE_BUNDLE}/Contents/Info.plist" DESTINATION "${QUORVANE_INSTALLED_BUNDLE}/Contents")
install(FILES packaging/quorvane-host.service DESTINATION lib/systemd/user)
install(FILES packaging/completions/quorvane-host.bash RENAME quorvane-host
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(FILES packaging/completions/quorvane-host.zsh RENAME _quorvane-host
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
install(FILES packaging/completions/quorvane-host.fish DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")

# Compressed without a timestamp, as Debian requires.
find_program(GZIP gzip REQUIRED)
set(compressed "")
function(quorvane_compressed source name)
    cmake_path(ABSOLUTE_PATH source)
    set(target "${CMAKE_BINARY_DIR}/packaging/${name}.gz")
    add_custom_command(OUTPUT "${target}"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${CMAKE_BINARY_DIR}/packaging"
        COMMAND sh -c "exec \"$1\" -9nc \"$2\" >\"$3\"" sh "${GZIP}" "${source}" "${target}"
        DEPENDS "${source}" VERBATIM)
    set(compressed ${compressed} "${target}" PARENT_SCOPE)
endfunction()
foreach(page quorvane-host quorvane-lock-screen)
    quorvane_compressed("docs/man/${page}.1" "${page}.1")
    install(FILES "${CMAKE_BINARY_DIR}/packaging/${page}.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endforeach()
quorvane_compressed(CHANGELOG.md changelog)
configure_file(packaging/changelog.in packaging/changelog.Debian @ONLY)
quorvane_compressed("${CMAKE_BINARY_DIR}/packaging/changelog.Debian" changelog.Debian)
add_custom_target(quorvane_packaging ALL DEPENDS ${compressed})
set(documents "${CMAKE_INSTALL_DATADIR}/doc/quorvane-lock-screen")
install(FILES "${CMAKE_BINARY_DIR}/packaging/changelog.gz" "${CMAKE_BINARY_DIR}/packaging/changelog.Debian.gz"
    DESTINATION "${documents}")
file(READ LICENSE license)
string(REGEX REPLACE "^.*\n(Permission to use)" "\\1" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license " ${license}")
set(QUORVANE_LICENSE_TEXT "${license}")
configure_file(packaging/copyright.in packaging/copyright @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/packaging/copyright" docs/scripted-player.md DESTINATION "${documents}")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorvane-lock-screen)
set(CPACK_PACKAGE_CONTACT "The authors of Quorvane Lock Screen <quorvane@quillon.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "now-playing card on the lock screen")
set(CPACK_PACKAGE_DESCRIPTION
"While the screen is locked and music plays, a card is shown over the locker:
artwork, title and artist, times, transport buttons, a heart and a volume
slider. It works with i3lock, xsecurelock, xscreensaver and others, and with
every player that speaks MPRIS.
.
Each user installs the card with 'quorvane-host install'.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-inter, default-dbus-session-bus | dbus-session-bus, libpulse0, webp-pixbuf-loader")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "i3lock | xsecurelock | xscreensaver")
include(CPack)
