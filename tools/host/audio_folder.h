#pragma once
#include <string>
#include <vector>

// The recordings in a folder and the folders within it, by their extensions, sorted by name. Hidden files and
// folders are passed over, and so are links to folders, which may lead in circles. A folder that cannot be
// searched stands in the list itself, and so does `folder` where it has no recordings, so that whoever opens
// them names them.
std::vector<std::string> RecordingsIn(const std::string& folder);

// For each name that is a folder its recordings, and each other name as it is.
std::vector<std::string> WithFoldersSearched(const std::vector<std::string>& names);
