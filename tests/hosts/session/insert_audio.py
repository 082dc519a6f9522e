"""Puts a WAV file of the session's audio folder on the track Piano, from the session's begin: what an import in the
window would do.    insert_audio.py SESSION.ardour NAME.wav"""
import pathlib
import sys
import wave
import xml.etree.ElementTree as xml

SECOND = 282240000  # the session file's unit of time

session, name = pathlib.Path(sys.argv[1]), sys.argv[2]
audio = session.parent / "interchange" / session.stem / "audiofiles" / name
with wave.open(str(audio)) as sound:
    length = sound.getnframes() * SECOND // sound.getframerate()

tree = xml.parse(session)
root = tree.getroot()
xml.SubElement(root.find("Sources"), "Source", {
    "name": name, "type": "audio", "flags": "Writable,CanRename", "id": "90001", "channel": "0", "origin": "", "gain": "1"})


def add_region(parent, number, whole_file):
    xml.SubElement(parent, "Region", {
        "name": audio.stem, "id": number, "type": "audio", "start": "a0", "length": f"a{length}@a0",
        "whole-file": whole_file, "fade-in-active": "0", "fade-out-active": "0", "channels": "1",
        "source-0": "90001", "master-source-0": "90001"})


add_region(root.find("Regions"), "90002", "1")
add_region(root.find("Playlists/Playlist[@name='Piano']"), "90003", "0")
tree.write(session)
