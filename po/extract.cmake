# Writes the catalogue template from the code and the window description.
# Run with -DSOURCE_DIR=<tree> -DOUTPUT=<file.pot> -DXGETTEXT=<xgettext> [-DVERSION=<x.y.z>].
foreach(var SOURCE_DIR OUTPUT XGETTEXT)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "extract.cmake needs -D${var}=...")
  endif()
endforeach()

# Relative names keep the template free of the builder's own folders.
file(GLOB code RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/app/*.cpp ${SOURCE_DIR}/app/*.h
     ${SOURCE_DIR}/collect/*.cpp ${SOURCE_DIR}/collect/*.h ${SOURCE_DIR}/cli/*.cpp ${SOURCE_DIR}/cli/*.h)
file(GLOB windows RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/gtk/glade/*.glade)
list(SORT code)
list(SORT windows)

set(common --force-po --from-code=UTF-8 --add-comments=TRANSLATORS: --add-location=file
    --copyright-holder=Norvex --package-name=norvex-logcollection --package-version=${VERSION}
    --msgid-bugs-address=support@norvex.example --output=${OUTPUT})

# The code pass creates the template; the window pass joins it, so an empty
# code list must not leave a stale template behind.
file(REMOVE ${OUTPUT})
set(join "")
if(code)
  execute_process(COMMAND ${XGETTEXT} ${common} --language=C++ --keyword=_ --keyword=gettext ${code}
                  WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "xgettext failed on the code")
  endif()
  set(join --join-existing)
endif()
if(windows)
  execute_process(COMMAND ${XGETTEXT} ${common} ${join} --language=Glade ${windows}
                  WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "xgettext failed on the window description")
  endif()
endif()
