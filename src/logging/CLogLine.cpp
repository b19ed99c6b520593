#include "logging/CLogLine.h"

#include <cstdio>
#include <exception>
#include <iostream>

#include "logging/CLogSyn.h"
#include "logging/LogCalls.h"
#include "system/TextConversion.h"

namespace {

/// Holds a lock, if there is one, for the length of a scope.
class LockScope {
public:
    explicit LockScope(CLogSyn* lock) : lock(lock) {
        if (lock)
            lock->lock();
    }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    ~LockScope() {
        if (lock)
            lock->unlock();
    }

private:
    CLogSyn* lock;
};

void emptyFile(const std::string& path) {
    if (std::FILE* opened = std::fopen(path.c_str(), "w+"))
        std::fclose(opened);
}

}  // namespace

CLogLine::~CLogLine() {
    if (threshold > level)
        return;
    const LockScope scope(lock);
    try {
        logCalls.WriteLine(*this);
    } catch (const std::exception&) {
        // The log never reports its own failures: the line is lost.
    }
}

CLogLine& CLogLine::operator<<(const char* narrow) {
    text << (narrow ? narrow : "null");
    return *this;
}

CLogLine& CLogLine::operator<<(const wchar_t* wide) {
    return *this << toNarrowText(wide).get();
}

CLogLine& CLogLine::operator<<(const std::wstring& wide) {
    return *this << wide.c_str();
}

CLogLine& CLogLine::operator<<(wchar_t character) {
    const wchar_t wide[] = {character, L'\0'};
    return *this << wide;
}

CLogLine& CLogLine::operator<<(bool value) {
    return *this << (value ? "true" : "false");
}

void CLogLine::write() {
    if (path.empty())
        std::cout << text.view() << std::endl;
    else
        appendToFile();
}

void CLogLine::appendToFile() {
    file.open(path, std::ios::app);
    if (!file.is_open())
        return;
    file.seekp(0, std::ios::end);
    if (file.tellp() > maxSize) {
        file.close();
        emptyFile(path);
        file.open(path, std::ios::app);
    }
    file << text.view() << std::endl;
    file.flush();
    file.close();
}
