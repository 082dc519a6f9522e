#include "plugin/registration.h"

#include "desktop/user_store.h"

namespace {

constexpr char nameKey[] = "Name";
constexpr char codeKey[] = "Code";

struct Details {
    std::string name = readRegistryString(nameKey);
    std::string code = readRegistryString(codeKey);
};

const Details& AtLoad() {
    static const Details details;
    return details;
}

}  // namespace

Registration::Registration() {
    AtLoad();
}

bool Registration::Registered() const {
    return !AtLoad().name.empty() && !AtLoad().code.empty();
}
std::string Registration::Name() const {
    return AtLoad().name;
}

bool Registration::Submit(const char* name, const char* code) {
    if (name == nullptr || code == nullptr || *name == '\0' || *code == '\0') return false;
    return writeRegistryString(nameKey, name) && writeRegistryString(codeKey, code);
}
