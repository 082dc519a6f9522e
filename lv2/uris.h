#pragma once

// The names under which LV2 hosts know the plug-in and its window, in projects and presets too: they never
// change.
inline constexpr char pluginUri[] = "http://www.orva-labs.example/lv2/orva";
inline constexpr char windowUri[] = "http://www.orva-labs.example/lv2/orva#ui";
