#include "plugin/mem_log.h"

#include <algorithm>
#include <fstream>

#include "base/file_path.h"

void MemLog::append(const std::string& block) {
    if (block.empty()) return;
    const Locked held(guard);
    const auto known = std::find(blocks.begin(), blocks.end(), block);
    const auto index = static_cast<std::size_t>(known - blocks.begin());
    if (known == blocks.end()) blocks.push_back(block);
    if (!runs.empty() && runs.back().block == index)
        ++runs.back().times;
    else
        runs.push_back({index, 1});
}

std::string MemLog::text() const {
    const Locked held(guard);
    std::size_t length = 0;
    for (const Run& run : runs) length += run.times * blocks[run.block].size();
    std::string whole;
    whole.reserve(length);
    for (const Run& run : runs)
        for (std::size_t i = 0; i < run.times; ++i) whole += blocks[run.block];
    return whole;
}

bool MemLog::saveToFile(const std::string& path) const {
    std::ofstream file(FilePath(path), std::ios::out | std::ios::trunc);
    if (!file.is_open()) return false;
    file << text();
    file.close();
    return true;
}

MemLog& getMemLog() {
    static MemLog log;
    return log;
}
