#pragma once
#include <string>

// The registration role: it lets every block through, keeps the user's name and
// code in the per-user store, and says whether both were there when the module was first loaded. There is no
// check of the code, and nothing is ever asked of the user.
//
// Threads: [ui] or at construction, never [audio].
class Registration {
public:
    Registration();  // reads the store once per process; a later change counts from the next load on

    bool Registered() const;   // both name and code were stored at load
    std::string Name() const;  // as stored at load
    // Stores both; false when they could not be written, or either is empty.
    static bool Submit(const char* name, const char* code);
};
