#pragma once

/// The lock that serialises the writing of lines. This one does nothing.
class CLogSyn {
public:
    virtual void lock() {}
    virtual void unlock() {}

protected:
    ~CLogSyn() = default;
};
