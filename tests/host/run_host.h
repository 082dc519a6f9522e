#pragma once
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

using Arguments = std::vector<std::string>;

// orva-host as a shell starts it, without a display; `input` is its standard input.
class HostProcess : public Process {
public:
    explicit HostProcess(const Arguments& arguments, const std::string& input = {}) {
        WriteAll(folder / "in", input);
        unsetenv("DISPLAY");
        Start("exec " ORVA_HOST_PROGRAM " \"$@\" < " + folder / "in" + " > " + folder / "out" + " 2> " +
                  folder / "err",
              arguments);
    }
    std::string Out() const { return ReadAll(folder / "out"); }
    std::string Err() const { return ReadAll(folder / "err"); }

private:
    TempFolder folder;
};

struct Ended {
    int code = -1;
    std::string out, err;
};
inline Ended RunHost(const Arguments& arguments, const std::string& input = {}) {
    HostProcess host(arguments, input);
    const int code = host.Wait();
    return {code, host.Out(), host.Err()};
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}
