# Start-up to the first drawn frame of logmgr against a minimal GTK 3 window.
add_subdirectory(${CMAKE_CURRENT_LIST_DIR}/first_frame ${CMAKE_CURRENT_BINARY_DIR}/first_frame)
