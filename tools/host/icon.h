#pragma once
#include <span>

// The program's icon, 64 pixels square, as the bytes of a PNG.
std::span<const unsigned char> IconPng();
