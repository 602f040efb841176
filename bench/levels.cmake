# App::SetAllLogLevels over a mapped area, against sixty plain stores into the
# same mapping; and the cost of a bare call into the library.
add_executable(levels_bench ${CMAKE_CURRENT_LIST_DIR}/levels_bench.cpp)
target_link_libraries(levels_bench PRIVATE logmgr_app benchmark::benchmark)

