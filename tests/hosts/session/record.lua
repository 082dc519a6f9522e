-- Plays the session, and records ORVA's notes on the MIDI track.
local folder, seconds = os.getenv("ORVA_SESSION"), tonumber(os.getenv("ORVA_SECONDS"))
local engine = AudioEngine:set_backend("None (Dummy)", "orva", "")
engine:set_device_name("Silence")
engine:set_sample_rate(44100)
engine:set_buffer_size(tonumber(os.getenv("ORVA_BLOCK")))
local session = load_session(folder, "session")
AudioEngine:start(false)
sleep(1)
local notes = session:route_by_name("Notes")
assert(session:route_by_name("Piano"):to_track():playlist():region_list():size() == 1, "the recording is not there")
assert(notes:input():nth(0):connect("Piano/midi_out 1") == 0, "the tracks cannot be connected")
notes:to_track():rec_enable_control():set_value(1, PBD.GroupControlDisposition.NoGroup)
session:maybe_enable_record()
session:goto_start()
sleep(1)
session:request_roll(ARDOUR.TransportRequestSource.TRS_UI)
local waited = 0
while session:transport_sample() < seconds * 44100 and waited < 60 do
    sleep(1)
    waited = waited + 1
end
session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
sleep(2)
session:save_state("")
close_session()
