# Install layout below the client's install root (CMAKE_INSTALL_PREFIX), the
# same layout the program searches: util/logmgr, gtk/, icons/, nls/, and the
# logging library with its header for the client's other programs.
set(NORVEX_PACKAGE_ROOT /opt/Norvex/ORBClient)
set(NORVEX_PACKAGE_NAME norvex-logcollection)
set(NORVEX_APP_ID com.norvex.LogCollection)
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set(CMAKE_INSTALL_PREFIX ${NORVEX_PACKAGE_ROOT} CACHE PATH "Client install root" FORCE)
endif()
# The menu entry and its friends go to the system's data folders, whatever the root.
set(NORVEX_SYSTEM_DATADIR /usr/${CMAKE_INSTALL_DATADIR})

# Components: "client" is the root's runtime, "dev" the library's header and
# unversioned link for building against it; a plain install writes both below
# the root. "system" and "dev-system" hold files at absolute system paths, so
# only the packages take them.
if(TARGET logmgr)
  # The root may be anywhere; the library always sits beside util/.
  set_target_properties(logmgr PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
  install(TARGETS logmgr RUNTIME DESTINATION util COMPONENT client)
endif()
if(TARGET logmgr-cli)
  set_target_properties(logmgr-cli PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
  install(TARGETS logmgr-cli RUNTIME DESTINATION util COMPONENT client)
endif()
if(TARGET logclient)
  install(TARGETS logclient LIBRARY DESTINATION lib COMPONENT client NAMELINK_COMPONENT dev)
  install(FILES ${PROJECT_SOURCE_DIR}/logclient/logclient.h DESTINATION include/logclient COMPONENT dev)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/gtk/ DESTINATION gtk COMPONENT client
        FILES_MATCHING PATTERN "*.glade" PATTERN "*.css")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/icons/ DESTINATION icons COMPONENT client
        FILES_MATCHING PATTERN "*.png" PATTERN "*.gif")
if(TARGET translations)
  install(DIRECTORY ${CMAKE_BINARY_DIR}/nls/ DESTINATION nls COMPONENT client)
