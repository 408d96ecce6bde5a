// How much memory a piece of code holds at its worst, counted at the heap's own functions.
// A program that uses it links through orvik_measure_memory (measure.cmake). One meter at a time; the allocations of every thread
// count.
#pragma once

#include <cstddef>

class MemoryMeter {
public:
    MemoryMeter();   // counts from here
    ~MemoryMeter();  // until here
    MemoryMeter(const MemoryMeter&) = delete;
    MemoryMeter& operator=(const MemoryMeter&) = delete;

    // Bytes asked for since the start and not given back: the most there ever were, and now. What the heap adds to each block
    // counts as 16.
    size_t Peak() const;
    size_t Now() const;
};
