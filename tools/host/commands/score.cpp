#include <iostream>
#include <memory>

#include "notes/notes.h"
#include "notes/serial.h"
#include "notes/stream.h"
#include "tools/host/commands/command.h"
#include "tools/host/printable.h"
#include "tools/host/score_output.h"

namespace {

struct ScoreOptions {
    std::string file;
    std::string midi;
    bool force = false;
};

int ConvertScore(const ScoreOptions& options) {
    Guard({{"--midi", options.midi, midiFirstBytes}}, {options.file}, options.force);
    const auto score = std::make_unique<TNotes>();
    std::string error;
    try {
        if (!LoadSerial(options.file, *score, error)) {
            ReportError(options.file, error);
            return exitFailed;
        }
    } catch (const std::bad_alloc&) {
        ReportError(options.file, "needs more memory than a score may take");
        return exitFailed;
    } catch (const std::exception& fault) {
        ReportError(options.file, fault.what());
        return exitFailed;
    }
    WriteWhole(options.midi, MidiFileBytes(*score));
    std::cout << Printable(options.file) << ": " << score->notes.size() << " notes, "
              << Printable(options.midi) << " written\n";
    return exitDone;
}

}  // namespace

void AddScore(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<ScoreOptions>();
    CLI::App* const command = program.add_subcommand("score", "a stored score as a MIDI file");
    command->add_option("SCORE", options->file, "as `render --score` leaves it")
        ->required()
        ->type_name("FILE.tnotes");
    command->add_option("--midi", options->midi, "the MIDI file to write")->required()->type_name("OUT.mid");
    AddForce(*command, options->force);
    command->callback([options, &chosen] { chosen = [options] { return ConvertScore(*options); }; });
}
