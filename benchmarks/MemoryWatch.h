#pragma once

#include <QElapsedTimer>

/// Prints the memory in use at intervals, and whether it grows.
class MemoryWatch
{
public:
    /// The memory of the process, in bytes.
    struct Memory
    {
        long long allocated = 0;
        long long resident = 0;
    };

    /// Watches @p rounds rounds, named @p what in print. From the end of the warm-up to the last round the
    /// heap may grow by less than @p allowed bytes, and resident memory by less than 16 MB. The warm-up is a
    /// twentieth of the rounds, but at least 20, because fonts and icons are loaded in the first ones. With
    /// fewer than 40 rounds it is half of them.
    MemoryWatch(const char* what, int rounds, long long allowed);

    /// Call this after each round, counted from 1.
    void finishRound(int round);
    /// Prints and returns the result. Under AddressSanitizer it is always true.
    bool isSteady() const;

private:
    int warmUp() const;

    const char* m_what;
    int m_rounds;
    long long m_allowed;
    QElapsedTimer m_timer;
    Memory m_first;
    Memory m_last;
};
