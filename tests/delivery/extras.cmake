# The recording's tests count what it asks of the allocator.
target_sources(test_delivery PRIVATE ${CMAKE_CURRENT_LIST_DIR}/../harmony/allocation_count.cpp)
