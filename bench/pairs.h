#pragma once
// Ratios against a floor that machine noise cannot fake: the floor and the
// subject run in turns (floor, subject, floor, subject, ...), so a busy
// moment slows both sides of a pair alike. Every pair is printed as one line
//   pair <row> <floor> <subject>
// on standard output, and bench/run turns the lines of a row into its median
// ratio and spread.
#include <cstdio>

inline void PrintPair(const char* row, double floor, double subject) {
  std::printf("pair %s %.6g %.6g\n", row, floor, subject);
  std::fflush(stdout);
}

// Runs the registered benchmarks floorName and subjectName in turns, one
// unprinted warm-up pair and then pairs printed pairs of their real time per
// iteration in nanoseconds. False when a run failed.
bool RunPairs(const char* row, const char* floorName, const char* subjectName, int pairs);
