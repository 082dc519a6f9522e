# The headers that our layouts are held against announce their own open questions by #warning.
set_source_files_properties(${folder}/layout_test.cpp PROPERTIES COMPILE_OPTIONS "-Wno-cpp")
if(WIN32) # of this machine's headers these alone
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
  file(CREATE_LINK /usr/include/pluginterfaces ${CMAKE_BINARY_DIR}/headers/pluginterfaces SYMBOLIC)
  target_include_directories(test_vst2 SYSTEM PRIVATE ${CMAKE_BINARY_DIR}/headers)
endif()
