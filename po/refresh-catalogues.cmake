# cmake -DXGETTEXT=... -DMSGMERGE=... -DSOURCE_DIR=... -DOPTIONS=... -DLANGUAGES=... -DPOT=FILE
#       [-DMERGE=ON | -DCHECK=ON -DMSGFMT=...] -P refresh-catalogues.cmake
#
# Extracts the marked texts of the sources into POT. MERGE: merges POT into po/LL.po for each
# language. CHECK: merges each catalogue with POT into a copy beside POT and fails unless
# `msgfmt -c --statistics` finds every message translated, none fuzzy.
file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR}
     ${SOURCE_DIR}/app/*.cpp ${SOURCE_DIR}/app/*.h ${SOURCE_DIR}/tools/*.cpp ${SOURCE_DIR}/tools/*.h)
list(SORT sources)
list(APPEND sources packaging/org.tolvar.Tolvar.desktop.in packaging/org.tolvar.Tolvar.metainfo.xml.in)
get_filename_component(pot_dir ${POT} DIRECTORY)
file(MAKE_DIRECTORY ${pot_dir})
execute_process(COMMAND ${XGETTEXT} ${OPTIONS} -o ${POT} ${sources}
                WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "xgettext could not extract the marked texts")
endif()

set(incomplete)
foreach(language IN LISTS LANGUAGES)
  set(po ${SOURCE_DIR}/po/${language}.po)
  if(MERGE)
    execute_process(COMMAND ${MSGMERGE} --quiet --update --backup=none --no-wrap ${po} ${POT}
                    RESULT_VARIABLE failed)
  else()
    set(merged ${pot_dir}/${language}.po)
    execute_process(COMMAND ${MSGMERGE} --quiet --no-fuzzy-matching -o ${merged} ${po} ${POT}
                    RESULT_VARIABLE failed)
    if(NOT failed)
      execute_process(COMMAND ${MSGFMT} -c --statistics -o /dev/null ${merged}
                      RESULT_VARIABLE failed ERROR_VARIABLE statistics)
      string(STRIP "${statistics}" statistics)
      message(STATUS "${language}.po: ${statistics}")
      if(statistics MATCHES "fuzzy|untranslated" OR NOT statistics MATCHES "translated message")
        list(APPEND incomplete ${language})
      endif()
    endif()
  endif()
  if(failed)
    message(FATAL_ERROR "po/${language}.po cannot be merged or checked")
  endif()
endforeach()
if(incomplete)
  message(FATAL_ERROR "incomplete catalogues: ${incomplete} (docs/translating.md says how to complete them)")
endif()
