#include "lv2/describe/turtle.h"

#include <cstdio>
#include <sstream>
#include <vector>

#include "lv2/port_table.h"
#include "lv2/uris.h"
#include "parameters/starting_points.h"

namespace {

constexpr char prefixes[] =
    "@prefix atom: <http://lv2plug.in/ns/ext/atom#> .\n"
    "@prefix doap: <http://usefulinc.com/ns/doap#> .\n"
    "@prefix foaf: <http://xmlns.com/foaf/0.1/> .\n"
    "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
    "@prefix midi: <http://lv2plug.in/ns/ext/midi#> .\n"
    "@prefix opts: <http://lv2plug.in/ns/ext/options#> .\n"
    "@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .\n"
    "@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .\n"
    "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
    "@prefix rsz: <http://lv2plug.in/ns/ext/resize-port#> .\n"
    "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n"
    "@prefix urid: <http://lv2plug.in/ns/ext/urid#> .\n"
    "@prefix work: <http://lv2plug.in/ns/ext/worker#> .\n"
    "\n";

std::string Uri(const std::string& name) {
    return "<" + name + ">";
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') quoted += '\\';
        quoted += character;
    }
    return quoted + "\"";
}

// Nine digits give back every single-precision value; with fewer, a point would name its neighbour.
std::string Number(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    const std::string number(text);
    return number.find_first_of(".e") == std::string::npos ? number + ".0" : number;
}

void AddAudioPort(std::ostream& out, Lv2Port index, const char* direction, const char* symbol,
                  const char* name) {
    out << "    [\n"
        << "        a lv2:AudioPort , lv2:" << direction << "Port ;\n"
        << "        lv2:index " << index << " ;\n"
        << "        lv2:symbol " << Quoted(symbol) << " ;\n"
        << "        lv2:name " << Quoted(name) << "\n"
        << "    ]";
}

void AddMidiPort(std::ostream& out) {
    out << "    [\n"
        << "        a atom:AtomPort , lv2:OutputPort ;\n"
        << "        atom:bufferType atom:Sequence ;\n"
        << "        atom:supports midi:MidiEvent ;\n"
        << "        rsz:minimumSize " << midiPortBytes << " ;\n"
        << "        lv2:index " << portMidi << " ;\n"
        << "        lv2:symbol \"midi\" ;\n"
        << "        lv2:name \"MIDI\"\n"
        << "    ]";
}

std::string PropertiesOf(const ControlPort& port) {
    std::string all;
    const auto add = [&all](const char* name) { all += (all.empty() ? "" : " , ") + std::string(name); };
    if (port.toggled) add("lv2:toggled");
    if (port.enumeration) add("lv2:enumeration");
    if (!port.automatic) add("pprops:notAutomatic");
    if (!port.onGui) add("pprops:notOnGUI");
    return all;
}

void AddControlPort(std::ostream& out, std::uint32_t index, const ControlPort& port) {
    out << "    [\n"
        << "        a lv2:ControlPort , lv2:InputPort ;\n"
        << "        lv2:index " << index << " ;\n"
        << "        lv2:symbol " << Quoted(port.symbol) << " ;\n"
        << "        lv2:name " << Quoted(port.name) << " ;\n"
        << "        lv2:default " << Number(port.initial) << " ;\n"
        << "        lv2:minimum " << Number(port.minimum) << " ;\n"
        << "        lv2:maximum " << Number(port.maximum);
    if (const std::string properties = PropertiesOf(port); !properties.empty())
        out << " ;\n        lv2:portProperty " << properties;
    const char* before = " ;\n        lv2:scalePoint ";
    for (const ParameterPoint& point : port.points) {
        out << before << "[ rdfs:label " << Quoted(point.label) << " ; rdf:value " << Number(point.value)
            << " ]";
        before = " ,\n            ";
    }
    out << "\n    ]";
}

// The head of a preset, which another line follows. What no instrument's settings change stays out of the
// presets: they leave it as it is.
void AddPreset(std::ostream& out, const Beginning& preset) {
    out << "\n"
        << Uri(pluginUri + ("#preset-" + preset.title)) << "\n"
        << "    a pset:Preset ;\n"
        << "    lv2:appliesTo " << Uri(pluginUri) << " ;\n"
        << "    rdfs:label " << Quoted(preset.title) << " ;\n";
}

}  // namespace

