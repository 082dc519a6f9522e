# The chord names are made without memory.
target_link_libraries(test_harmony PRIVATE orva_test_watch)
