# The record writer against a raw write of the same bytes, and the cost of a
# call that the level filter drops.
add_executable(record_bench ${CMAKE_CURRENT_LIST_DIR}/record_bench.cpp)
target_link_libraries(record_bench PRIVATE logclient benchmark::benchmark)