std::string Presets() {
    std::ostringstream out;
    out << "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
        << "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
        << "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n";
    for (const Beginning& preset : Beginnings()) {
        AddPreset(out, preset);
        out << "    lv2:port";
        const char* before = " ";
        for (const auto& [index, value] : preset.settings) {
            out << before << "[ lv2:symbol " << Quoted(DescribeParameter(index).symbol) << " ; pset:value "
                << Number(value) << " ]";
            before = " ,\n        ";
        }
        out << " .\n";
    }
    return out.str();
}

std::string Manifest(const std::string& pluginFile) {
    std::ostringstream out;
    out << "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
        << "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
        << "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
        << "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n"
        << "\n"
        << Uri(pluginUri) << "\n"
        << "    a lv2:Plugin ;\n"
        << "    lv2:binary " << Uri(pluginFile) << " ;\n"
        << "    rdfs:seeAlso <orva.ttl> .\n"
        << "\n"
        << Uri(windowUri) << "\n"
        << "    a ui:X11UI ;\n"
        << "    lv2:binary " << Uri(pluginFile) << " ;\n"
        << "    rdfs:seeAlso <orva.ttl> .\n";
    for (const Beginning& preset : Beginnings()) {
        AddPreset(out, preset);
        out << "    rdfs:seeAlso <presets.ttl> .\n";
    }
    return out.str();
}

std::string Description(const std::string& minorVersion) {
    std::ostringstream out;
    out << prefixes << Uri(windowUri) << "\n"
        << "    a ui:X11UI ;\n"
        << "    lv2:requiredFeature <http://lv2plug.in/ns/ext/instance-access> , ui:idleInterface ;\n"
        << "    lv2:optionalFeature ui:parent , ui:resize , ui:noUserResize , opts:options , urid:map ;\n"
        << "    opts:supportedOption ui:scaleFactor ;\n"
        << "    lv2:extensionData ui:idleInterface , ui:showInterface .\n"
        << "\n"
        << Uri(pluginUri) << "\n"
        << "    a lv2:Plugin , lv2:AnalyserPlugin ;\n"
        << "    doap:name \"ORVA Audio To MIDI (LV2)\" ;\n"  // beside the VST 2 one in a host's list
        << "    rdfs:comment \"Hears notes, several at once, and sends them on as MIDI. The LV2 plug-in of "
           "two with the "
           "same ear.\" ;\n"
        << "    doap:license <http://opensource.org/licenses/mit> ;\n"
        << "    lv2:project [\n"
        << "        a doap:Project ;\n"
        << "        doap:name \"ORVA Audio To MIDI\" ;\n"
        << "        doap:maintainer [ foaf:name \"ORVASOFT\" ; foaf:homepage <http://www.orva-labs.example/> "
           "]\n"
        << "    ] ;\n"
        << "    lv2:minorVersion " << minorVersion << " ;\n"
        << "    lv2:microVersion 0 ;\n"
        << "    lv2:requiredFeature urid:map ;\n"
        << "    lv2:optionalFeature lv2:hardRTCapable , work:schedule ;\n"
        << "    lv2:extensionData work:interface ;\n"
        << "    ui:ui " << Uri(windowUri) << " ;\n"
        << "    lv2:port\n";
    AddAudioPort(out, portAudioIn, "Input", "in", "Input");
    out << " ,\n";
    AddAudioPort(out, portAudioOut, "Output", "out", "Output");
    out << " ,\n";
    AddMidiPort(out);
    for (std::int32_t i = 0; i < parameterCount; ++i) {
        out << " ,\n";
        AddControlPort(out, portFirstControl + static_cast<std::uint32_t>(i), DescribeParameter(i));
    }
    for (const Lv2Port port : {portEar, portEarThreshold, portInputLevel}) {
        out << " ,\n";
        AddControlPort(out, port, DescribeHearing(port));
    }
    out << " .\n";
    return out.str();
}
