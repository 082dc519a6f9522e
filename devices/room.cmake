# The two layers under the MIDI devices: RtMidi for the ALSA sequencer, libjack for a JACK server. No header of
# the room shows either.
pkg_check_modules(RTMIDI REQUIRED IMPORTED_TARGET rtmidi)
pkg_check_modules(JACK REQUIRED IMPORTED_TARGET jack)
target_link_libraries(orva_devices PRIVATE PkgConfig::RTMIDI PkgConfig::JACK Threads::Threads)