endif()
if(TARGET logmgr AND TARGET logclient)
  # A stripped install (the packages) also drops the compiler's ident notes,
  # as Debian's own tools do: nothing at run time reads them.
  install(CODE "if(CMAKE_INSTALL_DO_STRIP)
    foreach(binary util/$<TARGET_FILE_NAME:logmgr> util/$<TARGET_FILE_NAME:logmgr-cli>
                   lib/$<TARGET_FILE_NAME:logclient>)
      execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment --remove-section=.note
                      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${binary}\" COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
  endif()" COMPONENT client)
endif()

find_program(NORVEX_GZIP gzip REQUIRED)
# logd in a package of its own at system places: the daemon, its man page
# and the system and user units. It carries the library's objects itself.
if(TARGET logd)
  install(TARGETS logd RUNTIME DESTINATION /usr/sbin COMPONENT logd EXCLUDE_FROM_ALL)
  install(CODE "if(CMAKE_INSTALL_DO_STRIP)
    execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment --remove-section=.note
                    \"\$ENV{DESTDIR}/usr/sbin/$<TARGET_FILE_NAME:logd>\" COMMAND_ERROR_IS_FATAL ANY)
  endif()" COMPONENT logd EXCLUDE_FROM_ALL)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/data/logd.8.gz
    COMMAND ${NORVEX_GZIP} -9 -n -c ${PROJECT_SOURCE_DIR}/logd/logd.8 > ${CMAKE_BINARY_DIR}/data/logd.8.gz
    DEPENDS ${PROJECT_SOURCE_DIR}/logd/logd.8)
  add_custom_target(logd_man_page ALL DEPENDS ${CMAKE_BINARY_DIR}/data/logd.8.gz)
  install(FILES ${CMAKE_BINARY_DIR}/data/logd.8.gz DESTINATION ${NORVEX_SYSTEM_DATADIR}/man/man8
          COMPONENT logd EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/logd/norvex-logd.service DESTINATION /lib/systemd/system
          COMPONENT logd EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/logd/norvex-logd-user.service DESTINATION /usr/lib/systemd/user
          RENAME norvex-logd.service COMPONENT logd EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/data/copyright ${CMAKE_BINARY_DIR}/data/changelog.gz
          DESTINATION ${NORVEX_SYSTEM_DATADIR}/doc/norvex-logd COMPONENT logd EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/logd/lintian-overrides DESTINATION ${NORVEX_SYSTEM_DATADIR}/lintian/overrides
          RENAME norvex-logd COMPONENT logd EXCLUDE_FROM_ALL)
endif()

configure_file(${PROJECT_SOURCE_DIR}/data/${NORVEX_APP_ID}.desktop.in
               ${CMAKE_BINARY_DIR}/data/${NORVEX_APP_ID}.desktop @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/data/${NORVEX_APP_ID}.desktop
        DESTINATION ${NORVEX_SYSTEM_DATADIR}/applications COMPONENT system EXCLUDE_FROM_ALL)
install(FILES ${PROJECT_SOURCE_DIR}/data/${NORVEX_APP_ID}.metainfo.xml
        DESTINATION ${NORVEX_SYSTEM_DATADIR}/metainfo COMPONENT system EXCLUDE_FROM_ALL)
# The menu shows the window icon under the application's id.
install(FILES ${PROJECT_SOURCE_DIR}/icons/000_Beacon_64.png
        DESTINATION ${NORVEX_SYSTEM_DATADIR}/icons/hicolor/64x64/apps RENAME ${NORVEX_APP_ID}.png
        COMPONENT system EXCLUDE_FROM_ALL)
install(FILES ${PROJECT_SOURCE_DIR}/icons/000_Beacon.svg
        DESTINATION ${NORVEX_SYSTEM_DATADIR}/icons/hicolor/scalable/apps RENAME ${NORVEX_APP_ID}.svg
        COMPONENT system EXCLUDE_FROM_ALL)

# logmgr-cli on PATH for ssh sessions: a relative link from /usr/bin into the
# root's util/, and its manual page.
file(RELATIVE_PATH NORVEX_CLI_LINK_TARGET /usr/${CMAKE_INSTALL_BINDIR} ${NORVEX_PACKAGE_ROOT}/util/logmgr-cli)
file(CREATE_LINK ${NORVEX_CLI_LINK_TARGET} ${CMAKE_BINARY_DIR}/data/logmgr-cli SYMBOLIC)
install(FILES ${CMAKE_BINARY_DIR}/data/logmgr-cli DESTINATION /usr/${CMAKE_INSTALL_BINDIR} COMPONENT system EXCLUDE_FROM_ALL)
find_program(NORVEX_GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/data/logmgr-cli.1.gz
  COMMAND ${NORVEX_GZIP} -9 -n -c ${PROJECT_SOURCE_DIR}/cli/logmgr-cli.1 > ${CMAKE_BINARY_DIR}/data/logmgr-cli.1.gz
  DEPENDS ${PROJECT_SOURCE_DIR}/cli/logmgr-cli.1
  COMMENT "Compressing the logmgr-cli manual page")
add_custom_target(cli_manual_page ALL DEPENDS ${CMAKE_BINARY_DIR}/data/logmgr-cli.1.gz)
install(FILES ${CMAKE_BINARY_DIR}/data/logmgr-cli.1.gz
        DESTINATION ${NORVEX_SYSTEM_DATADIR}/man/man1 COMPONENT system EXCLUDE_FROM_ALL)

# Each package carries the copyright, the changelog (compressed as Debian
# wants it) and the note that tells lintian why the files are below /opt.
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/data/changelog.gz
  COMMAND ${NORVEX_GZIP} -9 -n -c ${PROJECT_SOURCE_DIR}/data/changelog > ${CMAKE_BINARY_DIR}/data/changelog.gz
  DEPENDS ${PROJECT_SOURCE_DIR}/data/changelog
  COMMENT "Compressing the package changelog")
add_custom_target(package_changelog ALL DEPENDS ${CMAKE_BINARY_DIR}/data/changelog.gz)
foreach(package IN ITEMS ${NORVEX_PACKAGE_NAME} ${NORVEX_PACKAGE_NAME}-dev)
  set(component system)
  if(package MATCHES "-dev$")
    set(component dev-system)
  endif()
  install(FILES ${PROJECT_SOURCE_DIR}/data/copyright ${CMAKE_BINARY_DIR}/data/changelog.gz
          DESTINATION ${NORVEX_SYSTEM_DATADIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/data/lintian-overrides
          DESTINATION ${NORVEX_SYSTEM_DATADIR}/lintian/overrides RENAME ${package}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(${CMAKE_CURRENT_LIST_DIR}/package.cmake)
