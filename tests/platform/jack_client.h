#pragma once
#include <jack/jack.h>

// A client of the server that the environment names, or null.
inline jack_client_t* QuietJackClient(const char* name) {
    jack_set_error_function([](const char*) {});
    jack_client_t* const client = jack_client_open(name, JackNoStartServer, nullptr);
    jack_set_error_function(nullptr);
    return client;
}
