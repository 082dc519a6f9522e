#include "devices/midi_backend.h"

std::size_t ShortMessageLength(std::uint32_t message) {
    const std::uint32_t status = message & 0xFFU;
    std::size_t length = 0;
    switch (status & 0xF0U) {
        case 0x80:
        case 0x90:
        case 0xA0:
        case 0xB0:
        case 0xE0: length = 3; break;
        case 0xC0:
        case 0xD0: length = 2; break;
        case 0xF0:
            switch (status) {
                case 0xF1:
                case 0xF3: length = 2; break;
                case 0xF2: length = 3; break;
                case 0xF6:
                case 0xF8:
                case 0xFA:
                case 0xFB:
                case 0xFC:
                case 0xFE:
                case 0xFF: length = 1; break;
                default: break;  // system-exclusive, its end, and what is not defined
            }
            break;
        default: break;
    }
    const std::uint32_t dataBits = length == 3 ? 0x808000U : length == 2 ? 0x8000U : 0U;
    return (message & dataBits) == 0 ? length : 0;
}
