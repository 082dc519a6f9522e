#include "notes/serial.h"

#include "notes/stream.h"

bool SaveSerial(const std::string& path, const TSerial& object, std::string& error) {
    TFStream stream(path, std::ios_base::binary | std::ios_base::out, TFStream::defaultBuffer);
    if (!stream.IsOpen()) {
        error = "Cannot open file <" + path + "> for writing.";
        return false;
    }
    object.Write(stream);
    if (!stream.Finish()) {
        error = "Writing file <" + path + "> is failed.";
        return false;
    }
    error.clear();
    return true;
}

bool LoadSerial(const std::string& path, TSerial& object, std::string& error) {
    TFStream stream(path, std::ios_base::binary | std::ios_base::in, TFStream::defaultBuffer);
    if (!stream.IsOpen()) {
        error = "Cannot open file <" + path + "> for reading.";
        return false;
    }
    object.Read(stream);
    if (stream.Failed()) {
        error = "Reading file <" + path + "> is failed.";
        return false;
    }
    error.clear();
    return true;
}
