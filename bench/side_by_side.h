// Two ways of doing one thing, measured in turns: what the programs of ratios have in common.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velandoc::bench {

/// Throws std::runtime_error.
void Require(bool condition, const char* what);

/// Prints a row of the table: rates and the median ratio of `rounds` rounds, above 1 if ours is the
/// faster. Each round gives one ratio: what a change of the machine's speed does to one side it
/// does to the other. Both sides run once before anything is measured; `prepare` runs in front of
/// each run and is not measured.
void Compare(
    const char* name, double units, const char* unit, const std::function<void()>& ours,
    const std::function<void()>& theirs, const std::function<void()>& prepare = [] {},
    int rounds = 7);

/// Runs a program with its standard output thrown away; throws std::runtime_error unless it ends
/// with 0.
void RunProgram(std::vector<std::string> arguments);
/// The curl command, without the user's settings and without a proxy.
void RunCurl(std::vector<std::string> arguments);

/// The median seconds of `rounds` runs, behind one that does not count.
double MedianSeconds(const std::function<void()>& work, int rounds);

}  // namespace velandoc::bench
