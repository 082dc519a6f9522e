-- A session with a recording's track, ORVA on it, and a MIDI track for its notes.
local folder, rate, block = os.getenv("ORVA_SESSION"), 44100, tonumber(os.getenv("ORVA_BLOCK"))
local engine = AudioEngine:set_backend("None (Dummy)", "orva", "")
engine:set_device_name("Silence")
engine:set_sample_rate(rate)
engine:set_buffer_size(block)
local session = create_session(folder, "session", rate)
AudioEngine:start(false) -- the plug-ins are listed from here on
sleep(1)
local last = ARDOUR.PresentationInfo.max_order
local one_midi = ARDOUR.ChanCount(ARDOUR.DataType("midi"), 1)
local piano = session:new_audio_track(1, 1, nil, 1, "Piano", last, ARDOUR.TrackMode.Normal, true):front()
session:new_midi_track(one_midi, one_midi, true, ARDOUR.PluginInfo(), nil, nil, 1, "Notes", last,
                       ARDOUR.TrackMode.Normal, true)
local orva
if os.getenv("ORVA_VST") then
    orva = ARDOUR.LuaAPI.new_plugin(session, "ORVA Audio To MIDI", ARDOUR.PluginType.LXVST, "")
elseif os.getenv("ORVA_VST3") then
    orva = ARDOUR.LuaAPI.new_plugin(session, "ORVA Audio To MIDI", ARDOUR.PluginType.VST3, "")
else
    orva = ARDOUR.LuaAPI.new_plugin(session, os.getenv("ORVA_URI"), ARDOUR.PluginType.LV2, "")
end
assert(not orva:isnil(), "Ardour does not know ORVA")
assert(piano:add_processor_by_index(orva, 0, nil, true) == 0, "ORVA cannot be put on the track")
assert(piano:output():n_ports():n_midi() == 1, "the track has no MIDI output")
session:save_state("")
close_session()
