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

    /// Watches @p rounds rounds, named @p what in print. The heap may grow by less than @p allowed bytes from
    /// the end of the warm-up to the last round. The warm-up is a twentieth of the rounds, but at least 20:
    /// fonts and icons are still loaded in the first ones. Half of the rounds, where there are fewer than 40.
    /// Resident memory may grow by less than 16 MB over the most that was seen in the first half of the
    /// rounds.
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
    long long m_firstAllocated = 0;
    long long m_mostResident = 0;
    Memory m_last;
};
