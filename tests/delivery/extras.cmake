# The recording's tests count what it asks of the allocator.
target_link_libraries(test_delivery PRIVATE orva_test_watch)
