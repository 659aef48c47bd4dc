# Run by CPack on the staged files before the Debian package is made: Debian keeps games and their
# programs in /usr/games, so they move there from /usr/bin and the menu entry starts the game by
# that path. ../share/tolvar beside them is still /usr/share/tolvar. The programs, already
# stripped, also lose the compiler's notes, as Debian's own packages do.
set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
if(NOT EXISTS ${usr}/bin/tolvar)
  message(FATAL_ERROR "the staged files have no usr/bin/tolvar: ${CPACK_TEMPORARY_DIRECTORY}")
endif()
file(RENAME ${usr}/bin ${usr}/games)
file(GLOB programs ${usr}/games/*)
foreach(program IN LISTS programs)
  execute_process(COMMAND @CMAKE_STRIP@ --remove-section=.comment --remove-section=.note ${program}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set(entry ${usr}/share/applications/@TOLVAR_APP_ID@.desktop)
file(READ ${entry} text)
string(REPLACE "\nExec=tolvar\n" "\nExec=/usr/games/tolvar\n" text "${text}")
file(WRITE ${entry} "${text}")
