# The layers under the MIDI devices: on Linux RtMidi for the ALSA sequencer and libjack for a JACK server, on Windows the
# system's own. No header of the room shows any.
if(WIN32)
  target_link_libraries(orva_devices PRIVATE winmm ntdll)
else()
  pkg_check_modules(RTMIDI REQUIRED IMPORTED_TARGET rtmidi)
  pkg_check_modules(JACK REQUIRED IMPORTED_TARGET jack)
  target_link_libraries(orva_devices PRIVATE PkgConfig::RTMIDI PkgConfig::JACK Threads::Threads)
endif()
