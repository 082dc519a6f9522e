# A sequencer of the tests' own stands in for the system's, whose library it shares the records with.
target_link_libraries(test_devices PRIVATE asound)
