// The table of MIDI ports on invented devices: anything in any order.
#include <algorithm>
#include <set>

#include "delivery/midi_ports.h"
#include "torture/model/side_by_side.h"

namespace {

class Tables {
public:
    explicit Tables(Trial& caseTrial) : trial(caseTrial) {
        model.mapper = trial.OneIn(4);
        if (model.mapper) layer.version = {6, 1};
        SubstituteMidiOut(&layer);
        table = std::make_unique<MidiPortTable>();
    }
    ~Tables() { SubstituteMidiOut(nullptr); }
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    void Open() {
        const std::uint32_t index = trial.OneIn(20) ? static_cast<std::uint32_t>(trial.random()) : Small(6);
        std::uint32_t met = 77, expected = 77;
        const std::uint32_t code = table->OpenPort(met, index);
        Same(code, model.Open(expected, index), "open");
        Same(met, expected, "the port's number");
        if (code == 0) highest = std::max(highest, met + 1);
    }
    void Refuse() {
        const std::uint32_t device = Small(3), message = Message();
        const bool opens = trial.OneIn(2), passes = trial.OneIn(2);
        for (auto* const refused : {&layer.refusedOpens, &model.refusedOpens})
            opens ? void(refused->erase(device)) : void((*refused)[device] = 4);
        for (auto* const refused : {&layer.refusedMessages, &model.refusedMessages})
            passes ? refused->clear() : void((*refused)[message] = 1);
    }
    void Operate() {
        const std::uint32_t port = Port();
        switch (trial.Below(40)) {
            case 0: Refuse(); break;
            case 1: table->SilencePort(port), model.Silence(port); break;
            case 2: table->ResetPort(port), model.Reset(port); break;
            case 3: Same(table->IsPortValid(port), model.IsValid(port), "valid"); break;
            case 4: {
                const std::uint8_t bytes[] = {0xF0, 0xF7};
                Same(table->SendLong(port, {bytes, 2}), model.SendLong(port, 2), "long");
                break;
            }
            case 5:
            case 6:
            case 7:
            case 8: Open(); break;
            case 9:
            case 10:
            case 11:
            case 12: table->ClosePort(port), model.Close(port); break;
            default: {
                const std::uint32_t message = Message();
                Same(table->SendShort(port, message), model.Send(port, message), "send");
            }
        }
    }
    void Unload() { table->Unload(), model.Unload(); }
    void Compare() {
        const std::vector<std::string> met = layer.TakenLines();
        if (met != model.lines)
            trial.Fail("the devices were told " + All(met) + "the Model says " + All(model.lines));
        model.lines.clear();
        std::set<std::uint32_t> ids;
        for (const auto& [handle, id] : layer.open)
            trial.Require(ids.insert(id).second, "a device is open twice");
    }
    bool AllClosed() const { return layer.open.empty(); }

private:
    std::uint32_t Small(std::uint64_t count) { return static_cast<std::uint32_t>(trial.Below(count)); }
    std::uint32_t Port() { return trial.OneIn(30) ? 0xFFFFFFFF : Small(highest + 2); }
    std::uint32_t Message() {
        constexpr std::uint32_t kinds[] = {0x90, 0x90, 0x80, 0xC0, 0xB0, 0xF0};
        return kinds[Small(6)] | Small(3) | Small(6) << 8 | Small(2) * 100 << 16;
    }
    void Same(std::uint32_t met, std::uint32_t expected, const char* what) const {
        if (met != expected)
            trial.Fail(std::string(what) + " gave " + std::to_string(met) + ", the Model says " +
                       std::to_string(expected));
    }
    static std::string All(const std::vector<std::string>& lines) {
        std::string all;
        for (std::size_t i = 0; i < std::min<std::size_t>(lines.size(), 12); ++i) all += lines[i] + "; ";
        return all;
    }

    Trial& trial;
    InventedDevices layer;
    ModelPorts model;
    std::unique_ptr<MidiPortTable> table;
    std::uint32_t highest = 0;
};

void TryTable(Trial& trial) {
    Tables tables(trial);
    for (int operation = 0; operation < 10000; ++operation) tables.Operate(), tables.Compare();
    tables.Unload();
    tables.Compare();
    trial.Require(tables.AllClosed(), "a device is still open after the end");
    for (int operation = 0; operation < 20; ++operation) tables.Operate(), tables.Compare();
}

const Registered table({"MID-5", "ports opened, used and closed in any order reach devices as told",
                        inRelease | inAddress, 1000, 50, 60, TryTable});

}  // namespace
