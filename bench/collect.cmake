# Listing and archiving of the collection engine against the bare tools.
add_executable(collect_bench ${CMAKE_CURRENT_LIST_DIR}/collect_bench.cpp)
target_link_libraries(collect_bench PRIVATE logmgr_app benchmark::benchmark)
