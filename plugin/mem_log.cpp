#include "plugin/mem_log.h"

#include <fstream>

void MemLog::append(const std::string& block) {
    const std::lock_guard<std::mutex> held(guard);
    log << block;
}

std::string MemLog::text() const {
    const std::lock_guard<std::mutex> held(guard);
    return log.str();
}

bool MemLog::saveToFile(const std::string& path) const {
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    if (!file.is_open()) return false;
    file << text();
    file.close();
    return true;
}

MemLog& getMemLog() {
    static MemLog log;
    return log;
}
