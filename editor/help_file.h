#pragma once
#include <filesystem>

// The manual that belongs to a plug-in in `folder`, or an empty path where there is none: beside the plug-in,
// as in a home folder (orva_vst.html), where a build leaves it (manual/manual.html, for the LV2 bundle a
// folder higher), or where a package puts it (share/doc/orva-vst or orva-lv2, under the prefix). Looks at the
// disk; throws nothing but for want of memory. Threads: [any].
std::filesystem::path ManualOf(const std::filesystem::path& folder);
