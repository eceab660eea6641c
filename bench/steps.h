// Steps that are measured beside each other, each in a process of its own, so that none starts with
// another's memory or warm tables.
//
// The peak of a process counts what it shares with the one that started it: the measuring program
// itself must stay small and leave large inputs to the steps.
//
// Threads: one at a time; the program has no other thread when a step begins. Errors: a step that
// throws tells its message on the standard error stream, and the program ends with status 1.

#ifndef BENCH_STEPS_H_
#define BENCH_STEPS_H_

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace orbseq::bench {

struct Sample {
  double seconds = 0.0;
  double mebibytes = 0.0;  // peak of the process
};

struct Step {
  std::string name;
  std::function<double()> run;  // answers the seconds that count
  std::vector<Sample> samples;  // one a round
};

// Runs the step in a process of its own.
Sample measured(const std::function<double()>& run);

// Runs the steps in turn, `rounds` times, and keeps their samples.
void measure(std::vector<Step>& steps, int rounds);

// Both require a sample.
double medianSeconds(const Step& step);
double peakMebibytes(const Step& step);

template <class Work>
double secondsOf(Work work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace orbseq::bench

#endif  // BENCH_STEPS_H_
