# A Debian package of the install: cpack -G DEB in the build folder makes
# halvane_<version>_<arch>.deb. The libraries it needs come from
# dpkg-shlibdeps; Qt loads the Targa reader as a plugin, which no library
# names, so that package is named here.
set(CPACK_PACKAGE_NAME halvane)
set(CPACK_PACKAGE_VENDOR Halvane)
set(CPACK_PACKAGE_CONTACT "Halvane <halvane@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Configure and launch a Quake III Arena dedicated server")
# Lines of the extended description stay below 80 characters.
set(CPACK_PACKAGE_DESCRIPTION
    "Halvane keeps every option of a Quake III Arena game server in one tabbed
window, writes the game's console scripts and starts the game as a listen,
private or dedicated server. Without the original game it sets up the free
OpenArena game on the ioquake3 dedicated server.")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://halvane.example.org")
# The desktop entry is written with the installed path of the executable,
# so the install runs with the real prefix into the package's tree.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# A tool for running servers, not a game: Debian's "games" section is for
# packages that install a game in /usr/games.
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ioquake3-server, openarena-server")
set(CPACK_GENERATOR DEB)
include(CPack)
