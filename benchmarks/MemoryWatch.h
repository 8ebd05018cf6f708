#pragma once

#include <QElapsedTimer>

/// Prints the memory in use from time to time, and tells whether it stays.
class MemoryWatch
{
public:
    /// What the process uses, in bytes.
    struct Memory
    {
        long long allocated = 0;
        long long resident = 0;
    };

    /// Watches @p rounds rounds, named @p what in print. From the end of the warm-up to the last round the
    /// heap may grow by less than @p allowed bytes, and resident memory by less than 16 MB. The warm-up is a
    /// twentieth of the rounds, but at least 20: fonts and icons are still loaded in the first ones. It is
    /// half of the rounds where there are fewer than 40.
    MemoryWatch(const char* what, int rounds, long long allowed);

    /// To be called after each round, counted from 1.
    void finishRound(int round);
    /// Prints the verdict, and returns it. Under AddressSanitizer it is always yes.
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
