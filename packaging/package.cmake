# `cpack -G DEB` in the build folder: tolvar_VERSION_ARCH.deb, installed under /usr. The shared
# libraries it needs are computed by dpkg-shlibdeps; what the game needs besides them is listed.
set(CPACK_PACKAGE_NAME tolvar)
set(CPACK_PACKAGE_VENDOR "The Tolvar developers")
set(CPACK_PACKAGE_CONTACT "${TOLVAR_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "puzzle games whose rules are data you can edit")
set(CPACK_PACKAGE_DESCRIPTION
"Tolvar plays puzzle games on a board of coloured pieces, drawn as lit spiky
balls over a starry nebula. Every game is a rules dictionary in one
property-list file: the board, the colours, the events with the actions they
run, the inputs and how the end of a game is judged, so a new game needs a
text editor, not a compiler.
.
Three games come with it: Vexamor (remove colour regions), Trindle (swap
neighbours to make groups of two) and Glimmet (swap neighbours to make lines
of three). Each game keeps a table of best scores. The headless runner
tolvar-sim replays a game from a script, for rules authors.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
if(TOLVAR_HOMEPAGE)
  set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${TOLVAR_HOMEPAGE}")
endif()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries, SDL2_mixer's for the sounds among them, come from dpkg-shlibdeps.
# The main window and text drawn into images use fonts found through fontconfig: the URW fonts
# give "Helvetica" and a sans-serif face.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-urw-base35")
# Without zenity the open panel counts as cancelled.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "zenity")
configure_file(${CMAKE_CURRENT_SOURCE_DIR}/games-layout.cmake ${CMAKE_CURRENT_BINARY_DIR}/games-layout.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_BINARY_DIR}/games-layout.cmake)
include(CPack)
