# Install layout below the client's install root (CMAKE_INSTALL_PREFIX), the
# same layout the program searches: util/logmgr, gtk/, icons/, nls/, and the
# logging library with its header for the client's other programs.
set(NORVEX_PACKAGE_ROOT /opt/Norvex/ORBClient)
set(NORVEX_PACKAGE_NAME norvex-logcollection)
set(NORVEX_APP_ID com.norvex.LogCollection)
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set(CMAKE_INSTALL_PREFIX ${NORVEX_PACKAGE_ROOT} CACHE PATH "Client install root" FORCE)
endif()

# "client" is what a plain install writes below the root; "desktop" holds the
# menu entry and friends at absolute system paths, so only the package takes it.
if(TARGET logmgr)
  # The root may be anywhere; the library always sits beside util/.
  set_target_properties(logmgr PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
  install(TARGETS logmgr RUNTIME DESTINATION util COMPONENT client)
endif()
if(TARGET logclient)
  install(TARGETS logclient LIBRARY DESTINATION lib COMPONENT client NAMELINK_COMPONENT client)
  install(FILES ${PROJECT_SOURCE_DIR}/logclient/logclient.h DESTINATION include/logclient
          COMPONENT client)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/gtk/ DESTINATION gtk COMPONENT client
        FILES_MATCHING PATTERN "*.glade" PATTERN "*.css")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/icons/ DESTINATION icons COMPONENT client
        FILES_MATCHING PATTERN "*.png" PATTERN "*.gif")
if(TARGET translations)
  install(DIRECTORY ${CMAKE_BINARY_DIR}/nls/ DESTINATION nls COMPONENT client)
endif()

configure_file(${PROJECT_SOURCE_DIR}/data/${NORVEX_APP_ID}.desktop.in
               ${CMAKE_BINARY_DIR}/data/${NORVEX_APP_ID}.desktop @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/data/${NORVEX_APP_ID}.desktop
        DESTINATION /usr/share/applications COMPONENT desktop EXCLUDE_FROM_ALL)
install(FILES ${PROJECT_SOURCE_DIR}/data/${NORVEX_APP_ID}.metainfo.xml
        DESTINATION /usr/share/metainfo COMPONENT desktop EXCLUDE_FROM_ALL)
install(FILES ${PROJECT_SOURCE_DIR}/data/copyright
        DESTINATION /usr/share/doc/${NORVEX_PACKAGE_NAME} COMPONENT desktop EXCLUDE_FROM_ALL)
# The menu shows the window icon under the application's id.
install(FILES ${PROJECT_SOURCE_DIR}/icons/000_Beacon_64.png
        DESTINATION /usr/share/icons/hicolor/64x64/apps RENAME ${NORVEX_APP_ID}.png
        COMPONENT desktop EXCLUDE_FROM_ALL)

include(${CMAKE_CURRENT_LIST_DIR}/package.cmake)
